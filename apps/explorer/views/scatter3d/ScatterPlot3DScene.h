#pragma once

#include "views/scatter3d/ScatterPlot3DModel.h"

#include <memory>
#include <string>

class QVTKOpenGLNativeWidget;
class vtkRenderer;

namespace explorer
{

/// The 3-D scatter plot's drawing, in a VTK widget: the points (in pieces, each finished before
/// the next, and a sample of a large cloud while the view turns), the selected points ringed in
/// layers over them, a box with the axes' titles and labels, and a colour bar.
class ScatterPlot3DScene
{
public:
  /// Builds the scene in `widget`, which must outlive it.
  explicit ScatterPlot3DScene(QVTKOpenGLNativeWidget& widget);
  ~ScatterPlot3DScene();
  ScatterPlot3DScene(const ScatterPlot3DScene&) = delete;
  ScatterPlot3DScene& operator=(const ScatterPlot3DScene&) = delete;

  vtkRenderer& renderer() const;
  /// Shows a model's points, axes and colours; the names title the axes and the colour bar.
  void show(const ScatterPlot3DModel& model,
            const std::array<std::string, 3>& titles,
            const std::string& colour,
            std::pair<double, double> colourRange);
  /// Shows the model's selected points over the others.
  void showSelection(const ScatterPlot3DModel& model);
  /// Draws a sample of a large cloud while the view turns, the whole cloud when it stops.
  void turning(bool turning);
  /// The camera's projection of the unit box into the view, as the points are drawn.
  ScatterPlot3DModel::Projection projection() const;
  /// Looks at the box from the starting direction, every point in sight.
  void resetCamera();

  /// Draws now when the widget is shown, or once control returns to the event loop however
  /// many changes ask for it.
  void render();
  void scheduleRender();

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
