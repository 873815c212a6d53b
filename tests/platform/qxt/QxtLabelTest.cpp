#include "qxt/QxtLabel.h"

#include <QImage>
#include <gtest/gtest.h>

namespace
{

// The bounding box of the dark pixels of a rendered label: where the text is.
QRect inkOf(QxtLabel& label)
{
  label.resize(label.sizeHint());
  QImage image(label.size(), QImage::Format_RGB32);
  image.fill(Qt::white);
  label.render(&image);
  QRect ink;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qGray(image.pixel(x, y)) < 128)
        ink |= QRect(x, y, 1, 1);
  return ink;
}

} // namespace

TEST(QxtLabel, RotatedTextTurnsItsSizeAndItsInk)
{
  QxtLabel label("Row Header");
  QPalette palette = label.palette();
  palette.setColor(QPalette::WindowText, Qt::black);
  label.setPalette(palette);
  const QSize flat = label.sizeHint();
  EXPECT_GT(flat.width(), flat.height());
  const QRect flatInk = inkOf(label);
  EXPECT_GT(flatInk.width(), flatInk.height());

  for (auto rotation : { QxtLabel::Clockwise, QxtLabel::CounterClockwise })
  {
    label.setRotation(rotation);
    EXPECT_EQ(label.sizeHint(), flat.transposed());
    const QRect ink = inkOf(label);
    EXPECT_GT(ink.height(), ink.width()) << "the text runs vertically";
  }
}
