#pragma once

#include "datamanagement/AuxFile.h"
#include "datamanagement/WeakPtr.h"
#include "images/ImageDecorator.h"
#include "images/LabelMaker.h"
#include "quen_analyzer_dataviews_common_export.h"
#include "signals/SignalConnectionCollection.h"

#include <QAbstractTableModel>

#include <memory>
#include <set>
#include <vector>

class ImageFileLoaderInterface;
class ImageMatrixViewProperties;
class ImageTableModel;

/// The Qt table model of the image matrix over its grid: a cell shows the image of its first
/// file (with the stack marker when it holds several), or the first file of a preferred case it
/// holds, a caption built from the variables in
/// label when labels are shown, and a tool tip naming the case, the file and the further images
/// of the cell. Header texts are the axis values. The model resets whenever the grid rebuilds;
/// label settings change captions and tool tips in place.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageMatrixTableModelAdapter
  : public QAbstractTableModel
{
  Q_OBJECT

public:
  ImageMatrixTableModelAdapter(std::shared_ptr<ImageTableModel> grid,
                               std::shared_ptr<ImageFileLoaderInterface> loader,
                               std::shared_ptr<ImageMatrixViewProperties> properties);
  ~ImageMatrixTableModelAdapter() override;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// The caption of a cell: empty without labels or files.
  QString caption(const QModelIndex& index) const;
  /// The tool tip of a cell: empty for a cell without files.
  QString toolTip(const QModelIndex& index) const;
  /// Why the shown file of a cell gives no image ("missing file", "unreadable image", "image
  /// too large or damaged"); empty when it gives one or the cell has none. data() gives it for
  /// ImageViewItemDelegate's ProblemRole.
  QString problem(const QModelIndex& index) const;
  const ImageTableModel& grid() const;
  /// Tells the views that every image changed (after the loader's size changed).
  void imagesChanged();
  /// The cases whose images come first: a cell holding some of them shows the first file of
  /// the smallest (its caption and tool tip follow); other cells show their first file. The
  /// image view prefers the selected cases, so that a cell shows the case picked elsewhere.
  void setPreferredCases(const std::set<unsigned long long>& ids);
  /// The same for case ids ascending without repeats, shared rather than copied. Null is none.
  void setPreferredCases(std::shared_ptr<const std::vector<unsigned long long>> ascendingIds);

private:
  /// The files of a cell, those of its preferred case first.
  std::vector<WeakPtr<AuxFile>> filesAt(const QModelIndex& index) const;

  std::shared_ptr<ImageTableModel> imageGrid;
  std::shared_ptr<ImageFileLoaderInterface> loader;
  std::shared_ptr<ImageMatrixViewProperties> properties;
  LabelMaker labelMaker;
  ImageDecorator decorator;
  SignalConnectionCollection connections;
  std::shared_ptr<const std::vector<unsigned long long>> preferred;
};
