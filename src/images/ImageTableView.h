#pragma once

#include "analyzer_common/SuspendableInterface.h"
#include "datamanagement/AuxFile.h"
#include "datamanagement/WeakPtr.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <QWidget>
#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>
#include <vtkSmartPointer.h>

#include <memory>
#include <string>
#include <vector>

class DataPipelineManagerInterface;
class ImageFileLoaderInterface;
class ImageMatrixViewProperties;
class QImage;
class QImageTableView;
class SelectionModelInterface;
class vtkTableAlgorithm;

/// An image of a selected cell: its file, its case and the image at full size.
struct AuxFileImageData
{
  WeakPtr<AuxFile> file;
  std::string filePath;
  unsigned long long caseId = 0;
  std::shared_ptr<QImage> image;
};

/// The image matrix view: the grid of the cases' images in a table sized from the zoom, with the
/// row title to the left (rotated) and the column title above. Its selection is the master
/// selection of cases, in both directions: selecting cells selects their cases everywhere, and
/// a case selected elsewhere selects every cell that shows it.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageTableView
  : public QWidget
  , public SuspendableInterface
{
  Q_OBJECT

public:
  using SelectedImagesChangedSignal = boost::signals2::signal<void()>;

  /// A view over the pipeline's output. `properties` may be null: the view makes its own.
  ImageTableView(QWidget& parent,
                 std::shared_ptr<const DataPipelineManagerInterface> pipeline,
                 boost::shared_ptr<SelectionModelInterface> selectionModel,
                 std::shared_ptr<ImageFileLoaderInterface> loader,
                 std::shared_ptr<ImageMatrixViewProperties> properties);
  /// A view over a given table algorithm.
  ImageTableView(QWidget& parent,
                 vtkSmartPointer<vtkTableAlgorithm> input,
                 boost::shared_ptr<SelectionModelInterface> selectionModel,
                 std::shared_ptr<ImageFileLoaderInterface> loader,
                 std::shared_ptr<ImageMatrixViewProperties> properties);
  ~ImageTableView() override;

  /// The full size of the grid in pixels: the total length of the horizontal header and of the
  /// vertical header. (They hide QWidget's width() and height() on purpose, as the view's
  /// interface has always named them.)
  int width() const;
  int height() const;

  /// Every tag of every file of the shown cases, sorted, without repeats.
  std::vector<std::string> availableTags() const;
  std::shared_ptr<ImageMatrixViewProperties> properties() const;
  int numSelections() const;
  /// The images of the selected cells, cell by cell in the selection's order.
  std::vector<std::shared_ptr<const AuxFileImageData>> selectedImages() const;
  std::vector<WeakPtr<AuxFile>> selectedAuxFiles() const;
  std::vector<WeakPtr<AuxFile>> displayedAuxFiles() const;

  void scrollPositions(int& horizontal, int& vertical) const;
  /// Restores scroll positions, also beyond the current range (raised to fit), so that a saved
  /// position can be restored before the grid is laid out.
  void setScrollPositions(int horizontal, int vertical);

  /// Shows these cases as the selection: the cells holding any of them selected, their images
  /// preferred, the selection model not told. For a host that keeps its selection as a sorted
  /// list rather than a set (a set of ten million cases is half a gigabyte of nodes). The view
  /// shows this list again after every rebuild of its grid, until it is told another or its
  /// selection model signals a change. Null is no case.
  void showSelectedCases(std::shared_ptr<const std::vector<unsigned long long>> ascendingIds);

  /// Stops following the pipeline and the settings; resume() catches up.
  void suspend() override;
  void resume() override;

  /// Fires when the selected images change.
  boost::signals2::connection connectSignalSelectedImagesChanged(
    const SelectedImagesChangedSignal::slot_type& slot) const;

  /// The table inside the form.
  QImageTableView& tableView() const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};
