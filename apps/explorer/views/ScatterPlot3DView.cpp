#include "views/ScatterPlot3DView.h"

#include "CaseRowIndex.h"
#include "ChangesWhileHidden.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "VtkFonts.h"
#include "analyzer_common/NiceNumber.h"
#include "analyzer_common/SelectionModelInterface.h"
#include "common_vtk/vtkPxCommandProxy.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/PlotSelectionModel.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QFormLayout>
#include <QPointer>
#include <QVTKOpenGLNativeWidget.h>
#include <boost/make_shared.hpp>
#include <vtkActor.h>
#include <vtkCamera.h>
#include <vtkCellArray.h>
#include <vtkCommand.h>
#include <vtkCubeAxesActor.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIdTypeArray.h>
#include <vtkInteractorStyle.h>
#include <vtkInteractorStyleTrackballCamera.h>
#include <vtkLookupTable.h>
#include <vtkMatrix4x4.h>
#include <vtkObjectFactory.h>
#include <vtkOpenGLPolyDataMapper.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>
#include <vtkTextProperty.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <utility>

namespace explorer
{

namespace
{

using VariableProxy = plexa::UndoablePropertyProxy<WeakPtr<Variable>>;

// Above this many points, turning the view draws a sample of them.
constexpr std::size_t sampledAbove = 200000;
// Above this many selected points, they are drawn as small dark points without their colour.
constexpr std::size_t ringedUpTo = 10000;

// A polydata of `n` points from `at`, each a vertex, with optional scalars.
vtkSmartPointer<vtkPolyData> pointCloud(const std::array<float, 3>* at,
                                        const float* scalars,
                                        vtkIdType n)
{
  auto points = vtkSmartPointer<vtkPoints>::New();
  points->SetDataTypeToFloat();
  points->SetNumberOfPoints(n);
  for (vtkIdType i = 0; i < n; ++i)
    points->SetPoint(i, at[i].data());
  auto offsets = vtkSmartPointer<vtkIdTypeArray>::New();
  offsets->SetNumberOfValues(n + 1);
  auto connectivity = vtkSmartPointer<vtkIdTypeArray>::New();
  connectivity->SetNumberOfValues(n);
  std::iota(offsets->GetPointer(0), offsets->GetPointer(0) + n + 1, vtkIdType(0));
  std::iota(connectivity->GetPointer(0), connectivity->GetPointer(0) + n, vtkIdType(0));
  auto vertices = vtkSmartPointer<vtkCellArray>::New();
  vertices->SetData(offsets, connectivity);
  auto cloud = vtkSmartPointer<vtkPolyData>::New();
  cloud->SetPoints(points);
  cloud->SetVerts(vertices);
  if (scalars)
  {
    auto values = vtkSmartPointer<vtkFloatArray>::New();
    values->SetNumberOfValues(n);
    std::copy(scalars, scalars + n, values->GetPointer(0));
    cloud->GetPointData()->SetScalars(values);
  }
  return cloud;
}

vtkSmartPointer<vtkPolyData> pointCloud(const std::vector<std::array<float, 3>>& at,
                                        const std::vector<float>* scalars)
{
  return pointCloud(
    at.data(), scalars ? scalars->data() : nullptr, static_cast<vtkIdType>(at.size()));
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

// A variable's range widened to round numbers, so that the box's labels fall on them; a
// constant is centred in a range around it.
std::pair<double, double> niceRange(std::pair<double, double> range)
{
  if (!(range.first < range.second))
  {
    const double half = range.first == 0 ? 1 : makeNiceNumber(std::abs(range.first) / 10);
    return { range.first - half, range.first + half };
  }
  const double step = makeNiceNumber((range.second - range.first) / 4);
  return { std::floor(range.first / step) * step, std::ceil(range.second / step) * step };
}

} // namespace

struct ScatterPlot3DView::Impl
{
  std::shared_ptr<const Project> project;
  DataPipelineManager& pipeline;
  boost::shared_ptr<SelectionModelInterface> selection;
  boost::shared_ptr<PlotSelectionModel> plotSelection;
  QPointer<QVTKOpenGLNativeWidget> widget;
  vtkSmartPointer<vtkGenericOpenGLRenderWindow> window;
  vtkSmartPointer<vtkRenderer> renderer;
  // The selected points, in two layers over the others: a dark ring, then their colour.
  vtkSmartPointer<vtkRenderer> ringLayer;
  vtkSmartPointer<vtkRenderer> fillLayer;
  // The shown points, one actor per piece of the cloud.
  std::vector<vtkSmartPointer<vtkActor>> pieces;
  vtkSmartPointer<vtkActor> ring;
  vtkSmartPointer<vtkActor> fill;
  vtkSmartPointer<vtkCubeAxesActor> box;
  vtkSmartPointer<vtkScalarBarActor> colourBar;
  vtkSmartPointer<vtkLookupTable> lookupTable;
  std::vector<vtkSmartPointer<vtkPolyData>> allPoints;
  vtkSmartPointer<vtkPolyData> sampledPoints;
  bool coloured = false;
  vtkSmartPointer<vtkInteractorStyleTrackballCamera> style;
  vtkSmartPointer<vtkPxCommandProxy> pressObserver;
  vtkSmartPointer<vtkPxCommandProxy> swallowKeys;
  vtkSmartPointer<vtkPxCommandProxy> startTurning;
  vtkSmartPointer<vtkPxCommandProxy> endTurning;
  std::array<boost::shared_ptr<VariableProxy>, 3> axes;
  boost::shared_ptr<VariableProxy> color;

  // The shown points: case id, position in the unit box and colour value.
  std::vector<unsigned long long> caseIds;
  std::vector<std::array<float, 3>> positions;
  std::vector<float> colour;
  CaseRowIndex pointOfCase;
  std::vector<int> selected;
  int pressedAt[2] = { 0, 0 };
  bool pressed = false;
  int clickedAt[2] = { 0, 0 };
  QueuedDraw draws;

  explicit Impl(DataPipelineManager& pipeline)
    : pipeline(pipeline)
  {
  }

  void render() { draws.now(); }
  void scheduleRender() { draws.later(); }

  std::unique_ptr<ChangesWhileHidden> changes;

  // Reads the shown cases from the pipeline's output: rows with all three values, scaled to
  // the unit box by each variable's range over the whole study.
  void reload()
  {
    pipeline.output()->Update();
    vtkTable* table = pipeline.output()->GetOutput();
    std::array<vtkDoubleArray*, 3> columns{};
    std::array<std::pair<double, double>, 3> ranges{};
    for (std::size_t a = 0; a < 3; ++a)
    {
      const Variable v = axes[a]->value().lock();
      if (!v.isNull())
      {
        columns[a] = vtkDoubleArray::SafeDownCast(table->GetColumnByName(v.name().c_str()));
        ranges[a] = niceRange(v.range());
      }
    }
    const Variable colourVariable = color->value().lock();
    vtkDoubleArray* colourColumn =
      colourVariable.isNull()
        ? nullptr
        : vtkDoubleArray::SafeDownCast(table->GetColumnByName(colourVariable.name().c_str()));
    const std::vector<unsigned long long> ids = caseIdsOf(*table);
    caseIds.clear();
    positions.clear();
    colour.clear();
    const bool complete = columns[0] && columns[1] && columns[2];
    for (vtkIdType row = 0; complete && row < table->GetNumberOfRows(); ++row)
    {
      std::array<float, 3> at{};
      bool valid = true;
      for (std::size_t a = 0; a < 3 && valid; ++a)
      {
        const double value = columns[a]->GetValue(row);
        const double span = ranges[a].second - ranges[a].first;
        valid = !std::isnan(value);
        at[a] = span > 0 ? static_cast<float>((value - ranges[a].first) / span) : 0.5f;
      }
      if (!valid)
        continue;
      caseIds.push_back(ids[static_cast<std::size_t>(row)]);
      positions.push_back(at);
      colour.push_back(colourColumn ? static_cast<float>(colourColumn->GetValue(row))
                                    : std::numeric_limits<float>::quiet_NaN());
    }

    pointOfCase.assign(caseIds);
    allPoints.clear();
    for (std::size_t first = 0; first < positions.size(); first += pointsPerPiece)
      allPoints.push_back(
        pointCloud(positions.data() + first,
                   colourColumn ? colour.data() + first : nullptr,
                   static_cast<vtkIdType>(std::min(pointsPerPiece, positions.size() - first))));
    sampledPoints = nullptr;
    if (positions.size() > sampledAbove)
    {
      const std::size_t every = positions.size() / sampledAbove + 1;
      std::vector<std::array<float, 3>> sample;
      std::vector<float> sampleColour;
      for (std::size_t i = 0; i < positions.size(); i += every)
      {
        sample.push_back(positions[i]);
        sampleColour.push_back(colour[i]);
      }
      sampledPoints = pointCloud(sample, colourColumn ? &sampleColour : nullptr);
    }
    coloured = colourColumn != nullptr;
    vtkPolyDataMapper::SafeDownCast(fill->GetMapper())->SetScalarVisibility(coloured);
    showPoints(allPoints);
    if (colourColumn)
    {
      const auto range = colourVariable.range();
      lookupTable->SetTableRange(range.first, std::max(range.second, range.first));
      colourBar->SetTitle(colourVariable.name().c_str());
    }
    colourBar->SetVisibility(colourColumn != nullptr);

    const char* titles[3] = { "", "", "" };
    std::array<std::string, 3> names;
    for (std::size_t a = 0; a < 3; ++a)
    {
      names[a] = axes[a]->value().lock().isNull() ? "" : axes[a]->value().lock().name();
      titles[a] = names[a].c_str();
    }
    box->SetXTitle(titles[0]);
    box->SetYTitle(titles[1]);
    box->SetZTitle(titles[2]);
    for (int a = 0; a < 3; ++a)
      labelAxis(a, ranges[static_cast<std::size_t>(a)]);
    findSelected(selection->getSelections());
  }

  // Labels on round numbers, four or five intervals of the box from its first to its last: the
  // box's own ticks, eight to ten per axis, run together on an axis seen at a slant.
  void labelAxis(int axis, std::pair<double, double> range)
  {
    // An axis without a variable has a range of nothing.
    range = niceRange(range);
    const double step = makeNiceNumber((range.second - range.first) / 4);
    auto labels = vtkSmartPointer<vtkStringArray>::New();
    for (double value = range.first; step > 0 && value <= range.second + step / 2; value += step)
    {
      char text[32];
      std::snprintf(text, sizeof text, "%g", std::abs(value) < step / 1e6 ? 0.0 : value);
      labels->InsertNextValue(text);
    }
    box->SetAxisLabels(axis, labels);
    (axis == 0   ? box->SetXAxisRange(range.first, range.second)
     : axis == 1 ? box->SetYAxisRange(range.first, range.second)
                 : box->SetZAxisRange(range.first, range.second));
  }

  // Shows these pieces of a cloud, an actor each; actors left over are hidden.
  void showPoints(const std::vector<vtkSmartPointer<vtkPolyData>>& shown)
  {
    while (pieces.size() < shown.size())
    {
      auto mapper = vtkSmartPointer<vtkFinishedPolyDataMapper>::New();
      pieces.push_back(cloudActor(*renderer, mapper, 4));
    }
    for (std::size_t i = 0; i < pieces.size(); ++i)
    {
      auto* mapper = vtkPolyDataMapper::SafeDownCast(pieces[i]->GetMapper());
      mapper->SetInputData(i < shown.size() ? shown[i].Get() : nullptr);
      mapper->SetScalarVisibility(coloured);
      pieces[i]->SetVisibility(i < shown.size());
    }
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

  void findSelected(const std::set<unsigned long long>& ids)
  {
    selected = pointOfCase.rowsOf(ids);
    std::vector<std::array<float, 3>> at;
    std::vector<float> values;
    at.reserve(selected.size());
    values.reserve(selected.size());
    for (int i : selected)
    {
      at.push_back(positions[static_cast<std::size_t>(i)]);
      values.push_back(colour[static_cast<std::size_t>(i)]);
    }
    const bool ringed = selected.size() <= ringedUpTo;
    auto cloud = pointCloud(at, &values);
    vtkPolyDataMapper::SafeDownCast(ring->GetMapper())->SetInputData(cloud);
    vtkPolyDataMapper::SafeDownCast(fill->GetMapper())->SetInputData(cloud);
    ring->GetProperty()->SetPointSize(ringed ? 11 : 4);
    fill->SetVisibility(ringed);
  }

  // The display position (VTK's, from the bottom left) and depth of every shown point, through
  // the camera's composite projection.
  template<typename Visit>
  void projectPoints(Visit visit) const
  {
    const int* size = renderer->GetSize();
    vtkMatrix4x4* m = renderer->GetActiveCamera()->GetCompositeProjectionTransformMatrix(
      renderer->GetTiledAspectRatio(), -1, 1);
    double e[4][4];
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c)
        e[r][c] = m->GetElement(r, c);
    const int* origin = renderer->GetOrigin();
    for (std::size_t i = 0; i < positions.size(); ++i)
    {
      const auto& p = positions[i];
      double clip[4];
      for (int r = 0; r < 4; ++r)
        clip[r] = e[r][0] * p[0] + e[r][1] * p[1] + e[r][2] * p[2] + e[r][3];
      if (clip[3] <= 0)
        continue;
      const double x = origin[0] + (clip[0] / clip[3] + 1) / 2 * size[0];
      const double y = origin[1] + (clip[1] / clip[3] + 1) / 2 * size[1];
      visit(i, x, y, clip[2] / clip[3]);
    }
  }

  // The point nearest a display position within 6 pixels, the front one among equals.
  long long pointAt(int x, int y) const
  {
    long long best = -1;
    double bestDistance = 36.0;
    double bestDepth = 2.0;
    projectPoints(
      [&](std::size_t i, double px, double py, double depth)
      {
        const double distance = (px - x) * (px - x) + (py - y) * (py - y);
        if (distance < bestDistance - 0.25 ||
            (distance <= bestDistance + 0.25 && depth < bestDepth))
        {
          best = static_cast<long long>(i);
          bestDistance = std::min(bestDistance, distance);
          bestDepth = depth;
        }
      });
    return best;
  }
};

ScatterPlot3DView::ScatterPlot3DView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("ScatterPlot3D"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  d->project = context.project;
  d->selection = context.selection;
  d->widget = new QVTKOpenGLNativeWidget();
  setWidget(d->widget);
  d->widget->setObjectName("scatter3dView");
  d->window = vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New();
  d->widget->setRenderWindow(d->window);
  // A hidden view draws when it is shown.
  QWidget* shown = d->widget;
  vtkGenericOpenGLRenderWindow* window = d->window;
  d->draws.attach(*d->widget,
                  [shown, window]
                  {
                    if (shown->isVisible())
                      window->Render();
                  });
  d->window->SetNumberOfLayers(3);
  d->renderer = vtkSmartPointer<vtkRenderer>::New();
  d->renderer->SetBackground(1, 1, 1);
  d->ringLayer = vtkSmartPointer<vtkRenderer>::New();
  d->fillLayer = vtkSmartPointer<vtkRenderer>::New();
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

  d->lookupTable = vtkSmartPointer<vtkLookupTable>::New();
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

  d->box = vtkSmartPointer<vtkCubeAxesActor>::New();
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

  d->colourBar = vtkSmartPointer<vtkScalarBarActor>::New();
  d->colourBar->SetLookupTable(d->lookupTable);
  d->colourBar->SetNumberOfLabels(5);
  d->colourBar->SetLabelFormat("%-6.4g");
  d->colourBar->SetMaximumWidthInPixels(70);
  d->colourBar->SetPosition(0.88, 0.1);
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

  // As the scatter plot starts: inputs across, a result up, another as colour.
  const std::array<WeakPtr<Variable>, 4> first = defaults::scatter3D(*d->project);
  const char* names[3] = { "X Variable", "Y Variable", "Z Variable" };
  for (std::size_t a = 0; a < 3; ++a)
    d->axes[a] = boost::make_shared<VariableProxy>(
      names[a], boost::make_shared<plexa::Property<WeakPtr<Variable>>>(first[a]));
  d->color = boost::make_shared<VariableProxy>(
    "Color Variable", boost::make_shared<plexa::Property<WeakPtr<Variable>>>(first[3]));

  vtkRenderWindowInteractor* interactor = d->widget->interactor();
  d->plotSelection = boost::make_shared<PlotSelectionModel>(interactor, context.selection);
  d->style = vtkSmartPointer<vtkInteractorStyleTrackballCamera>::New();
  interactor->SetInteractorStyle(d->style);
  Impl* impl = d.get();
  // Turning a large cloud draws a sample of it; the whole cloud comes back when it stops.
  d->startTurning = vtkPxCommandProxy::New(
    [impl]
    {
      if (impl->sampledPoints)
        impl->showPoints({ impl->sampledPoints });
    });
  // The interactor style's keys belong to a model viewer (wireframe, stereo, quit): none here.
  d->swallowKeys = vtkPxCommandProxy::New([impl] { impl->swallowKeys->SetAbortFlag(1); });
  for (unsigned long event :
       { vtkCommand::CharEvent, vtkCommand::KeyPressEvent, vtkCommand::KeyReleaseEvent })
    interactor->AddObserver(event, d->swallowKeys, 10.0);
  d->pressObserver = vtkPxCommandProxy::New(
    [impl]
    {
      impl->widget->interactor()->GetEventPosition(impl->pressedAt);
      impl->pressed = true;
    });
  interactor->AddObserver(vtkCommand::LeftButtonPressEvent, d->pressObserver, 10.0);
  // The style takes the mouse from a press to its release and ends its interaction there: a
  // release where the press was is a click, which selects.
  d->endTurning = vtkPxCommandProxy::New(
    [this, impl]
    {
      if (impl->sampledPoints)
        impl->showPoints(impl->allPoints);
      impl->scheduleRender();
      vtkRenderWindowInteractor* events = impl->widget->interactor();
      const int* at = events->GetEventPosition();
      // The wheel ends an interaction too, without a press.
      const bool pressed = std::exchange(impl->pressed, false);
      if (!pressed || impl->style->GetState() != VTKIS_NONE ||
          std::abs(at[0] - impl->pressedAt[0]) >= 3 || std::abs(at[1] - impl->pressedAt[1]) >= 3)
        return;
      impl->clickedAt[0] = at[0];
      impl->clickedAt[1] = at[1];
      if (!events->GetControlKey())
      {
        adjustSelectionForMouseClickAtPoint();
        return;
      }
      // With Control down the plot's selection model toggles the case in the master's.
      const long long point = impl->pointAt(at[0], at[1]);
      if (point >= 0)
        impl->plotSelection->setSelection({ impl->caseIds[static_cast<std::size_t>(point)] });
    });
  d->style->AddObserver(vtkCommand::StartInteractionEvent, d->startTurning);
  d->style->AddObserver(vtkCommand::EndInteractionEvent, d->endTurning);

  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->widget,
    *context.selection,
    ChangesWhileHidden::Steps{ [impl] { impl->reload(); },
                               [impl](const auto& ids) { impl->findSelected(ids); },
                               [impl] { impl->scheduleRender(); } });
  const auto reload = [impl] { impl->changes->changed(true); };
  connections().add(context.pipeline->connectSignalPipelineChanged(reload));
  for (const auto& property : { d->axes[0], d->axes[1], d->axes[2], d->color })
    connections().add(property->connectSignalPropertyChanged(reload));
  connections().add(context.selection->connectSignalSelectionChanged(
    [impl](const std::set<unsigned long long>& ids) { impl->changes->selectionChanged(ids); }));

  saveVariableSetting("XVariable", d->axes[0], *d->project);
  saveVariableSetting("YVariable", d->axes[1], *d->project);
  saveVariableSetting("ZVariable", d->axes[2], *d->project);
  saveVariableSetting("ColorVariable", d->color, *d->project);
  fitToData();
}

ScatterPlot3DView::~ScatterPlot3DView()
{
  connections().clear();
  d->style->RemoveObserver(d->startTurning);
  d->style->RemoveObserver(d->endTurning);
  if (d->widget)
  {
    vtkRenderWindowInteractor* interactor = d->widget->interactor();
    for (vtkCommand* observer :
         { static_cast<vtkCommand*>(d->swallowKeys), static_cast<vtkCommand*>(d->pressObserver) })
      interactor->RemoveObserver(observer);
  }
}

std::vector<SettingsSection> ScatterPlot3DView::settingsSections(PropertyEditors& editors)
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  form->addRow("X", editors.variableChooser(d->axes[0], true, {}));
  form->addRow("Y", editors.variableChooser(d->axes[1], true, {}));
  form->addRow("Z", editors.variableChooser(d->axes[2], true, {}));
  form->addRow("Colour", editors.variableChooser(d->color, true, "(none)"));
  return { { "3-D scatter plot", box } };
}

std::string ScatterPlot3DView::selectionSummary() const
{
  return std::to_string(highlightedPoints()) + " highlighted points";
}

void ScatterPlot3DView::suspendParts() {}

void ScatterPlot3DView::resumeParts()
{
  d->changes->changed(true);
}

void ScatterPlot3DView::refresh()
{
  d->render();
}

void ScatterPlot3DView::fitToData()
{
  vtkCamera* camera = d->renderer->GetActiveCamera();
  camera->SetFocalPoint(0.5, 0.5, 0.5);
  camera->SetPosition(2.7, -1.7, 1.4);
  camera->SetViewUp(0, 0, 1);
  d->renderer->ResetCamera(0, 1, 0, 1, 0, 1);
  camera->Zoom(0.8);
  d->scheduleRender();
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlot3DView::xVariable() const
{
  return d->axes[0];
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlot3DView::yVariable() const
{
  return d->axes[1];
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlot3DView::zVariable() const
{
  return d->axes[2];
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlot3DView::colorVariable()
  const
{
  return d->color;
}

bool ScatterPlot3DView::pointOfCase(unsigned long long caseId, QPoint& at) const
{
  d->changes->catchUp();
  bool found = false;
  const int height = d->renderer->GetSize()[1];
  d->projectPoints(
    [&](std::size_t i, double x, double y, double)
    {
      if (d->caseIds[i] == caseId)
      {
        at =
          QPoint(static_cast<int>(std::lround(x)), height - 1 - static_cast<int>(std::lround(y)));
        found = true;
      }
    });
  return found;
}

int ScatterPlot3DView::shownPoints() const
{
  d->changes->catchUp();
  return static_cast<int>(d->caseIds.size());
}

int ScatterPlot3DView::highlightedPoints() const
{
  d->changes->catchUp();
  return static_cast<int>(d->selected.size());
}

bool ScatterPlot3DView::caseIDAtPoint(unsigned long long& caseID)
{
  const long long point = d->pointAt(d->clickedAt[0], d->clickedAt[1]);
  if (point < 0)
    return false;
  caseID = d->caseIds[static_cast<std::size_t>(point)];
  return true;
}

} // namespace explorer
