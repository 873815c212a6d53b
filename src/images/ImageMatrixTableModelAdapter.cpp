#include "images/ImageMatrixTableModelAdapter.h"

#include "datamanagement/Project.h"
#include "images/ImageFileLoaderInterface.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableModel.h"
#include "properties/PropertyAbstract.h"

#include <QImage>
#include <boost/format.hpp>

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

QString ImageMatrixTableModelAdapter::caption(const QModelIndex& index) const
{
  const auto files = imageGrid->auxFilesAt(index.row(), index.column());
  if (files.empty() || !properties->showLabels()->value())
  {
    return {};
  }
  const Record record = files.front().lock().record().lock();
  return QString::fromStdString(
    labelMaker.label(properties->variablesInLabel()->value(), record, "  "));
}

QString ImageMatrixTableModelAdapter::toolTip(const QModelIndex& index) const
{
  const auto files = imageGrid->auxFilesAt(index.row(), index.column());
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
      const auto files = imageGrid->auxFilesAt(index.row(), index.column());
      if (files.empty())
        return {};
      const std::shared_ptr<QImage> image = loader->image(files.front().lock().filePath());
      return files.size() > 1 ? decorator.decorate(*image) : *image;
    }
    case Qt::ToolTipRole:
      return toolTip(index);
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
