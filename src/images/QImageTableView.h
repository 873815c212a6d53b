#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <QTableView>

class ImageViewItemDelegate;

/// A table view whose rows and columns are sized from its image delegate. To stay cheap on large
/// grids a row's height samples at most three cells (first, middle and last column), and a
/// column's width likewise.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT QImageTableView : public QTableView
{
  Q_OBJECT

public:
  explicit QImageTableView(QWidget* parent = nullptr);
  ~QImageTableView() override;

  /// The view does not take ownership; the delegate is usually a child of the view.
  void setImageDelegate(ImageViewItemDelegate* delegate);
  ImageViewItemDelegate* imageDelegate() const;

protected:
  int sizeHintForRow(int row) const override;
  int sizeHintForColumn(int column) const override;

private:
  ImageViewItemDelegate* delegate = nullptr;
};
