#include "support/RenderedView.h"

#include <QDir>
#include <vtkContextView.h>
#include <vtkImageData.h>
#include <vtkPNGWriter.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkWindowToImageFilter.h>

#include <cstdlib>

namespace testsupport
{

// Never destroyed, on purpose; a global of external linkage, so that the pointer is really
// stored and LeakSanitizer sees the window as reachable.
vtkRenderWindow* graphicsDriverKeeper = nullptr;

void keepGraphicsDriverLoaded()
{
  if (graphicsDriverKeeper)
  {
    return;
  }
  graphicsDriverKeeper = vtkRenderWindow::New();
  graphicsDriverKeeper->SetOffScreenRendering(1);
  graphicsDriverKeeper->SetSize(1, 1);
  graphicsDriverKeeper->Render();
}

RenderedView::RenderedView(int width, int height)
{
  keepGraphicsDriverLoaded();
  contextView->GetRenderWindow()->SetSize(width, height);
  contextView->GetRenderer()->SetBackground(1.0, 1.0, 1.0);
}

RenderedView::~RenderedView() = default;

void RenderedView::render()
{
  contextView->Render();
}

vtkSmartPointer<vtkImageData> RenderedView::capture()
{
  auto grabber = vtkSmartPointer<vtkWindowToImageFilter>::New();
  grabber->SetInput(contextView->GetRenderWindow());
  grabber->SetInputBufferTypeToRGB();
  grabber->ReadFrontBufferOff();
  grabber->Update();
  vtkSmartPointer<vtkImageData> image = grabber->GetOutput();
  return image;
}

std::array<int, 3> RenderedView::pixel(int x, int y)
{
  vtkSmartPointer<vtkImageData> image = capture();
  const auto* rgb = static_cast<const unsigned char*>(image->GetScalarPointer(x, y, 0));
  return { rgb[0], rgb[1], rgb[2] };
}

std::string RenderedView::save(const std::string& name)
{
  const char* folder = std::getenv("QUEN_TEST_IMAGE_DIR");
  const std::string path =
    (folder ? std::string(folder) : QDir::tempPath().toStdString()) + "/" + name + ".png";
  auto writer = vtkSmartPointer<vtkPNGWriter>::New();
  writer->SetFileName(path.c_str());
  writer->SetInputData(capture());
  writer->Write();
  return path;
}

} // namespace testsupport
