#include "views/scatter3d/ScatterPlot3DScene.h"

#include "ExplorerView.h"
#include "VtkFonts.h"
#include "views/DrawingPolicy.h"

#include "common_vtk/vtkArrayOver.h"

#include <QVTKOpenGLNativeWidget.h>
#include <vtkActor.h>
#include <vtkCamera.h>
#include <vtkCellArray.h>
#include <vtkCubeAxesActor.h>
#include <vtkFloatArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIdTypeArray.h>
#include <vtkLookupTable.h>
#include <vtkMatrix4x4.h>
#include <vtkObjectFactory.h>
#include <vtkOpenGLPolyDataMapper.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkStringArray.h>
#include <vtkTextProperty.h>
#include <vtkTypeInt32Array.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace explorer
{

namespace
{

static_assert(sizeof(std::array<float, 3>) == 3 * sizeof(float), "points are read as floats");

// Each point as a vertex, numbered in 32 bits (a cloud has fewer than two billion points): half
// the bytes of VTK's 64-bit ids, which cost more than the points themselves.
vtkSmartPointer<vtkCellArray> verticesOf(vtkIdType n)
{
  auto offsets = vtkSmartPointer<vtkTypeInt32Array>::New();
  offsets->SetNumberOfValues(n + 1);
  auto connectivity = vtkSmartPointer<vtkTypeInt32Array>::New();
  connectivity->SetNumberOfValues(n);
  std::iota(offsets->GetPointer(0), offsets->GetPointer(0) + n + 1, vtkTypeInt32(0));
  std::iota(connectivity->GetPointer(0), connectivity->GetPointer(0) + n, vtkTypeInt32(0));
  auto vertices = vtkSmartPointer<vtkCellArray>::New();
  vertices->SetData(offsets, connectivity);
  return vertices;
}

// A polydata of `n` points from `at`, each a vertex (of `vertices` when given: pieces of one
// size share theirs), with optional scalars. Points and scalars are read in place, kept by
// `owner`: the model already holds every point of a cloud of ten million.
vtkSmartPointer<vtkPolyData> pointCloud(const std::array<float, 3>* at,
                                        const float* scalars,
                                        vtkIdType n,
                                        const std::shared_ptr<const void>& owner,
                                        vtkSmartPointer<vtkCellArray> vertices = nullptr)
{
  auto points = vtkSmartPointer<vtkPoints>::New();
  points->SetData(vtkArrayOver<vtkFloatArray>(n > 0 ? at->data() : nullptr, n, 3, owner));
  auto cloud = vtkSmartPointer<vtkPolyData>::New();
  cloud->SetPoints(points);
  cloud->SetVerts(vertices ? vertices : verticesOf(n));
  if (scalars)
    cloud->GetPointData()->SetScalars(vtkArrayOver<vtkFloatArray>(scalars, n, 1, owner));
  return cloud;
}

// A cloud of points (and colour values) of its own.
vtkSmartPointer<vtkPolyData> pointCloud(std::vector<std::array<float, 3>> at,
                                        const std::vector<float>* scalars)
{
  struct Owned
  {
    std::vector<std::array<float, 3>> at;
    std::vector<float> scalars;
  };
  auto owned = std::make_shared<Owned>();
  owned->at = std::move(at);
  if (scalars)
    owned->scalars = *scalars;
  return pointCloud(owned->at.data(),
                    scalars ? owned->scalars.data() : nullptr,
                    static_cast<vtkIdType>(owned->at.size()),
                    owned);
}

// Software OpenGL (llvmpipe) bins every point of a draw before its threads rasterise them: a
// million points drawn at once held 180 MB of binned points. The cloud is drawn in pieces of
// this many points, each finished before the next is binned.
constexpr std::size_t pointsPerPiece = 100000;

// Draws its input, then waits until it is drawn.
class vtkFinishedPolyDataMapper : public vtkOpenGLPolyDataMapper
{
public:
  static vtkFinishedPolyDataMapper* New();
  vtkTypeMacro(vtkFinishedPolyDataMapper, vtkOpenGLPolyDataMapper);

protected:
  vtkFinishedPolyDataMapper() = default;
  ~vtkFinishedPolyDataMapper() override = default;

  void RenderPieceFinish(vtkRenderer* renderer, vtkActor* actor) override
  {
    Superclass::RenderPieceFinish(renderer, actor);
    renderer->GetRenderWindow()->WaitForCompletion();
  }

private:
  vtkFinishedPolyDataMapper(const vtkFinishedPolyDataMapper&) = delete;
  void operator=(const vtkFinishedPolyDataMapper&) = delete;
};

vtkStandardNewMacro(vtkFinishedPolyDataMapper);

} // namespace

struct ScatterPlot3DScene::Impl
{
  QVTKOpenGLNativeWidget& widget;
  vtkSmartPointer<vtkGenericOpenGLRenderWindow> window =
    vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New();
  vtkSmartPointer<vtkRenderer> renderer = vtkSmartPointer<vtkRenderer>::New();
  // The selected points, in two layers over the others: a dark ring, then their colour.
  vtkSmartPointer<vtkRenderer> ringLayer = vtkSmartPointer<vtkRenderer>::New();
  vtkSmartPointer<vtkRenderer> fillLayer = vtkSmartPointer<vtkRenderer>::New();
  // The shown points, one actor per piece of the cloud.
  std::vector<vtkSmartPointer<vtkActor>> pieces;
  vtkSmartPointer<vtkActor> ring;
  vtkSmartPointer<vtkActor> fill;
  vtkSmartPointer<vtkCubeAxesActor> box = vtkSmartPointer<vtkCubeAxesActor>::New();
  vtkSmartPointer<vtkScalarBarActor> colourBar = vtkSmartPointer<vtkScalarBarActor>::New();
  vtkSmartPointer<vtkLookupTable> lookupTable = vtkSmartPointer<vtkLookupTable>::New();
  std::vector<vtkSmartPointer<vtkPolyData>> allPoints;
  vtkSmartPointer<vtkPolyData> sampledPoints;
  bool coloured = false;
  QueuedDraw draws;

  explicit Impl(QVTKOpenGLNativeWidget& widget)
    : widget(widget)
  {
  }

  ~Impl()
  {
    // The box holds its axes' labels but does not let them go when it goes.
    for (int axis = 0; axis < 3; ++axis)
      box->SetAxisLabels(axis, nullptr);
  }

  vtkSmartPointer<vtkActor> cloudActor(vtkRenderer& layer,
                                       vtkSmartPointer<vtkPolyDataMapper> mapper,
                                       float pointSize)
  {
    mapper->SetLookupTable(lookupTable);
    mapper->UseLookupTableScalarRangeOn();
    auto result = vtkSmartPointer<vtkActor>::New();
    result->SetMapper(mapper);
    result->GetProperty()->SetPointSize(pointSize);
    result->GetProperty()->SetColor(30 / 255.0, 90 / 255.0, 200 / 255.0);
    result->PickableOff();
    layer.AddActor(result);
    return result;
  }

  // Shows these pieces of a cloud, an actor each; actors left over are hidden.
  void showPoints(const std::vector<vtkSmartPointer<vtkPolyData>>& shown)
  {
    while (pieces.size() < shown.size())
      pieces.push_back(cloudActor(*renderer, vtkSmartPointer<vtkFinishedPolyDataMapper>::New(), 4));
    for (std::size_t i = 0; i < pieces.size(); ++i)
    {
      auto* mapper = vtkPolyDataMapper::SafeDownCast(pieces[i]->GetMapper());
      mapper->SetInputData(i < shown.size() ? shown[i].Get() : nullptr);
      mapper->SetScalarVisibility(coloured);
      pieces[i]->SetVisibility(i < shown.size());
    }
  }

  void labelAxis(int axis, const ScatterPlot3DModel& model)
  {
    auto labels = vtkSmartPointer<vtkStringArray>::New();
    for (const std::string& label : model.labels(axis))
      labels->InsertNextValue(label);
    box->SetAxisLabels(axis, labels);
    const auto [from, to] = model.range(axis);
    (axis == 0   ? box->SetXAxisRange(from, to)
     : axis == 1 ? box->SetYAxisRange(from, to)
                 : box->SetZAxisRange(from, to));
  }
};

ScatterPlot3DScene::ScatterPlot3DScene(QVTKOpenGLNativeWidget& widget)
  : d(std::make_unique<Impl>(widget))
{
  widget.setRenderWindow(d->window);
  // A hidden view draws when it is shown.
  QWidget* shown = &widget;
  vtkGenericOpenGLRenderWindow* window = d->window;
  d->draws.attach(widget,
                  [shown, window]
                  {
                    if (shown->isVisible())
                      window->Render();
                  });
  d->window->SetNumberOfLayers(3);
  d->renderer->SetBackground(1, 1, 1);
  int layer = 0;
  for (vtkRenderer* renderer : { d->renderer.Get(), d->ringLayer.Get(), d->fillLayer.Get() })
  {
    renderer->SetLayer(layer++);
    d->window->AddRenderer(renderer);
  }
  for (vtkRenderer* overlay : { d->ringLayer.Get(), d->fillLayer.Get() })
  {
    overlay->SetActiveCamera(d->renderer->GetActiveCamera());
    overlay->InteractiveOff();
  }

  d->lookupTable->SetHueRange(0.667, 0.0);
  d->lookupTable->SetNanColor(0.45, 0.45, 0.45, 1);
  d->lookupTable->Build();
  d->ring = d->cloudActor(*d->ringLayer, vtkSmartPointer<vtkPolyDataMapper>::New(), 11);
  vtkPolyDataMapper::SafeDownCast(d->ring->GetMapper())->ScalarVisibilityOff();
  d->ring->GetProperty()->SetColor(0.08, 0.08, 0.08);
  d->fill = d->cloudActor(*d->fillLayer, vtkSmartPointer<vtkPolyDataMapper>::New(), 6);
  // Empty until the view is first shown.
  for (vtkActor* cloud : { d->ring.Get(), d->fill.Get() })
    vtkPolyDataMapper::SafeDownCast(cloud->GetMapper())->SetInputData(pointCloud({}, nullptr));

  double unit[6] = { 0, 1, 0, 1, 0, 1 };
  d->box->SetBounds(unit);
  d->box->SetCamera(d->renderer->GetActiveCamera());
  d->box->SetFlyModeToOuterEdges();
  d->box->SetScreenSize(10);
  for (int axis = 0; axis < 3; ++axis)
  {
    d->box->GetTitleTextProperty(axis)->SetColor(0.1, 0.1, 0.1);
    d->box->GetLabelTextProperty(axis)->SetColor(0.25, 0.25, 0.25);
    useSystemFont(*d->box->GetTitleTextProperty(axis));
    useSystemFont(*d->box->GetLabelTextProperty(axis));
  }
  for (vtkProperty* lines : { d->box->GetXAxesLinesProperty(),
                              d->box->GetYAxesLinesProperty(),
                              d->box->GetZAxesLinesProperty() })
    lines->SetColor(0.3, 0.3, 0.3);
  d->box->XAxisMinorTickVisibilityOff();
  d->box->YAxisMinorTickVisibilityOff();
  d->box->ZAxisMinorTickVisibilityOff();
  d->renderer->AddActor(d->box);

  d->colourBar->SetLookupTable(d->lookupTable);
  d->colourBar->SetNumberOfLabels(5);
  d->colourBar->SetLabelFormat("%-6.4g");
  d->colourBar->SetMaximumWidthInPixels(70);
  // Room on the right for a title wider than the bar: it is centred over the bar.
  d->colourBar->SetPosition(0.84, 0.1);
  d->colourBar->SetHeight(0.8);
  d->colourBar->UnconstrainedFontSizeOn();
  for (vtkTextProperty* text :
       { d->colourBar->GetTitleTextProperty(), d->colourBar->GetLabelTextProperty() })
  {
    text->SetColor(0.1, 0.1, 0.1);
    text->SetFontSize(12);
    text->ShadowOff();
    text->ItalicOff();
    useSystemFont(*text);
  }
  d->renderer->AddActor2D(d->colourBar);
}

ScatterPlot3DScene::~ScatterPlot3DScene() = default;

vtkRenderer& ScatterPlot3DScene::renderer() const
{
  return *d->renderer;
}

void ScatterPlot3DScene::show(const ScatterPlot3DModel& model,
                              const std::array<std::string, 3>& titles,
                              const std::string& colour,
                              std::pair<double, double> colourRange)
{
  const auto& positions = model.positions();
  const float* colours = model.coloured() ? model.colour().data() : nullptr;
  d->allPoints.clear();
  const auto owner = model.valuesOwner();
  const vtkSmartPointer<vtkCellArray> pieceVertices =
    positions.size() >= pointsPerPiece ? verticesOf(pointsPerPiece) : nullptr;
  for (std::size_t first = 0; first < positions.size(); first += pointsPerPiece)
  {
    const std::size_t n = std::min(pointsPerPiece, positions.size() - first);
    d->allPoints.push_back(pointCloud(positions.data() + first,
                                      colours ? colours + first : nullptr,
                                      static_cast<vtkIdType>(n),
                                      owner,
                                      n == pointsPerPiece ? pieceVertices : nullptr));
  }
  d->sampledPoints = nullptr;
  if (positions.size() > drawing::sampledWhileTurningAbove)
  {
    const std::size_t every = positions.size() / drawing::sampledWhileTurningAbove + 1;
    std::vector<std::array<float, 3>> sample;
    std::vector<float> sampleColour;
    for (std::size_t i = 0; i < positions.size(); i += every)
    {
      sample.push_back(positions[i]);
      sampleColour.push_back(model.colour()[i]);
    }
    d->sampledPoints = pointCloud(std::move(sample), colours ? &sampleColour : nullptr);
  }
  d->coloured = model.coloured();
  vtkPolyDataMapper::SafeDownCast(d->fill->GetMapper())->SetScalarVisibility(d->coloured);
  d->showPoints(d->allPoints);
  if (d->coloured)
  {
    d->lookupTable->SetTableRange(colourRange.first,
                                  std::max(colourRange.second, colourRange.first));
    d->colourBar->SetTitle(colour.c_str());
  }
  d->colourBar->SetVisibility(d->coloured);
  d->box->SetXTitle(titles[0].c_str());
  d->box->SetYTitle(titles[1].c_str());
  d->box->SetZTitle(titles[2].c_str());
  for (int a = 0; a < 3; ++a)
    d->labelAxis(a, model);
  showSelection(model);
}

void ScatterPlot3DScene::showSelection(const ScatterPlot3DModel& model)
{
  std::vector<std::array<float, 3>> at;
  std::vector<float> values;
  at.reserve(model.selected().size());
  values.reserve(model.selected().size());
  for (int i : model.selected())
  {
    at.push_back(model.positions()[static_cast<std::size_t>(i)]);
    values.push_back(model.colour()[static_cast<std::size_t>(i)]);
  }
  // Past a number of points they are drawn small and dark, without their colour.
  const bool ringed = model.selected().size() <= drawing::ringedSelectionUpTo;
  auto cloud = pointCloud(std::move(at), &values);
  vtkPolyDataMapper::SafeDownCast(d->ring->GetMapper())->SetInputData(cloud);
  vtkPolyDataMapper::SafeDownCast(d->fill->GetMapper())->SetInputData(cloud);
  d->ring->GetProperty()->SetPointSize(ringed ? 11 : 4);
  d->fill->SetVisibility(ringed);
}

void ScatterPlot3DScene::turning(bool turning)
{
  if (d->sampledPoints)
    d->showPoints(turning ? std::vector<vtkSmartPointer<vtkPolyData>>{ d->sampledPoints }
                          : d->allPoints);
}

ScatterPlot3DModel::Projection ScatterPlot3DScene::projection() const
{
  ScatterPlot3DModel::Projection projection{};
  vtkMatrix4x4* m = d->renderer->GetActiveCamera()->GetCompositeProjectionTransformMatrix(
    d->renderer->GetTiledAspectRatio(), -1, 1);
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c)
      projection.matrix[r][c] = m->GetElement(r, c);
  std::copy(d->renderer->GetOrigin(), d->renderer->GetOrigin() + 2, projection.origin);
  std::copy(d->renderer->GetSize(), d->renderer->GetSize() + 2, projection.size);
  return projection;
}

void ScatterPlot3DScene::resetCamera()
{
  vtkCamera* camera = d->renderer->GetActiveCamera();
  camera->SetFocalPoint(0.5, 0.5, 0.5);
  camera->SetPosition(2.7, -1.7, 1.4);
  camera->SetViewUp(0, 0, 1);
  d->renderer->ResetCamera(0, 1, 0, 1, 0, 1);
  camera->Zoom(0.8);
  scheduleRender();
}

void ScatterPlot3DScene::render()
{
  d->draws.now();
}

void ScatterPlot3DScene::scheduleRender()
{
  d->draws.later();
}

} // namespace explorer
