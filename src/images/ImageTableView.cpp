#include "images/ImageTableView.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "datapipeline/DataPipelineManagerInterface.h"
#include "dataviews/SelectionBroadcaster.h"
#include "dataviews/TableViewSelectionSynchronizer.h"
#include "images/ImageMatrixTableModelAdapter.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableModel.h"
#include "images/ImageViewItemDelegate.h"
#include "images/ImageViewSelectionConverter.h"
#include "images/ImageViewStylesheets.h"
#include "images/QImageTableView.h"
#include "images/ScalingImageLoader.h"
#include "properties/PropertyAbstract.h"
#include "qxt/QxtLabel.h"
#include "signals/SignalConnectionCollection.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QImage>
#include <QScrollBar>
#include <QVBoxLayout>
#include <boost/make_shared.hpp>
#include <vtkTableAlgorithm.h>

#include <algorithm>

struct ImageTableView::Impl
{
  QVBoxLayout* dialogLayout = nullptr;
  QHBoxLayout* horizontalLayout = nullptr;
  QxtLabel* rowHeader = nullptr;
  QVBoxLayout* verticalLayout = nullptr;
  QxtLabel* columnHeader = nullptr;
  QImageTableView* table = nullptr;
  ImageViewItemDelegate* delegate = nullptr;

  std::shared_ptr<const DataPipelineManagerInterface> pipeline;
  vtkSmartPointer<vtkTableAlgorithm> input;
  boost::shared_ptr<SelectionModelInterface> selectionModel;
  std::shared_ptr<ImageFileLoaderInterface> source;
  std::shared_ptr<ScalingImageLoader> loader;
  std::shared_ptr<ImageMatrixViewProperties> properties;
  std::shared_ptr<ImageTableModel> grid;
  std::unique_ptr<ImageMatrixTableModelAdapter> adapter;
  boost::shared_ptr<ImageViewSelectionConverter> converter;
  std::unique_ptr<TableViewSelectionSynchronizer> synchronizer;
  std::unique_ptr<SelectionBroadcaster> broadcaster;
  // The selection the host told the view as a sorted list, shown again after every rebuild;
  // null while the view follows its selection model.
  std::shared_ptr<const std::vector<unsigned long long>> toldCases;
  SignalConnectionCollection connections;
  mutable SelectedImagesChangedSignal signalSelectedImagesChanged;

  void setupUi(QWidget& form)
  {
    form.setObjectName("ImageTableView");
    form.resize(708, 568);
    form.setWindowTitle("Form");
    dialogLayout = new QVBoxLayout(&form);
    dialogLayout->setObjectName("dialogLayout");
    horizontalLayout = new QHBoxLayout();
    horizontalLayout->setObjectName("horizontalLayout");
    rowHeader = new QxtLabel("Row Header", &form);
    rowHeader->setObjectName("rowHeader");
    rowHeader->setRotation(QxtLabel::CounterClockwise);
    horizontalLayout->addWidget(rowHeader);
    verticalLayout = new QVBoxLayout();
    verticalLayout->setObjectName("verticalLayout");
    columnHeader = new QxtLabel("Column Header", &form);
    columnHeader->setObjectName("columnHeader");
    columnHeader->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    verticalLayout->addWidget(columnHeader);
    table = new QImageTableView(&form);
    table->setObjectName("tableView");
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setStyleSheet(imageTableViewStylesheet());
    verticalLayout->addWidget(table);
    horizontalLayout->addLayout(verticalLayout);
    dialogLayout->addLayout(horizontalLayout);
    const QString font = "font: 75 12pt \"MS Shell Dlg 2\";";
    rowHeader->setStyleSheet(font);
    columnHeader->setStyleSheet(font);
  }

  // The axis titles: the variable's name, "Tags" for a tag axis, nothing for a single entry.
  static QString axisTitle(ImageMatrixViewProperties::RowColumnDimensionBy mode,
                           const WeakPtr<Variable>& variable)
  {
    if (mode == ImageMatrixViewProperties::ByTag)
      return "Tags";
    return QString::fromStdString(variable.lock().name());
  }

  void gridRebuilt()
  {
    rowHeader->setText(
      axisTitle(properties->dimensionRowsBy()->value(), properties->rowVar()->value()));
    columnHeader->setText(
      axisTitle(properties->dimensionColumnsBy()->value(), properties->columnVar()->value()));
    resizeCells();
    // The reset cleared the item selection; show the master's again without sending it back.
    if (toldCases)
      showCells(*toldCases);
    else if (synchronizer)
      synchronizer->showMasterSelection();
  }

  // Selects the cells holding the cases, without sending the selection back to the master.
  // Cells already selected are left as they are: a pick in the view comes back here as the
  // cases it selected, and re-selecting would disturb a drag still under way.
  void showCells(const std::vector<unsigned long long>& ascendingIds)
  {
    const QItemSelection wanted = converter->selectionFromCaseIDs(ascendingIds);
    QItemSelectionModel& selection = *table->selectionModel();
    QModelIndexList now = selection.selectedIndexes();
    QModelIndexList then = wanted.indexes();
    std::sort(now.begin(), now.end());
    std::sort(then.begin(), then.end());
    if (now == then)
      return;
    synchronizer->endLocalSelectionMonitoring();
    selection.select(wanted, QItemSelectionModel::ClearAndSelect);
    synchronizer->beginLocalSelectionMonitoring();
  }

  void resizeCells()
  {
    table->resizeRowsToContents();
    table->resizeColumnsToContents();
  }

  void applyZoom(unsigned long long zoom)
  {
    const QSize size = zoomLevelToImageSize(zoom);
    loader->setSize(size);
    delegate->setImageSize(size);
    adapter->imagesChanged();
    resizeCells();
  }
};

ImageTableView::ImageTableView(QWidget& parent,
                               std::shared_ptr<const DataPipelineManagerInterface> pipeline,
                               boost::shared_ptr<SelectionModelInterface> selectionModel,
                               std::shared_ptr<ImageFileLoaderInterface> loader,
                               std::shared_ptr<ImageMatrixViewProperties> properties)
  : ImageTableView(parent,
                   pipeline->output(),
                   std::move(selectionModel),
                   std::move(loader),
                   std::move(properties))
{
  d->pipeline = std::move(pipeline);
}

ImageTableView::ImageTableView(QWidget& parent,
                               vtkSmartPointer<vtkTableAlgorithm> input,
                               boost::shared_ptr<SelectionModelInterface> selectionModel,
                               std::shared_ptr<ImageFileLoaderInterface> loader,
                               std::shared_ptr<ImageMatrixViewProperties> properties)
  : QWidget(&parent)
  , d(std::make_unique<Impl>())
{
  d->setupUi(*this);
  d->input = input;
  d->selectionModel = std::move(selectionModel);
  d->source = std::move(loader);
  d->properties =
    properties ? std::move(properties) : std::make_shared<ImageMatrixViewProperties>();
  const QSize size = zoomLevelToImageSize(d->properties->zoom()->value());
  d->loader = std::make_shared<ScalingImageLoader>(d->source, size);
  d->grid = std::make_shared<ImageTableModel>(d->input, d->properties);
  d->adapter = std::make_unique<ImageMatrixTableModelAdapter>(d->grid, d->loader, d->properties);

  ImageMatrixTableModelAdapter* adapter = d->adapter.get();
  d->delegate = new ImageViewItemDelegate(
    [adapter](const QModelIndex& index) { return adapter->caption(index); }, d->table);
  d->delegate->setImageSize(size);
  d->table->setImageDelegate(d->delegate);
  d->table->setModel(d->adapter.get());

  d->converter = boost::make_shared<ImageViewSelectionConverter>(d->grid, *d->adapter);
  d->synchronizer =
    std::make_unique<TableViewSelectionSynchronizer>(d->selectionModel, *d->table, d->converter);
  d->broadcaster = std::make_unique<SelectionBroadcaster>(*d->table->selectionModel());
  Impl* impl = d.get();
  d->connections.add(d->broadcaster->connectSignalSelectedImagesChanged(
    [impl] { impl->signalSelectedImagesChanged(); }));
  d->connections.add(d->properties->zoom()->connectSignalValueChanged(
    [impl](const unsigned long long& zoom) { impl->applyZoom(zoom); }));
  d->connections.add(d->grid->connectSignalModelReset([impl] { impl->gridRebuilt(); }));
  d->connections.add(d->selectionModel->connectSignalSelectionChanged(
    [impl](const std::set<unsigned long long>& ids)
    {
      impl->toldCases.reset();
      impl->adapter->setPreferredCases(ids);
    }));
  const auto captionsChanged = [impl] { impl->resizeCells(); };
  d->connections.add(d->properties->showLabels()->connectSignalPropertyChanged(captionsChanged));
  d->connections.add(
    d->properties->variablesInLabel()->connectSignalPropertyChanged(captionsChanged));
  d->gridRebuilt();
}

ImageTableView::~ImageTableView()
{
  d->connections.clear();
  // The synchroniser and the broadcaster watch the table's selection model; they go first.
  d->synchronizer.reset();
  d->broadcaster.reset();
  d->table->setModel(nullptr);
}

int ImageTableView::width() const
{
  return d->table->horizontalHeader()->length();
}

int ImageTableView::height() const
{
  return d->table->verticalHeader()->length();
}

std::vector<std::string> ImageTableView::availableTags() const
{
  return d->grid->availableTags();
}

std::shared_ptr<ImageMatrixViewProperties> ImageTableView::properties() const
{
  return d->properties;
}

int ImageTableView::numSelections() const
{
  return d->table->selectionModel()->selectedIndexes().size();
}

std::vector<std::shared_ptr<const AuxFileImageData>> ImageTableView::selectedImages() const
{
  const QModelIndexList selected = d->table->selectionModel()->selectedIndexes();
  std::size_t total = 0;
  for (const QModelIndex& index : selected)
    total += d->grid->auxFilesAt(index.row(), index.column()).size();
  std::vector<std::shared_ptr<const AuxFileImageData>> images;
  images.reserve(total);
  for (const QModelIndex& index : selected)
  {
    for (const auto& handle : d->grid->auxFilesAt(index.row(), index.column()))
    {
      const AuxFile file = handle.lock();
      auto data = std::make_shared<AuxFileImageData>();
      data->file = handle;
      data->filePath = file.filePath();
      data->caseId = file.record().lock().caseId();
      data->image = d->source->image(data->filePath);
      images.push_back(std::move(data));
    }
  }
  return images;
}

std::vector<WeakPtr<AuxFile>> ImageTableView::selectedAuxFiles() const
{
  std::vector<WeakPtr<AuxFile>> files;
  for (const QModelIndex& index : d->table->selectionModel()->selectedIndexes())
  {
    const auto cell = d->grid->auxFilesAt(index.row(), index.column());
    files.insert(files.end(), cell.begin(), cell.end());
  }
  return files;
}

std::vector<WeakPtr<AuxFile>> ImageTableView::displayedAuxFiles() const
{
  std::vector<WeakPtr<AuxFile>> files;
  for (int row = 0; row < d->grid->rowCount(); ++row)
  {
    for (int column = 0; column < d->grid->columnCount(); ++column)
    {
      const auto cell = d->grid->auxFilesAt(row, column);
      files.insert(files.end(), cell.begin(), cell.end());
    }
  }
  return files;
}

void ImageTableView::scrollPositions(int& horizontal, int& vertical) const
{
  horizontal = d->table->horizontalScrollBar()->value();
  vertical = d->table->verticalScrollBar()->value();
}

void ImageTableView::setScrollPositions(int horizontal, int vertical)
{
  for (auto [bar, position] : { std::make_pair(d->table->horizontalScrollBar(), horizontal),
                                std::make_pair(d->table->verticalScrollBar(), vertical) })
  {
    if (position > bar->maximum())
      bar->setMaximum(position);
    bar->setValue(position);
  }
}

void ImageTableView::showSelectedCases(
  std::shared_ptr<const std::vector<unsigned long long>> ascendingIds)
{
  if (!ascendingIds)
    ascendingIds = std::make_shared<const std::vector<unsigned long long>>();
  d->toldCases = ascendingIds;
  d->adapter->setPreferredCases(ascendingIds);
  d->showCells(*ascendingIds);
}

void ImageTableView::suspend()
{
  d->connections.block();
  d->grid->suspend();
}

void ImageTableView::resume()
{
  d->connections.unblock();
  d->grid->resume();
}

boost::signals2::connection ImageTableView::connectSignalSelectedImagesChanged(
  const SelectedImagesChangedSignal::slot_type& slot) const
{
  return d->signalSelectedImagesChanged.connect(slot);
}

QImageTableView& ImageTableView::tableView() const
{
  return *d->table;
}
