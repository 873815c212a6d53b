#pragma once

#include <vtkNew.h>
#include <vtkSmartPointer.h>

#include <array>
#include <string>

class vtkContextView;
class vtkImageData;

namespace testsupport
{

/// Keeps one OpenGL context open for the rest of the process. Mesa unloads its driver when the
/// last context closes and loads it again for the next window; memory the driver keeps in its
/// globals then shows up as leaks of an unknown module under LeakSanitizer. Tests that create
/// render windows call this first (RenderedView does).
void keepGraphicsDriverLoaded();

/// A vtkContextView of a known size rendering on the test display (Xvfb under ./dev test),
/// with helpers to read back and save what it shows.
class RenderedView
{
public:
  RenderedView(int width, int height);
  ~RenderedView();

  vtkContextView& view() { return *contextView; }
  void render();
  /// The colour of a pixel (origin bottom-left), as red, green, blue.
  std::array<int, 3> pixel(int x, int y);
  /// Saves the last rendered image as PNG and returns the path: the folder named by
  /// QUEN_TEST_IMAGE_DIR, or the system's temporary folder. For failure messages.
  std::string save(const std::string& name);

private:
  vtkSmartPointer<vtkImageData> capture();

  vtkNew<vtkContextView> contextView;
};

} // namespace testsupport
