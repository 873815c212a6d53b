#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <QSize>
#include <QStyledItemDelegate>

#include <functional>

/// Draws a cell of an image view: the image (the model's decoration) at the top, centred, and
/// its caption below, word-wrapped. A cell is as large as the image size plus the caption, with
/// a margin of 4 pixels around.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageViewItemDelegate : public QStyledItemDelegate
{
  Q_OBJECT

public:
  /// The role of a text the delegate draws in a frame in place of an image that could not be
  /// shown (why: "missing file"), for a cell that has no image.
  static constexpr int ProblemRole = Qt::UserRole + 1;

  using CaptionFunction = std::function<QString(const QModelIndex&)>;

  /// The caption of a cell comes from `caption`; the parent widget's font measures it.
  ImageViewItemDelegate(CaptionFunction caption, QObject* parent);
  /// Without a caption function; sizeHint then throws std::bad_function_call for a valid index.
  explicit ImageViewItemDelegate(QObject* parent);
  ~ImageViewItemDelegate() override;

  void setImageSize(const QSize& size);
  QSize imageSize() const;

  /// Width: the larger of the caption (plus 2) and the image, plus 8; height: the image plus 8
  /// plus the caption's wrapped height and one line.
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void paint(QPainter* painter,
             const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;

private:
  QString captionOf(const QModelIndex& index) const;

  CaptionFunction caption;
  QSize size;
};
