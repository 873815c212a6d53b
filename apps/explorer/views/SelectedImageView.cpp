#include "views/SelectedImageView.h"

#include "CaseOrder.h"
#include "ChangesWhileHidden.h"
#include "FileLocator.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "StudyFiles.h"
#include "analyzer_common/VariantDisplayText.h"
#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "images/ImageCache.h"
#include "images/ImageFileLoaderInterface.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QEvent>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <boost/make_shared.hpp>

namespace explorer
{

namespace
{

// Left and Right step through the cases, Up and Down through their images.
class StepKeys : public QObject
{
public:
  StepKeys(QObject* parent, std::function<void(int, int)> step)
    : QObject(parent)
    , step(std::move(step))
  {
  }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override
  {
    if (event->type() != QEvent::KeyPress)
      return QObject::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key())
    {
      case Qt::Key_Left:
        step(-1, 0);
        return true;
      case Qt::Key_Right:
        step(1, 0);
        return true;
      case Qt::Key_Up:
        step(0, -1);
        return true;
      case Qt::Key_Down:
        step(0, 1);
        return true;
      default:
        return QObject::eventFilter(watched, event);
    }
  }

private:
  std::function<void(int, int)> step;
};

} // namespace

struct SelectedImageView::Impl
{
  std::shared_ptr<const Project> project;
  boost::shared_ptr<MasterSelection> selection;
  std::shared_ptr<ImageFileLoaderInterface> loader;
  QPointer<QWidget> container;
  QLabel* position = nullptr;
  QWidget* panes = nullptr;
  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> sideBySide;
  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> zoom;
  // The tag of the images shown; empty for every image of a case.
  boost::shared_ptr<plexa::UndoablePropertyProxy<std::string>> imageTag;
  std::shared_ptr<const FileLocator> files;
  std::shared_ptr<const CaseOrder> order;
  // Why nothing can be shown whatever is selected; empty when the study has images.
  QString noImages;
  std::vector<unsigned long long> selected;
  std::size_t firstCase = 0;
  std::size_t image = 0;
  std::vector<unsigned long long> shown;
  std::vector<QString> captions;

  QString caption(const Record& record) const
  {
    QStringList parts{ QString("case %1").arg(record.caseId()) };
    for (const auto& variable : project->variables())
      parts << QString::fromStdString(variable.lock().name() + " " +
                                      variantDisplayText(record.data(variable)));
    return parts.join(", ");
  }

  // The picture of a case's current image, or the reason there is none.
  QWidget* pane(const Record& record, QString& tag) const
  {
    auto* label = new QLabel();
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    const auto images = studyfiles::imagesOf(record, imageTag->value());
    if (images.empty())
    {
      label->setText(imageTag->value().empty()
                       ? QString("case %1 has no images").arg(record.caseId())
                       : QString("case %1 has no image tagged %2")
                           .arg(record.caseId())
                           .arg(QString::fromStdString(imageTag->value())));
      return label;
    }
    const AuxFile& file = images[image % images.size()];
    tag = QString::fromStdString(file.tags().empty() ? std::string() : file.tags().front());
    const QString problem = files->problem(file);
    const auto picture = problem.isEmpty() ? loader->image(file.filePath()) : nullptr;
    if (!problem.isEmpty())
      label->setText(problem);
    else if (!picture || picture->isNull())
      label->setText("cannot read " + QString::fromStdString(file.relativePath()) +
                     " (not an image, damaged, or larger than the pixel budget)");
    else
      label->setPixmap(QPixmap::fromImage(picture->scaled(
        picture->size() * zoom->value() / 100, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    return label;
  }

  void show()
  {
    delete panes->layout();
    qDeleteAll(panes->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
    auto* row = new QHBoxLayout(panes);
    shown.clear();
    captions.clear();
    QString tag;
    const std::size_t count =
      std::min<std::size_t>(static_cast<std::size_t>(sideBySide->value()), selected.size());
    for (std::size_t i = 0; i < count; ++i)
    {
      const unsigned long long id = selected[(firstCase + i) % selected.size()];
      const Record record = project->record(id).lock();
      auto* column = new QVBoxLayout();
      column->addWidget(pane(record, tag), 1);
      auto* text = new QLabel(caption(record));
      text->setWordWrap(true);
      column->addWidget(text);
      row->addLayout(column);
      shown.push_back(id);
      captions.push_back(text->text());
    }
    if (selected.empty())
      row->addWidget(
        new QLabel(noImages.isEmpty() ? "Select cases to see their images." : noImages));
    position->setText(selected.empty() ? QString()
                                       : QString("case %1 of %2, image %3 %4")
                                           .arg(firstCase + 1)
                                           .arg(selected.size())
                                           .arg(image + 1)
                                           .arg(tag));
  }

  std::unique_ptr<ChangesWhileHidden> changes;

  void follow(const std::vector<unsigned long long>& ids)
  {
    selected = order->sorted(ids);
    firstCase = 0;
    show();
  }
};

SelectedImageView::SelectedImageView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("SelectedImage"), context.selection)
  , d(std::make_unique<Impl>())
{
  d->project = context.project;
  d->selection = context.selection;
  d->files = context.files;
  d->order = context.order;
  d->loader = FileLocator::locating(context.files, context.images->imageLoader());
  if (studyfiles::imageTags(*d->project).empty())
    d->noImages = d->project->auxFiles().empty() ? "This study has no image files."
                                                 : "None of this study's files is an image.";
  d->container = new QWidget();
  setWidget(d->container);
  d->container->setObjectName("selectedImage");
  d->container->setFocusPolicy(Qt::StrongFocus);
  auto* layout = new QVBoxLayout(d->container);
  layout->setContentsMargins(2, 2, 2, 2);
  auto* bar = new QHBoxLayout();
  const std::pair<const char*, std::pair<int, int>> buttons[] = { { "< Case", { -1, 0 } },
                                                                  { "Case >", { 1, 0 } },
                                                                  { "< Image", { 0, -1 } },
                                                                  { "Image >", { 0, 1 } } };
  for (const auto& [text, step] : buttons)
  {
    auto* button = new QPushButton(text);
    QObject::connect(button,
                     &QPushButton::clicked,
                     d->container,
                     [this, step = step]
                     {
                       stepCases(step.first);
                       stepImages(step.second);
                     });
    bar->addWidget(button);
  }
  d->position = new QLabel();
  bar->addWidget(d->position, 1);
  layout->addLayout(bar);
  auto* scroll = new QScrollArea();
  d->panes = new QWidget();
  scroll->setWidget(d->panes);
  scroll->setWidgetResizable(true);
  layout->addWidget(scroll, 1);
  d->container->installEventFilter(new StepKeys(d->container,
                                                [this](int cases, int images)
                                                {
                                                  stepCases(cases);
                                                  stepImages(images);
                                                }));

  using Bounded = plexa::BoundedValueValidator<short>;
  d->sideBySide = boost::make_shared<plexa::UndoablePropertyProxy<short>>(
    "Side by Side",
    boost::make_shared<plexa::Property<short>>(
      1, boost::make_shared<Bounded>(1, Bounded::Inclusive, 4, Bounded::Inclusive)));
  d->zoom = boost::make_shared<plexa::UndoablePropertyProxy<short>>(
    "Image Zoom",
    boost::make_shared<plexa::Property<short>>(
      100, boost::make_shared<Bounded>(10, Bounded::Inclusive, 400, Bounded::Inclusive)));
  d->imageTag = boost::make_shared<plexa::UndoablePropertyProxy<std::string>>(
    "Image Tag", boost::make_shared<plexa::Property<std::string>>(std::string()));
  Impl* impl = d.get();
  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->container,
    *context.selection,
    ChangesWhileHidden::Steps{ {}, [impl](const auto& ids) { impl->follow(ids); }, {} });
  for (const auto& setting : { d->sideBySide, d->zoom })
    connections().add(setting->connectSignalPropertyChanged([impl] { impl->show(); }));
  connections().add(d->imageTag->connectSignalPropertyChanged([impl] { impl->show(); }));
  connections().add(context.files->locations()->connectSignalPropertyChanged(
    [impl] { impl->changes->changed(false); }));
  connections().add(context.order->connectChanged([impl] { impl->changes->changed(false); }));
  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases& ids) { impl->changes->selectionChanged(*ids); }));
  saveSetting(boost::make_shared<GenericSerializer<short>>("SideBySide", d->sideBySide), "1 to 4");
  saveSetting(boost::make_shared<GenericSerializer<short>>("Zoom", d->zoom), "a percentage");
  saveSetting(boost::make_shared<GenericSerializer<std::string>>("ImageTag", d->imageTag));
}

SelectedImageView::~SelectedImageView() = default;

std::vector<SettingsSection> SelectedImageView::settingsSections(PropertyEditors& editors)
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  form->addRow(
    "Side by side",
    editors.enumChooser<short>(d->sideBySide, { { "1", 1 }, { "2", 2 }, { "3", 3 }, { "4", 4 } }));
  form->addRow(
    "Zoom",
    editors.enumChooser<short>(
      d->zoom,
      { { "25%", 25 }, { "50%", 50 }, { "100%", 100 }, { "200%", 200 }, { "400%", 400 } }));
  form->addRow("Images", editors.tagChooser(d->imageTag, "(every image)"));
  return { { title(), box } };
}

std::string SelectedImageView::selectionSummary() const
{
  d->changes->catchUp();
  return std::to_string(d->shown.size()) + " cases shown";
}

void SelectedImageView::suspendParts() {}

void SelectedImageView::resumeParts()
{
  d->changes->changed(false);
}

void SelectedImageView::refresh()
{
  d->container->update();
}

boost::shared_ptr<plexa::PropertyAbstract<short>> SelectedImageView::sideBySide() const
{
  return d->sideBySide;
}

boost::shared_ptr<plexa::PropertyAbstract<short>> SelectedImageView::zoom() const
{
  return d->zoom;
}

void SelectedImageView::stepCases(int step)
{
  d->changes->catchUp();
  if (d->selected.empty() || step == 0)
    return;
  const auto count = static_cast<long long>(d->selected.size());
  const long long by = step * static_cast<long long>(d->sideBySide->value());
  d->firstCase =
    static_cast<std::size_t>(((static_cast<long long>(d->firstCase) + by) % count + count) % count);
  d->show();
}

void SelectedImageView::stepImages(int step)
{
  d->changes->catchUp();
  if (d->selected.empty() || step == 0)
    return;
  // Wraps around the images of the first case shown; the others show theirs modulo their count.
  const Record first = d->project->record(d->selected[d->firstCase]).lock();
  const auto count = static_cast<long long>(
    std::max<std::size_t>(1, studyfiles::imagesOf(first, d->imageTag->value()).size()));
  d->image = static_cast<std::size_t>(
    ((static_cast<long long>(d->image % count) + step) % count + count) % count);
  d->show();
}

std::vector<unsigned long long> SelectedImageView::shownCases() const
{
  d->changes->catchUp();
  return d->shown;
}

std::vector<QString> SelectedImageView::captions() const
{
  d->changes->catchUp();
  return d->captions;
}

} // namespace explorer
