#include "images/ImageViewItemDelegate.h"

#include <QApplication>
#include <QPainter>
#include <QWidget>

#include <climits>

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
  else if (const QString problem = index.data(ProblemRole).toString(); !problem.isEmpty())
  {
    // In place of the image, a frame saying why there is none.
    const QRect frame(option.rect.x() + (option.rect.width() - size.width()) / 2,
                      option.rect.y() + 4,
                      size.width() - 1,
                      size.height() - 1);
    painter->fillRect(frame, QColor(235, 235, 235));
    painter->setPen(QPen(QColor(160, 40, 40), 1, Qt::DashLine));
    painter->drawRect(frame);
    painter->setPen(QColor(120, 30, 30));
    painter->drawText(frame.adjusted(3, 3, -3, -3),
                      static_cast<int>(Qt::TextWordWrap) | static_cast<int>(Qt::AlignCenter),
                      problem);
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
