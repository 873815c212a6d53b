#include "images/ImageViewStylesheets.h"

#include <QSettings>

namespace
{

QString stylesheet(const QString& key, const QString& fallback)
{
  QSettings settings;
  const QVariant stored = settings.value(key);
  if (!stored.isValid())
  {
    settings.setValue(key, fallback);
    return fallback;
  }
  return stored.toString();
}

} // namespace

QString imageTableViewStylesheet()
{
  return stylesheet("ImageTableViewStylesheet", "QTableView{background-color:lightgray}");
}

QString imageListViewStylesheet()
{
  return stylesheet("ImageListViewStylesheet", "QListView{background-color:lightgray}");
}
