#pragma once

class vtkTextProperty;

namespace explorer
{

/// Draws a VTK text in the system's sans-serif font (DejaVu Sans on Debian) where it is
/// installed. VTK's built-in font draws square brackets as parentheses, so that a variable
/// named "Depth [ft]" would read "Depth (ft)"; bold texts stay bold. Without the system font
/// the text keeps VTK's.
void useSystemFont(vtkTextProperty& property);

} // namespace explorer
