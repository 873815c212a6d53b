#pragma once

#include <QImage>
#include <QWidget>

namespace explorer
{

/// An image drawn as large as its place allows, keeping its proportions: shrunk to fit, and
/// enlarged up to `largestZoom` times its own size. It asks for little room of its own, so that
/// a large image never widens the window around it; a text is shown instead when there is no
/// image.
class FittedImage : public QWidget
{
public:
  explicit FittedImage(QWidget* parent = nullptr);

  void setImage(const QImage& image);
  void setText(const QString& text);
  void clear();
  const QImage& image() const { return picture; }
  QString text() const { return message; }
  /// The rectangle the image is drawn in, for the widget's current size.
  QRect imageRect() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

  static constexpr int largestZoom = 4;

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  QImage picture;
  QString message;
};

} // namespace explorer
