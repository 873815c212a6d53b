#include "WindowStatus.h"

#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QStatusBar>

namespace explorer
{

namespace
{

QString count(std::size_t n)
{
  return QLocale().toString(static_cast<qulonglong>(n));
}

} // namespace

WindowStatus::WindowStatus(QStatusBar& bar)
  : selected(new QLabel())
  , shown(new QLabel())
  , missingFiles(new QLabel())
  , progressBar(new QProgressBar())
{
  selected->setObjectName("selectionCount");
  shown->setObjectName("shownCount");
  missingFiles->setObjectName("filesNote");
  missingFiles->setStyleSheet("color: #a00000");
  for (QLabel* label : { selected, shown, missingFiles })
    label->setContentsMargins(10, 0, 10, 0);
  progressBar->setMaximumWidth(200);
  progressBar->hide();
  bar.addPermanentWidget(missingFiles);
  bar.addPermanentWidget(shown);
  bar.addPermanentWidget(selected);
  bar.addPermanentWidget(progressBar);
}

void WindowStatus::showSelected(std::size_t n, std::size_t cases)
{
  selected->setText(QString("%1 of %2 cases selected").arg(count(n), count(cases)));
}

void WindowStatus::showShown(std::size_t n, std::size_t cases)
{
  shown->setText(n == cases ? QString("%1 cases shown").arg(count(cases))
                            : QString("%1 of %2 cases shown").arg(count(n), count(cases)));
}

void WindowStatus::showMissingFiles(std::size_t missing, std::size_t urls, std::size_t files)
{
  QString note;
  if (missing > 0)
    note = QString("%1 of %2 files not found%3")
             .arg(missing)
             .arg(files)
             .arg(urls > 0 ? QString(" (%1 are URLs): File > Locate Files...").arg(urls)
                           : QString(": File > Locate Files..."));
  missingFiles->setText(note);
  missingFiles->setVisible(!note.isEmpty());
}

} // namespace explorer
