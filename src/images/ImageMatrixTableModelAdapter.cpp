#include "images/ImageMatrixTableModelAdapter.h"

#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "images/ImageFileLoaderInterface.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableModel.h"
#include "images/ImageViewItemDelegate.h"
#include "properties/PropertyAbstract.h"

#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <boost/format.hpp>

#include <algorithm>

ImageMatrixTableModelAdapter::ImageMatrixTableModelAdapter(
  std::shared_ptr<ImageTableModel> grid,
  std::shared_ptr<ImageFileLoaderInterface> loader,
  std::shared_ptr<ImageMatrixViewProperties> properties)
  : imageGrid(std::move(grid))
  , loader(std::move(loader))
  , properties(std::move(properties))
{
  // The grid has changed by the time it signals; the reset only tells the views to read again.
  connections.add(imageGrid->connectSignalModelReset(
    [this]
    {
      beginResetModel();
      endResetModel();
    }));
  const auto labelsChanged = [this]
  {
    if (rowCount() > 0 && columnCount() > 0)
    {
      Q_EMIT dataChanged(index(0, 0),
                         index(rowCount() - 1, columnCount() - 1),
                         { Qt::DisplayRole, Qt::ToolTipRole });
    }
  };
  connections.add(this->properties->showLabels()->connectSignalPropertyChanged(labelsChanged));
  connections.add(
    this->properties->variablesInLabel()->connectSignalPropertyChanged(labelsChanged));
}

ImageMatrixTableModelAdapter::~ImageMatrixTableModelAdapter()
{
  connections.clear();
}

int ImageMatrixTableModelAdapter::rowCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : imageGrid->rowCount();
}

int ImageMatrixTableModelAdapter::columnCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : imageGrid->columnCount();
}

const ImageTableModel& ImageMatrixTableModelAdapter::grid() const
{
  return *imageGrid;
}

void ImageMatrixTableModelAdapter::imagesChanged()
{
  if (rowCount() > 0 && columnCount() > 0)
  {
    Q_EMIT dataChanged(
      index(0, 0), index(rowCount() - 1, columnCount() - 1), { Qt::DecorationRole });
  }
}

void ImageMatrixTableModelAdapter::setPreferredCases(const std::set<unsigned long long>& ids)
{
  setPreferredCases(
    std::make_shared<const std::vector<unsigned long long>>(ids.begin(), ids.end()));
}

void ImageMatrixTableModelAdapter::setPreferredCases(
  std::shared_ptr<const std::vector<unsigned long long>> ascendingIds)
{
  const bool none = !ascendingIds || ascendingIds->empty();
  if (none && (!preferred || preferred->empty()))
    return;
  preferred = none ? nullptr : std::move(ascendingIds);
  if (rowCount() > 0 && columnCount() > 0)
  {
    Q_EMIT dataChanged(index(0, 0),
                       index(rowCount() - 1, columnCount() - 1),
                       { Qt::DisplayRole, Qt::DecorationRole, Qt::ToolTipRole });
  }
}

std::vector<WeakPtr<AuxFile>> ImageMatrixTableModelAdapter::filesAt(const QModelIndex& index) const
{
  auto files = imageGrid->auxFilesAt(index.row(), index.column());
  if (files.size() < 2 || !preferred)
    return files;
  // The smallest preferred case of the cell: both lists are sorted; look the shorter up in the
  // longer.
  const auto& cases = imageGrid->casesAt(index.row(), index.column());
  const auto& few = preferred->size() < cases.size() ? *preferred : cases;
  const auto& many = preferred->size() < cases.size() ? cases : *preferred;
  const auto chosen = std::find_if(few.begin(),
                                   few.end(),
                                   [&](unsigned long long id)
                                   { return std::binary_search(many.begin(), many.end(), id); });
  if (chosen == few.end())
    return files;
  std::stable_partition(files.begin(),
                        files.end(),
                        [&](const WeakPtr<AuxFile>& file)
                        { return file.lock().record().lock().caseId() == *chosen; });
  return files;
}

QString ImageMatrixTableModelAdapter::caption(const QModelIndex& index) const
{
  // Without labels the cell's files are not looked for: every row's size asks for captions.
  if (!properties->showLabels()->value())
  {
    return {};
  }
  const auto files = filesAt(index);
  if (files.empty())
  {
    return {};
  }
  const Record record = files.front().lock().record().lock();
  return QString::fromStdString(
    labelMaker.label(properties->variablesInLabel()->value(), record, "  "));
}

QString ImageMatrixTableModelAdapter::toolTip(const QModelIndex& index) const
{
  const auto files = filesAt(index);
  if (files.empty())
  {
    return {};
  }
  const AuxFile first = files.front().lock();
  const Record record = first.record().lock();
  std::string suffix;
  if (properties->showLabels()->value())
  {
    const std::string labels =
      labelMaker.label(properties->variablesInLabel()->value(), record, "\n");
    if (!labels.empty())
      suffix = "\n\n" + labels;
  }
  const std::string caseId = record.data(Project::project()->caseIdVariable()).toString();
  std::string text =
    (boost::format("%1%: %2%\nFile Name: %3%%4%") % "Case ID" % caseId % first.filePath() % suffix)
      .str();
  if (files.size() > 1)
  {
    text +=
      (boost::format("\n%1% additional image(s) at this location.") % (files.size() - 1)).str();
  }
  return QString::fromStdString(text);
}

QString ImageMatrixTableModelAdapter::problem(const QModelIndex& index) const
{
  const auto files = filesAt(index);
  if (files.empty())
    return {};
  const std::string path = files.front().lock().filePath();
  const std::shared_ptr<QImage> image = loader->image(path);
  if (image && !image->isNull())
    return {};
  // The loader does not say why. A file whose header declares a size was refused as too large
  // for the cache's pixel budget, or is damaged past its header.
  const QString file = QString::fromStdString(path);
  if (!QFileInfo::exists(file))
    return "missing file";
  return QImageReader(file).size().isValid() ? "image too large or damaged" : "unreadable image";
}

QVariant ImageMatrixTableModelAdapter::data(const QModelIndex& index, int role) const
{
  if (!index.isValid())
  {
    return {};
  }
  switch (role)
  {
    case Qt::DisplayRole:
      return caption(index);
    case Qt::DecorationRole:
    {
      const auto files = filesAt(index);
      if (files.empty())
        return {};
      const std::shared_ptr<QImage> image = loader->image(files.front().lock().filePath());
      if (!image || image->isNull())
        return {};
      return files.size() > 1 ? decorator.decorate(*image) : *image;
    }
    case Qt::ToolTipRole:
      return toolTip(index);
    case ImageViewItemDelegate::ProblemRole:
      return problem(index);
    default:
      return {};
  }
}

QVariant ImageMatrixTableModelAdapter::headerData(int section,
                                                  Qt::Orientation orientation,
                                                  int role) const
{
  if (role != Qt::DisplayRole || section < 0)
  {
    return {};
  }
  if (orientation == Qt::Horizontal && section < imageGrid->columnCount())
  {
    return QString::fromStdString(imageGrid->columnTitle(section));
  }
  if (orientation == Qt::Vertical && section < imageGrid->rowCount())
  {
    return QString::fromStdString(imageGrid->rowTitle(section));
  }
  return {};
}
