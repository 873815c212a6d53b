#include "VtkFonts.h"

#include <vtkTextProperty.h>

#include <filesystem>
#include <string>

namespace explorer
{

namespace
{

// The first of the fonts that exists, or empty.
std::string installed(std::initializer_list<const char*> candidates)
{
  std::error_code error;
  for (const char* candidate : candidates)
    if (std::filesystem::is_regular_file(candidate, error))
      return candidate;
  return {};
}

} // namespace

void useSystemFont(vtkTextProperty& property)
{
  static const std::string regular = installed({ "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                                                 "/usr/share/fonts/dejavu/DejaVuSans.ttf" });
  static const std::string bold =
    installed({ "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
                "/usr/share/fonts/dejavu/DejaVuSans-Bold.ttf" });
  const std::string& font = property.GetBold() && !bold.empty() ? bold : regular;
  if (font.empty())
    return;
  property.SetFontFamily(VTK_FONT_FILE);
  property.SetFontFile(font.c_str());
}

} // namespace explorer
