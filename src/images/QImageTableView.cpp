#include "images/QImageTableView.h"
#include "images/ImageViewItemDelegate.h"

#include <algorithm>
#include <set>

QImageTableView::QImageTableView(QWidget* parent)
  : QTableView(parent)
{
}

QImageTableView::~QImageTableView() = default;

void QImageTableView::setImageDelegate(ImageViewItemDelegate* imageDelegate)
{
  delegate = imageDelegate;
  setItemDelegate(imageDelegate);
}

ImageViewItemDelegate* QImageTableView::imageDelegate() const
{
  return delegate;
}

namespace
{

// The first, middle and last of n, without repeats.
std::set<int> samples(int n)
{
  return { 0, n - 1, (n - 1) / 2 };
}

} // namespace

int QImageTableView::sizeHintForRow(int row) const
{
  if (!model() || !delegate)
  {
    return -1;
  }
  int height = 0;
  QStyleOptionViewItem option = viewOptions();
  for (int column : samples(model()->columnCount()))
  {
    height = std::max(height, delegate->sizeHint(option, model()->index(row, column)).height());
  }
  return height + (showGrid() ? 1 : 0);
}

int QImageTableView::sizeHintForColumn(int column) const
{
  if (!model() || !delegate)
  {
    return -1;
  }
  int width = 0;
  QStyleOptionViewItem option = viewOptions();
  for (int row : samples(model()->rowCount()))
  {
    width = std::max(width, delegate->sizeHint(option, model()->index(row, column)).width());
  }
  return width + (showGrid() ? 1 : 0);
}
