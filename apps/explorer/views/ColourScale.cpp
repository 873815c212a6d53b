#include "views/ColourScale.h"

#include <vtkLookupTable.h>
#include <vtkSmartPointer.h>

#include <algorithm>
#include <cmath>

namespace explorer
{

const std::array<QRgb, 256>& colourScale()
{
  static const std::array<QRgb, 256> colours = []
  {
    auto table = vtkSmartPointer<vtkLookupTable>::New();
    table->SetHueRange(0.667, 0.0);
    table->SetNumberOfTableValues(256);
    table->Build();
    std::array<QRgb, 256> scale{};
    for (int i = 0; i < 256; ++i)
    {
      double rgba[4];
      table->GetTableValue(i, rgba);
      scale[static_cast<std::size_t>(i)] = qRgb(static_cast<int>(rgba[0] * 255),
                                                static_cast<int>(rgba[1] * 255),
                                                static_cast<int>(rgba[2] * 255));
    }
    return scale;
  }();
  return colours;
}

QRgb groupColour(int group)
{
  static constexpr std::array<QRgb, 10> colours = { 0x1f77b4, 0xff7f0e, 0x2ca02c, 0xd62728,
                                                    0x9467bd, 0x8c564b, 0xe377c2, 0x7f7f7f,
                                                    0xbcbd22, 0x17becf };
  return 0xff000000u | colours[static_cast<std::size_t>(group < 0 ? 0 : group) % colours.size()];
}

QImage densityImage(int width,
                    int height,
                    const std::vector<float>& count,
                    const std::vector<float>& colourSum,
                    const std::vector<float>& coloured,
                    QRgb plain)
{
  const int w = std::max(width, 1);
  const int h = std::max(height, 1);
  QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  if (count.size() < static_cast<std::size_t>(w) * static_cast<std::size_t>(h))
    return image;
  const std::array<QRgb, 256>& colours = colourScale();
  const float most = *std::max_element(count.begin(), count.end());
  const float scale = most > 0 ? 1.f / std::log1p(most) : 0.f;
  for (int y = 0; y < h; ++y)
  {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < w; ++x)
    {
      const std::size_t pixel =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(w) + static_cast<std::size_t>(x);
      if (count[pixel] == 0)
        continue;
      const QRgb rgb = coloured[pixel] > 0
                         ? colours[static_cast<std::size_t>(std::clamp(
                             static_cast<int>(colourSum[pixel] / coloured[pixel] * 255), 0, 255))]
                         : plain;
      const int alpha = static_cast<int>(255 * (0.25f + 0.75f * std::log1p(count[pixel]) * scale));
      line[x] = qPremultiply(qRgba(qRed(rgb), qGreen(rgb), qBlue(rgb), alpha));
    }
  }
  return image;
}

} // namespace explorer
