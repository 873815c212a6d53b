#include "images/ImageMatrixTableModelAdapter.h"
#include "images/ImageTableModel.h"
#include "images/ImageViewItemDelegate.h"
#include "images/ImageViewSelectionConverter.h"
#include "images/ImageViewStylesheets.h"
#include "images/QImageTableView.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QPainter>
#include <QSettings>
#include <QWidget>

#include <algorithm>
#include <climits>
#include <set>

// ---------------------------------------------------------------------------------------------
// ImageViewItemDelegate

namespace
{

// A text flag and alignment flags in one int, as QFontMetrics::boundingRect takes them.
constexpr int captionFlags =
  static_cast<int>(Qt::TextWordWrap) | (Qt::AlignTop | Qt::AlignVCenter | Qt::AlignHCenter);

} // namespace

ImageViewItemDelegate::ImageViewItemDelegate(CaptionFunction caption, QObject* parent)
  : QStyledItemDelegate(parent)
  , caption(std::move(caption))
{
}

ImageViewItemDelegate::ImageViewItemDelegate(QObject* parent)
  : QStyledItemDelegate(parent)
{
}

ImageViewItemDelegate::~ImageViewItemDelegate() = default;

void ImageViewItemDelegate::setImageSize(const QSize& newSize)
{
  size = newSize;
}

QSize ImageViewItemDelegate::imageSize() const
{
  return size;
}

QString ImageViewItemDelegate::captionOf(const QModelIndex& index) const
{
  if (index.row() < 0 || index.column() < 0 || !index.model())
  {
    return {};
  }
  return caption(index);
}

QSize ImageViewItemDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const
{
  const QString text = captionOf(index);
  int textWidth = 0;
  int textHeight = 0;
  if (!text.isEmpty())
  {
    const auto* widget = qobject_cast<const QWidget*>(parent());
    const QFontMetrics metrics =
      widget ? widget->fontMetrics() : QFontMetrics(QApplication::font());
    const QRect measured =
      metrics.boundingRect(QRect(0, 0, size.width(), INT_MAX), captionFlags, text);
    textHeight = measured.height() + metrics.height();
    textWidth = measured.width() + 2;
  }
  return QSize(std::max(textWidth, size.width()) + 8, size.height() + 8 + textHeight);
}

void ImageViewItemDelegate::paint(QPainter* painter,
                                  const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const
{
  painter->save();
  if (option.state & QStyle::State_Selected)
  {
    painter->fillRect(option.rect, option.palette.brush(QPalette::Active, QPalette::Highlight));
  }
  const auto image = index.data(Qt::DecorationRole).value<QImage>();
  if (!image.isNull())
  {
    const int x = option.rect.x() + (option.rect.width() - image.width()) / 2;
    painter->drawImage(QPoint(x, option.rect.y() + 4), image);
  }
  const QString text = index.data(Qt::DisplayRole).toString();
  if (!text.isEmpty())
  {
    const QRect textArea(option.rect.x() + 4,
                         option.rect.y() + 4 + size.height() + 4,
                         option.rect.width() - 8,
                         option.rect.height() - size.height() - 12);
    painter->setPen(option.palette.color(
      QPalette::Active,
      option.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(textArea, captionFlags, text);
  }
  painter->restore();
}

// ---------------------------------------------------------------------------------------------
// QImageTableView

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

// ---------------------------------------------------------------------------------------------
// ImageViewSelectionConverter

ImageViewSelectionConverter::ImageViewSelectionConverter(
  std::shared_ptr<const ImageTableModel> grid,
  const QAbstractItemModel& items)
  : grid(std::move(grid))
  , items(items)
{
}

ImageViewSelectionConverter::~ImageViewSelectionConverter() = default;

std::set<unsigned long long> ImageViewSelectionConverter::caseIDsFromSelection(
  const QItemSelectionModel& selectionModel) const
{
  std::set<unsigned long long> ids;
  for (const QModelIndex& index : selectionModel.selectedIndexes())
  {
    const auto& cases = grid->casesAt(index.row(), index.column());
    ids.insert(cases.begin(), cases.end());
  }
  return ids;
}

QItemSelection ImageViewSelectionConverter::selectionFromCaseIDs(
  const std::set<unsigned long long>& ids) const
{
  QItemSelection selection;
  if (ids.empty())
  {
    return selection;
  }
  for (int row = 0; row < grid->rowCount(); ++row)
  {
    for (int column = 0; column < grid->columnCount(); ++column)
    {
      const auto& cases = grid->casesAt(row, column);
      // Look the smaller set up in the larger one.
      const bool shown =
        ids.size() < cases.size()
          ? std::any_of(ids.begin(),
                        ids.end(),
                        [&](unsigned long long id)
                        { return std::binary_search(cases.begin(), cases.end(), id); })
          : std::any_of(cases.begin(),
                        cases.end(),
                        [&](unsigned long long id) { return ids.count(id) != 0; });
      if (shown)
      {
        const QModelIndex index = items.index(row, column);
        selection.select(index, index);
      }
    }
  }
  return selection;
}

// ---------------------------------------------------------------------------------------------
// Style sheets

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
