#include "views/ColourScale.h"

#include <vtkLookupTable.h>
#include <vtkSmartPointer.h>

namespace explorer
{

std::array<QRgb, 256> colourScale()
{
  auto table = vtkSmartPointer<vtkLookupTable>::New();
  table->SetHueRange(0.667, 0.0);
  table->SetNumberOfTableValues(256);
  table->Build();
  std::array<QRgb, 256> colours{};
  for (int i = 0; i < 256; ++i)
  {
    double rgba[4];
    table->GetTableValue(i, rgba);
    colours[static_cast<std::size_t>(i)] = qRgb(static_cast<int>(rgba[0] * 255),
                                                static_cast<int>(rgba[1] * 255),
                                                static_cast<int>(rgba[2] * 255));
  }
  return colours;
}

QRgb groupColour(int group)
{
  static constexpr std::array<QRgb, 10> colours = { 0x1f77b4, 0xff7f0e, 0x2ca02c, 0xd62728,
                                                    0x9467bd, 0x8c564b, 0xe377c2, 0x7f7f7f,
                                                    0xbcbd22, 0x17becf };
  return 0xff000000u | colours[static_cast<std::size_t>(group < 0 ? 0 : group) % colours.size()];
}

} // namespace explorer
