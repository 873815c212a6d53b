#include "views/ScatterPlotView.h"

#include "CaseKeys.h"
#include "KeyedSelectionModel.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "VtkFonts.h"
#include "vtkCaseKeysFilter.h"
#include "vtkDensityPlotPoints.h"

#include "analyzer_common/NiceNumber.h"
#include "analyzer_common/SelectionModelInterface.h"
#include "charts/AxisDetailsCharts.h"
#include "charts/ChartXY.h"
#include "charts/ChartXYLocationTransformer.h"
#include "charts/ConstraintsRegionPlot.h"
#include "charts/InvalidPointsFilter.h"
#include "charts/vtkChartUtils.h"
#include "colorlegend/ColorLegend.h"
#include "colorlegend/NiceLabelsColorBarWidget.h"
#include "common/ScopedGuards.h"
#include "common_vtk/vtkPxCommandProxy.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/DataView2DSelectionSynchronizer.h"
#include "dataviews/PlotSelectionModel.h"
#include "properties/BoundedValueValidator.h"
#include "properties/ColorVariableProperty.h"
#include "properties/Property.h"
#include "properties/SpatialVariableProperty2D.h"
#include "properties/UndoablePropertyProxy.h"
#include "properties/VTKChartsMouseModeProperty.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QDomElement>
#include <QFormLayout>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <QVTKOpenGLNativeWidget.h>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>
#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIdList.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkLookupTable.h>
#include <vtkPen.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>
#include <vtkTooltipItem.h>

#include <array>
#include <cmath>
#include <cstring>

namespace explorer
{

namespace
{

using VariableProxy = plexa::UndoablePropertyProxy<WeakPtr<Variable>>;

// The listed rows of the named columns of a table.
vtkSmartPointer<vtkTable> rowsOf(vtkTable& table,
                                 vtkIdTypeArray& rows,
                                 const std::vector<std::string>& names)
{
  auto ids = vtkSmartPointer<vtkIdList>::New();
  auto positions = vtkSmartPointer<vtkIdList>::New();
  ids->SetNumberOfIds(rows.GetNumberOfTuples());
  positions->SetNumberOfIds(rows.GetNumberOfTuples());
  for (vtkIdType i = 0; i < rows.GetNumberOfTuples(); ++i)
  {
    ids->SetId(i, rows.GetValue(i));
    positions->SetId(i, i);
  }
  auto subset = vtkSmartPointer<vtkTable>::New();
  for (const std::string& name : names)
  {
    vtkAbstractArray* column = table.GetColumnByName(name.c_str());
    if (!column || subset->GetColumnByName(name.c_str()))
      continue;
    vtkSmartPointer<vtkAbstractArray> copy;
    copy.TakeReference(vtkAbstractArray::CreateArray(column->GetDataType()));
    copy->SetName(column->GetName());
    copy->SetNumberOfComponents(column->GetNumberOfComponents());
    copy->InsertTuples(positions, ids, column);
    subset->AddColumn(copy);
  }
  return subset;
}

// Shown along X when no X variable is chosen: each case at its place in the study.
const char* const caseOrderTitle = vtkCaseKeysFilter::caseOrderColumnName;

// A multiple of a nice step as the double nearest the decimal: 3 steps of 0.1 are 0.3, where
// 3 * 0.1 would be 0.30000000000000004.
double multipleOf(double count, double step)
{
  return step < 1 ? count / std::round(1 / step) : count * step;
}

// An axis's custom grid spacing: the spacing when the user set one, empty when the chart
// chooses the ticks (the spacing shown then follows from the range and is not a setting).
class GridSpacingSerializer : public Serializer
{
public:
  GridSpacingSerializer(const std::string& name, AxisDetailsInterface& axis)
    : Serializer(name)
    , axis(axis)
  {
  }

private:
  void serializeSelf(QDomElement& element) const override
  {
    if (axis.useCustomGridSpacing()->value())
      element.appendChild(
        element.ownerDocument().createTextNode(numberText(axis.gridSpacing()->value())));
  }

  void deserializeSelf(QDomElement& element) const override
  {
    const QString text = element.text().trimmed();
    if (text.isEmpty())
    {
      axis.useCustomGridSpacing()->setValue(false);
      return;
    }
    double spacing = 0;
    if (!parseNumber(text, spacing))
      throw boost::bad_lexical_cast();
    axis.useCustomGridSpacing()->setValue(true);
    axis.gridSpacing()->setValue(spacing);
  }

  AxisDetailsInterface& axis;
};

// Where the user put the colour legend, saved as its corners in fractions of the view; an
// element without them (or "auto") leaves the legend in the chart's margin.
class LegendPlacementSerializer : public Serializer
{
public:
  LegendPlacementSerializer(std::function<bool(double*)> get,
                            std::function<void(const double*)> set)
    : Serializer("ColorLegendPlacement")
    , get(std::move(get))
    , set(std::move(set))
  {
  }

private:
  void serializeSelf(QDomElement& element) const override
  {
    double placement[4];
    if (!get(placement))
    {
      element.setAttribute("auto", 1);
      return;
    }
    const char* names[] = { "x", "y", "width", "height" };
    for (int i = 0; i < 4; ++i)
      element.setAttribute(names[i],
                           QString::fromStdString(numberText(placement[i]).toStdString()));
  }

  void deserializeSelf(QDomElement& element) const override
  {
    if (element.attribute("auto") == "1")
    {
      set(nullptr);
      return;
    }
    double placement[4];
    const char* names[] = { "x", "y", "width", "height" };
    for (int i = 0; i < 4; ++i)
    {
      const QString text = element.attribute(names[i]);
      if (!parseNumber(text, placement[i]) || placement[i] < 0 || placement[i] > 1)
        throw std::invalid_argument("'" + text.toStdString() + "' is not a fraction of the view (" +
                                    names[i] + ")");
    }
    set(placement);
  }

  std::function<bool(double*)> get;
  std::function<void(const double*)> set;
};

} // namespace

struct ScatterPlotView::Impl
{
  std::shared_ptr<const Project> project;
  const DataPipelineManagerInterface& pipeline;
  // Owned by the view; a parent window that goes first takes it along, hence the guard.
  QPointer<QVTKOpenGLNativeWidget> widget;
  vtkSmartPointer<vtkGenericOpenGLRenderWindow> window;
  vtkSmartPointer<vtkContextView> view;
  vtkSmartPointer<ChartXY> chart;
  vtkSmartPointer<vtkDensityPlotPoints> points;
  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> pointsMode;
  boost::shared_ptr<plexa::UndoablePropertyProxy<double>> pointOpacity;
  // The selected cases, drawn over the others as larger markers in a dark ring, so that they
  // stand out in any colour of the map.
  vtkSmartPointer<vtkDensityPlotPoints> selectedRing;
  vtkSmartPointer<vtkDensityPlotPoints> selectedFill;
  vtkSmartPointer<vtkLookupTable> lookupTable;
  vtkSmartPointer<NiceLabelsColorBarWidget> legendWidget;
  // The legend's corners in fractions of the view once the user has moved it; until then it
  // sits in the margin the chart leaves on its right.
  bool legendPlacedByUser = false;
  double legendPlacement[4] = { 0, 0, 0, 0 };
  vtkSmartPointer<vtkPxCommandProxy> layoutObserver;
  vtkSmartPointer<vtkPxCommandProxy> legendMovedObserver;
  vtkSmartPointer<vtkPxCommandProxy> swallowKeys;
  QueuedDraw draws;
  // Set while the chart fits itself: refresh() then updates it without drawing, since the fit
  // goes on to widen the range and draws once at the end.
  bool fitting = false;
  vtkSmartPointer<vtkCaseKeysFilter> plottable;
  // The plot's rows carry case keys; the plot selects through them (see CaseKeys).
  std::shared_ptr<const CaseKeys> keys;
  boost::shared_ptr<KeyedSelectionModel> keyedSelection;
  // What the plot leaves out, and why; what it cannot plot at all.
  vtkSmartPointer<vtkTextActor> notes;
  // Under the colour legend: how many cases are drawn grey for want of a colour value.
  vtkSmartPointer<vtkTextActor> legendNote;
  vtkSmartPointer<InvalidPointsFilter> validPoints;
  boost::shared_ptr<SpatialVariableProperty2D> xTarget;
  boost::shared_ptr<SpatialVariableProperty2D> yTarget;
  boost::shared_ptr<ColorVariableProperty<vtkPlotPoints>> colorTarget;
  boost::shared_ptr<VariableProxy> x;
  boost::shared_ptr<VariableProxy> y;
  boost::shared_ptr<VariableProxy> color;
  boost::shared_ptr<plexa::Property<bool>> visible;
  std::unique_ptr<AxisDetailsCharts> xAxis;
  std::unique_ptr<AxisDetailsCharts> yAxis;
  std::unique_ptr<ColorLegend> legend;
  std::unique_ptr<VTKChartsMouseModeProperty> chartMouseMode;
  boost::shared_ptr<PlotSelectionModel> plotSelection;
  std::unique_ptr<DataView2DSelectionSynchronizer> synchronizer;
  vtkSmartPointer<vtkPxCommandProxy> pressObserver;
  vtkSmartPointer<vtkPxCommandProxy> releaseObserver;
  // The axes' ranges when the left button went down: x from, x to, y from, y to.
  double rangesAtPress[4] = { 0, 0, 0, 0 };
  // A fit asked for before the widget could draw: the chart learns its bounds only while it
  // paints, so the fit is made again on the first refresh once the widget is shown.
  bool pendingFit = false;
  int pressPosition[2] = { 0, 0 };
  int clickPosition[2] = { 0, 0 };
  SignalConnectionCollection connections;

  explicit Impl(const DataPipelineManagerInterface& pipeline)
    : pipeline(pipeline)
  {
  }

  // The plotted table: the pipeline's output without the rows that cannot be plotted.
  // The X column of the plotted table: the X variable's, or the case order without one.
  std::string xColumn() const
  {
    const Variable variable = x->value().lock();
    return variable.isNull() ? caseOrderTitle : variable.name();
  }

  void assignAxes(vtkPlot& plot) const
  {
    if (x->value().lock().isNull())
      plot.SetInputArray(0, caseOrderTitle);
    else
      xTarget->assignInputArrayToPlot(plot, x->value());
    yTarget->assignInputArrayToPlot(plot, y->value());
  }

  void updatePoints()
  {
    // Without a Y variable there is nothing to plot (a study without numbers that vary, say).
    const bool plotted = !y->value().lock().isNull();
    points->SetVisible(plotted);
    if (!plotted)
    {
      points->SetInputData(nullptr);
      updateNotes();
      return;
    }
    plottable->SetColumns({ xColumn(), y->value().lock().name(), color->value().lock().name() });
    validPoints->Update();
    auto table = vtkSmartPointer<vtkTable>::New();
    table->ShallowCopy(validPoints->GetOutput());
    points->SetInputData(table);
    applyPointsMode();
    assignAxes(*points);
    if (x->value().lock().isNull())
      chart->GetAxis(vtkAxis::BOTTOM)->SetTitle(caseOrderTitle);
    colorTarget->assignColorArray(color->value().lock().name());
    synchronizer->updateChartSelections();
    updateSelectedMarkers();
    updateNotes();
  }

  // Says what the plot does not show as it is: cases without X or Y, cases without a colour
  // value (drawn grey), or why nothing is plotted.
  void updateNotes()
  {
    std::vector<std::string> lines;
    const vtkIdType plottedRows =
      points->GetVisible() && points->GetInput() ? points->GetInput()->GetNumberOfRows() : 0;
    legendNote->SetVisibility(false);
    if (y->value().lock().isNull())
      lines.push_back(project->variables().empty()
                        ? "The study has no variables to plot."
                        : "Nothing to plot: choose a numeric Y variable (no number of this study "
                          "varies).");
    else
    {
      pipeline.output()->Update();
      const vtkIdType shown = pipeline.output()->GetOutput()->GetNumberOfRows();
      if (shown > plottedRows)
        lines.push_back(std::to_string(shown - plottedRows) + " of " + std::to_string(shown) +
                        " cases have no value of " +
                        (x->value().lock().isNull() ? y->value().lock().name()
                                                    : x->value().lock().name() + " or " +
                                                        y->value().lock().name()) +
                        " and are not shown.");
      const std::string colourName = color->value().lock().name();
      auto* colours = vtkDoubleArray::SafeDownCast(
        colourName.empty() || !legend->show()->value()
          ? nullptr
          : points->GetInput()->GetColumnByName(colourName.c_str()));
      vtkIdType uncoloured = 0;
      for (vtkIdType row = 0; colours && row < colours->GetNumberOfTuples(); ++row)
        uncoloured += std::isnan(colours->GetValue(row)) ? 1 : 0;
      const std::string grey =
        "grey: no value\n(" + std::to_string(uncoloured) + (uncoloured == 1 ? " case)" : " cases)");
      legendNote->SetInput(grey.c_str());
      legendNote->SetVisibility(uncoloured > 0);
    }
    std::string text;
    for (const auto& line : lines)
      text += (text.empty() ? "" : "\n") + line;
    notes->SetInput(text.c_str());
    notes->SetVisibility(!text.empty());
  }

  void applyPointsMode()
  {
    vtkTable* table = points->GetInput();
    const vtkIdType rows = table ? table->GetNumberOfRows() : 0;
    // A few points are drawn larger, so that they are seen at once; a selected point is drawn
    // a little larger still, in a dark ring.
    const float size = rows <= fewPoints ? 9 : 7;
    points->SetMarkerSize(size);
    selectedFill->SetMarkerSize(size + 2);
    selectedRing->SetMarkerSize(size + 7);
    const short mode = pointsMode->value();
    points->SetDrawDensity(mode == DensityPoints ||
                           (mode == AutomaticPoints && rows > densityAbove));
  }

  // Copies the selected rows into the plots drawn on top; costs the selection, not the study.
  // Up to `ringedSelection` points they are ringed markers. Past it two more passes of markers
  // would cost as much as the points themselves: with markers the points plot draws its selected
  // points larger in the ring's colour; with density it draws them as a dark density over the
  // other, binned from its own points without a copy.
  void updateSelectedMarkers()
  {
    vtkTable* table = points->GetInput();
    vtkIdTypeArray* rows = points->GetSelection();
    const vtkIdType count = rows ? rows->GetNumberOfTuples() : 0;
    const bool any = points->GetVisible() && table && count > 0;
    const bool many = count > ringedSelection;
    const bool density = points->GetDrawDensity();
    points->GetSelectionPen()->SetOpacity(any && many && !density ? 255 : 0);
    const std::string colorName = color->value().lock().name();
    const bool colored = legend->show()->value() && !colorName.empty();
    const bool ringVisible = any && !many;
    const bool fillVisible = ringVisible;
    points->SetDrawSelectionDensity(any && many && density);
    // The case ids first, as in the points' table: the tool tips read them there. One copy
    // serves both plots.
    const vtkSmartPointer<vtkTable> selectedRows = ringVisible ? rowsOf(*table,
                                                                        *rows,
                                                                        { table->GetColumnName(0),
                                                                          xColumn(),
                                                                          y->value().lock().name(),
                                                                          colorName })
                                                               : nullptr;
    for (const auto& [plot, shown] :
         { std::make_pair(static_cast<vtkPlotPoints*>(selectedRing), ringVisible),
           std::make_pair(static_cast<vtkPlotPoints*>(selectedFill), fillVisible) })
    {
      plot->SetVisible(shown);
      if (!shown)
      {
        plot->SetInputData(nullptr);
        continue;
      }
      plot->SetInputData(selectedRows);
      assignAxes(*plot);
    }
    selectedFill->SetScalarVisibility(fillVisible && colored);
    if (fillVisible && colored)
      selectedFill->SelectColorArray(colorName);
  }

  static constexpr vtkIdType ringedSelection = 10000;
  static constexpr vtkIdType fewPoints = 500;
  // Markers cost about 40 ms per 10,000 points here (software GL); density costs the plot area.
  static constexpr vtkIdType densityAbove = 25000;

  // The chart fills the view but for a margin on the right that holds the colour legend, so the
  // legend never covers a point. Runs before each render, when the view's size is known.
  void layOut()
  {
    for (const auto& [details, which] : { std::make_pair(xAxis.get(), int(vtkAxis::BOTTOM)),
                                          std::make_pair(yAxis.get(), int(vtkAxis::LEFT)) })
      placeCustomTicks(*details, *chart->GetAxis(which));
    const int* size = window->GetSize();
    if (size[0] <= 0 || size[1] <= 0)
      return;
    const bool legendShown = legend && legend->visible()->value();
    const float margin = legendShown && !legendPlacedByUser ? legendMargin : 0.0f;
    const vtkRectf area(
      0, 0, std::max(1.0f, static_cast<float>(size[0]) - margin), static_cast<float>(size[1]));
    if (chart->GetSize() != area)
      chart->SetSize(area);
    auto* representation =
      vtkScalarBarRepresentation::SafeDownCast(legendWidget->GetRepresentation());
    if (!representation)
      return;
    if (legendPlacedByUser)
    {
      legendNote->SetPosition(legendPlacement[0] * size[0],
                              std::max(0.0, legendPlacement[1] * size[1] - 34));
      representation->SetPosition(legendPlacement[0], legendPlacement[1]);
      representation->SetPosition2(legendPlacement[2], legendPlacement[3]);
      return;
    }
    const auto width = static_cast<double>(size[0]);
    const auto height = static_cast<double>(size[1]);
    legendNote->SetPosition(width - margin + 8, 6);
    representation->SetPosition((width - margin + 8) / width, 50.0 / height);
    representation->SetPosition2((margin - 16) / width, std::max(0.1, 1.0 - 80.0 / height));
  }

  // A custom grid spacing puts a tick on every multiple of the spacing inside the range. The axis
  // settings start the ticks at the multiple nearest zero from the minimum, which can lie below
  // the range and leave it without a label (198 to 242 by 50), and can read "-0"; the ticks are
  // placed again here before each draw.
  static void placeCustomTicks(AxisDetailsInterface& details, vtkAxis& axis)
  {
    if (!details.useCustomGridSpacing()->value())
      return;
    const double spacing = details.gridSpacing()->value();
    const double low = std::min(axis.GetMinimum(), axis.GetMaximum());
    const double high = std::max(axis.GetMinimum(), axis.GetMaximum());
    if (!(spacing > 0) || !std::isfinite(low) || !std::isfinite(high) ||
        (high - low) / spacing > 10000)
      return;
    auto positions = vtkSmartPointer<vtkDoubleArray>::New();
    for (double k = std::ceil(low / spacing); k <= std::floor(high / spacing); ++k)
      positions->InsertNextValue(multipleOf(k, spacing) + 0.0); // + 0.0: never "-0"
    // Compared bit for bit: -0 equals 0 as a number.
    vtkDoubleArray* placed = axis.GetTickPositions();
    const bool same = placed && placed->GetNumberOfTuples() == positions->GetNumberOfTuples() &&
                      std::memcmp(positions->GetPointer(0),
                                  placed->GetPointer(0),
                                  sizeof(double) * positions->GetNumberOfTuples()) == 0;
    if (!same)
      axis.SetCustomTickPositions(positions, nullptr);
  }

  void legendMoved()
  {
    auto* representation =
      vtkScalarBarRepresentation::SafeDownCast(legendWidget->GetRepresentation());
    if (!representation)
      return;
    legendPlacedByUser = true;
    std::copy(representation->GetPosition(), representation->GetPosition() + 2, legendPlacement);
    std::copy(
      representation->GetPosition2(), representation->GetPosition2() + 2, legendPlacement + 2);
    render();
  }

  // The fitted range ends on the outermost points, which would be cut in half: widen it by a few
  // percent, and by at least a marker, to a round number. A variable of one value (a constant,
  // or a single case) is centred with a margin on either side.
  void widenToPoints(int which)
  {
    vtkAxis* axis = chart->GetAxis(which);
    std::array<double, 4> bounds = { 0, 0, 0, 0 };
    const bool plotted =
      points->GetVisible() && points->GetInput() && points->GetInput()->GetNumberOfRows() > 0;
    if (plotted)
      points->GetBounds(bounds.data());
    const std::size_t i = which == vtkAxis::BOTTOM ? 0 : 1;
    // From the points themselves: the fitted range has already been rounded outwards.
    const double min = plotted ? bounds[2 * i] : axis->GetMinimum();
    const double max = plotted ? bounds[2 * i + 1] : axis->GetMaximum();
    const double span = max - min;
    if (!std::isfinite(span) || span < 0)
      return;
    if (span == 0)
    {
      const double half = min == 0 ? 1 : makeNiceNumber(std::abs(min) / 10);
      axis->SetRange(min - half, min + half);
      return;
    }
    const float* start = axis->GetPoint1();
    const float* end = axis->GetPoint2();
    const double pixels = std::hypot(end[0] - start[0], end[1] - start[1]);
    const double marker = pixels > 0 ? span * points->GetMarkerSize() / pixels : 0;
    const double margin =
      std::max({ 0.04 * span, marker, halfGap(which == vtkAxis::BOTTOM ? *x : *y) });
    const double step = makeNiceNumber(span / 100);
    axis->SetRange(multipleOf(std::floor((min - margin) / step), step),
                   multipleOf(std::ceil((max + margin) / step), step));
  }

  // Half the mean gap between the values of a discrete variable: its first and last values then
  // sit as far from the ends of the axis as from their neighbours, as columns of a sweep do.
  double halfGap(const plexa::PropertyAbstract<WeakPtr<Variable>>& axisVariable) const
  {
    const Variable variable = axisVariable.value().lock();
    const auto* values = variable.isNull() || variable.nature() != Variable::Discrete
                           ? nullptr
                           : project->numericValues(variable);
    if (!values)
      return 0;
    std::vector<double> distinct;
    for (double value : *values)
      if (!std::isnan(value) &&
          std::find(distinct.begin(), distinct.end(), value) == distinct.end())
        distinct.push_back(value);
    const auto range = variable.range();
    return distinct.size() < 2 ? 0
                               : (range.second - range.first) / (2.0 * (distinct.size() - 1));
  }

  void render() { draws.now(); }
  // Renders once control returns to the event loop, however many settings changed meanwhile.
  void scheduleRender() { draws.later(); }

  static constexpr float legendMargin = 110.0f;
};

ScatterPlotView::ScatterPlotView(const ViewContext& context)
  : ExplorerView(std::make_unique<Serializer>("ScatterPlot2D"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  const DataPipelineManagerInterface& pipeline = *context.pipeline;
  const auto& selection = context.selection;
  d->project = context.project;
  d->widget = new QVTKOpenGLNativeWidget();
  d->widget->setObjectName("scatterView");
  d->window = vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New();
  d->widget->setRenderWindow(d->window);
  vtkGenericOpenGLRenderWindow* window = d->window;
  d->draws.attach(*d->widget, [window] { window->Render(); });
  d->view = vtkSmartPointer<vtkContextView>::New();
  d->view->SetRenderWindow(d->window);
  d->view->SetInteractor(d->widget->interactor());
  d->view->GetRenderer()->SetBackground(1, 1, 1);
  d->chart = vtkSmartPointer<ChartXY>::New();
  d->chart->SetLayoutStrategy(vtkChart::FILL_RECT);
  d->view->GetScene()->AddItem(d->chart);
  for (int axis : { vtkAxis::BOTTOM, vtkAxis::LEFT })
    d->chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);

  d->points = vtkSmartPointer<vtkDensityPlotPoints>::New();
  d->points->SetMarkerStyle(vtkPlotPoints::CIRCLE);
  d->points->SetMarkerSize(7);
  d->points->SetColor(30, 90, 200, 255);
  d->points->SetLabel("cases");
  d->lookupTable = vtkSmartPointer<vtkLookupTable>::New();
  d->lookupTable->SetHueRange(0.667, 0.0);
  // A case without a colour value is drawn, in a grey no colour of the map comes near.
  d->lookupTable->SetNanColor(0.6, 0.6, 0.6, 1.0);
  d->lookupTable->Build();
  d->points->SetLookupTable(d->lookupTable);
  // The selection is drawn by the two plots on top, not in the selection pen's single colour,
  // unless it is very large (see updateSelectedMarkers).
  d->points->GetSelectionPen()->SetColor(20, 20, 20);
  d->points->GetSelectionPen()->SetOpacity(0);
  d->points->SetSelectionDensityColor(20, 20, 20, 255);
  d->selectedRing = vtkSmartPointer<vtkDensityPlotPoints>::New();
  d->selectedRing->SetMarkerStyle(vtkPlotPoints::CIRCLE);
  d->selectedRing->SetMarkerSize(14);
  d->selectedRing->SetColor(20, 20, 20, 255);
  d->selectedRing->ScalarVisibilityOff();
  d->selectedFill = vtkSmartPointer<vtkDensityPlotPoints>::New();
  d->selectedFill->SetMarkerStyle(vtkPlotPoints::CIRCLE);
  d->selectedFill->SetMarkerSize(9);
  d->selectedFill->SetColor(30, 90, 200, 255);
  d->selectedFill->SetLookupTable(d->lookupTable);
  for (vtkPlotPoints* plot : { static_cast<vtkPlotPoints*>(d->selectedRing),
                               static_cast<vtkPlotPoints*>(d->selectedFill) })
  {
    plot->SetSelectable(false);
    plot->SetLegendVisibility(false);
    plot->SetVisible(false);
  }

  d->xTarget = boost::make_shared<SpatialVariableProperty2D>(d->chart->GetAxis(vtkAxis::BOTTOM), 0);
  d->yTarget = boost::make_shared<SpatialVariableProperty2D>(d->chart->GetAxis(vtkAxis::LEFT), 1);
  d->colorTarget = boost::make_shared<ColorVariableProperty<vtkPlotPoints>>(d->points);
  const defaults::ScatterChoice first = defaults::scatter(*d->project);
  d->xTarget->setValue(first.x);
  d->yTarget->setValue(first.y);
  d->colorTarget->setValue(first.colour);
  d->xTarget->addPlot(d->points);
  d->yTarget->addPlot(d->points);
  d->x = boost::make_shared<VariableProxy>("X Variable", d->xTarget);
  d->y = boost::make_shared<VariableProxy>("Y Variable", d->yTarget);
  d->color = boost::make_shared<VariableProxy>("Color Variable", d->colorTarget);
  using Bounded = plexa::BoundedValueValidator<short>;
  d->pointsMode = boost::make_shared<plexa::UndoablePropertyProxy<short>>(
    "Points",
    boost::make_shared<plexa::Property<short>>(
      AutomaticPoints,
      boost::make_shared<Bounded>(
        AutomaticPoints, Bounded::Inclusive, DensityPoints, Bounded::Inclusive)));

  d->pointOpacity = boost::make_shared<plexa::UndoablePropertyProxy<double>>(
    "Point Opacity",
    boost::make_shared<plexa::Property<double>>(
      1.0,
      boost::make_shared<plexa::BoundedValueValidator<double>>(
        0.05,
        plexa::BoundedValueValidator<double>::Inclusive,
        1.0,
        plexa::BoundedValueValidator<double>::Inclusive)));

  // The legend is drawn while the points are coloured.
  d->visible = boost::make_shared<plexa::Property<bool>>(!first.colour.lock().isNull());
  d->legendWidget = vtkSmartPointer<NiceLabelsColorBarWidget>::New();
  d->legend = std::make_unique<ColorLegend>(
    d->color, d->visible, pipeline, d->lookupTable, *d->widget->interactor(), d->legendWidget);
  d->legend->show()->setValue(true);
  // Text of a fixed size: scaled to the bar, it grows with the view's height.
  vtkScalarBarActor* bar = d->legendWidget->GetScalarBarActor();
  bar->UnconstrainedFontSizeOn();
  bar->GetLabelTextProperty()->SetFontSize(13);
  bar->GetTitleTextProperty()->SetFontSize(13);

  d->notes = vtkSmartPointer<vtkTextActor>::New();
  d->notes->GetTextProperty()->SetFontSize(13);
  d->notes->GetTextProperty()->SetColor(0.35, 0.1, 0.1);
  d->notes->GetTextProperty()->SetVerticalJustificationToTop();
  d->notes->GetPositionCoordinate()->SetCoordinateSystemToNormalizedViewport();
  d->notes->SetPosition(0.09, 0.985);
  d->notes->SetVisibility(false);
  d->view->GetRenderer()->AddActor2D(d->notes);
  d->legendNote = vtkSmartPointer<vtkTextActor>::New();
  d->legendNote->GetTextProperty()->SetFontSize(12);
  d->legendNote->GetTextProperty()->SetColor(0.45, 0.45, 0.45);
  d->legendNote->SetVisibility(false);
  d->view->GetRenderer()->AddActor2D(d->legendNote);
  for (vtkTextProperty* text : { d->notes->GetTextProperty(),
                                 d->legendNote->GetTextProperty(),
                                 bar->GetLabelTextProperty(),
                                 bar->GetTitleTextProperty(),
                                 d->chart->GetTooltip()->GetTextProperties(),
                                 d->chart->GetAxis(vtkAxis::BOTTOM)->GetTitleProperties(),
                                 d->chart->GetAxis(vtkAxis::BOTTOM)->GetLabelProperties(),
                                 d->chart->GetAxis(vtkAxis::LEFT)->GetTitleProperties(),
                                 d->chart->GetAxis(vtkAxis::LEFT)->GetLabelProperties() })
    useSystemFont(*text);

  // A case is plotted when it has X and Y; a missing colour value is drawn grey.
  d->validPoints = InvalidPointsFilter::New({ d->x, d->y });
  d->keys = context.keys;
  d->plottable = vtkSmartPointer<vtkCaseKeysFilter>::New();
  d->plottable->SetKeys(d->keys);
  const auto caseOfKey = [keys = d->keys](long long key, unsigned long long& caseId)
  { return key >= 0 && keys->caseIdOf(static_cast<unsigned long long>(key), caseId); };
  for (vtkDensityPlotPoints* plot : { d->points.Get(), d->selectedRing.Get(), d->selectedFill.Get() })
    plot->SetCaseIdOfKey(caseOfKey);
  d->plottable->SetInputConnection(pipeline.output()->GetOutputPort());
  d->validPoints->SetInputConnection(d->plottable->GetOutputPort());

  // The constraints region first, so that it is painted behind the points.
  d->chart->AddPlot(ConstraintsRegionPlot::New(pipeline, d->x, d->y, d->points));
  d->chart->AddPlot(d->points);
  d->chart->AddPlot(d->selectedRing);
  d->chart->AddPlot(d->selectedFill);
  d->xAxis = std::make_unique<AxisDetailsCharts>("X", *d->x, d->chart->GetAxis(vtkAxis::BOTTOM));
  d->yAxis = std::make_unique<AxisDetailsCharts>("Y", *d->y, d->chart->GetAxis(vtkAxis::LEFT));

  d->chartMouseMode = std::make_unique<VTKChartsMouseModeProperty>(d->chart);
  d->chartMouseMode->setValue(mouseMode()->value());
  Impl* impl = d.get();
  d->connections.add(mouseMode()->connectSignalValueChanged(
    [impl](const MouseMode& mode) { impl->chartMouseMode->setValue(mode); }));

  d->keyedSelection = boost::make_shared<KeyedSelectionModel>(selection, d->keys);
  d->plotSelection =
    boost::make_shared<PlotSelectionModel>(d->widget->interactor(), d->keyedSelection);
  d->synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
    d->chart, d->widget->interactor(), d->plotSelection);
  d->synchronizer->setPlotsToSynchronize({ d->points });
  d->connections.add(d->synchronizer->connectSignalSelectionsUpdated(
    [impl]
    {
      impl->updateSelectedMarkers();
      impl->render();
    }));

  Impl* layout = d.get();
  d->layoutObserver = vtkPxCommandProxy::New([layout] { layout->layOut(); });
  d->window->AddObserver(vtkCommand::StartEvent, d->layoutObserver);
  d->legendMovedObserver = vtkPxCommandProxy::New([layout] { layout->legendMoved(); });
  d->legendWidget->AddObserver(vtkCommand::EndInteractionEvent, d->legendMovedObserver);
  // VTK's interactor style answers keys as in a 3-D viewer (3 for stereo, w and s for wireframe
  // and surface, e and q to quit, r to reset); none of that belongs in a chart, so the keys stop
  // here.
  d->swallowKeys = vtkPxCommandProxy::New([layout] { layout->swallowKeys->SetAbortFlag(1); });
  for (unsigned long event :
       { vtkCommand::CharEvent, vtkCommand::KeyPressEvent, vtkCommand::KeyReleaseEvent })
    d->widget->interactor()->AddObserver(event, d->swallowKeys, 10.0);

  // A click without a drag outside Select mode picks the case under the mouse; in Select mode
  // the chart's own click selection does it.
  // Outside Select mode a click on empty space keeps the selection: the user meant to pan or zoom.
  d->pressObserver = vtkPxCommandProxy::New(
    [this]
    {
      d->widget->interactor()->GetEventPosition(d->pressPosition);
      for (int i = 0; i < 2; ++i)
        d->chart->GetAxis(i == 0 ? vtkAxis::BOTTOM : vtkAxis::LEFT)
          ->GetRange(d->rangesAtPress + 2 * i);
    });
  const auto clicked = [this]
  {
    const int* at = d->widget->interactor()->GetEventPosition();
    return std::abs(at[0] - d->pressPosition[0]) < 3 && std::abs(at[1] - d->pressPosition[1]) < 3;
  };
  d->releaseObserver = vtkPxCommandProxy::New(
    [this, clicked]
    {
      int* at = d->widget->interactor()->GetEventPosition();
      unsigned long long id = 0;
      d->clickPosition[0] = at[0];
      d->clickPosition[1] = at[1];
      if (!clicked() || mouseMode()->value() == Select)
        return;
      if (caseIDAtPoint(id))
        adjustSelectionForMouseClickAtPoint();
      // The chart zooms into a box of a few pixels around a click, a hand's tremor between press
      // and release: a click is no zoom, so the axes get their ranges back once the chart has
      // taken the release (this observer runs before it).
      if (mouseMode()->value() == Zoom)
        QTimer::singleShot(0,
                           d->widget,
                           [impl = d.get(), ranges = std::vector<double>(
                                              d->rangesAtPress, d->rangesAtPress + 4)]
                           {
                             for (int i = 0; i < 2; ++i)
                               impl->chart->GetAxis(i == 0 ? vtkAxis::BOTTOM : vtkAxis::LEFT)
                                 ->SetRange(ranges[2 * i], ranges[2 * i + 1]);
                             impl->chart->Update();
                             impl->render();
                           });
    });
  vtkRenderWindowInteractor* mouse = d->widget->interactor();
  mouse->AddObserver(vtkCommand::LeftButtonPressEvent, d->pressObserver, 1.0);
  mouse->AddObserver(vtkCommand::LeftButtonReleaseEvent, d->releaseObserver, 1.0);

  const auto replot = [this]
  {
    d->updatePoints();
    refresh();
  };
  // A new variable on one axis fits that axis; the other keeps the range it has.
  const auto refit = [this](int axis)
  {
    return [this, axis](const WeakPtr<Variable>&)
    {
      d->updatePoints();
      fitAxis(axis);
    };
  };
  d->connections.add(pipeline.connectSignalPipelineChanged(replot));
  d->connections.add(d->x->connectSignalValueChanged(refit(vtkAxis::BOTTOM)));
  d->connections.add(d->y->connectSignalValueChanged(refit(vtkAxis::LEFT)));
  d->connections.add(d->color->connectSignalValueChanged(
    [impl, replot](const WeakPtr<Variable>& colour)
    {
      impl->visible->setValue(!colour.lock().isNull());
      replot();
    }));
  d->connections.add(
    d->legend->show()->connectSignalValueChanged([replot](const bool&) { replot(); }));
  d->connections.add(d->pointsMode->connectSignalValueChanged(
    [impl](const short&)
    {
      impl->applyPointsMode();
      impl->scheduleRender();
    }));
  d->connections.add(d->pointOpacity->connectSignalValueChanged(
    [impl](const double& opacity)
    {
      impl->points->SetPointOpacity(opacity);
      impl->scheduleRender();
    }));
  // Settings typed in the panel show at once, not when the mouse next enters the chart.
  for (const plexa::PropertyItemInterface* setting :
       std::initializer_list<const plexa::PropertyItemInterface*>{
         d->xAxis->min().get(),
         d->xAxis->max().get(),
         d->xAxis->useCustomGridSpacing().get(),
         d->xAxis->gridSpacing().get(),
         d->yAxis->min().get(),
         d->yAxis->max().get(),
         d->yAxis->useCustomGridSpacing().get(),
         d->yAxis->gridSpacing().get(),
         d->legend->rangeType().get(),
         d->legend->range().get(),
         d->legend->numLabels().get() })
    d->connections.add(setting->connectSignalPropertyChanged([impl] { impl->scheduleRender(); }));
  // A range set by the user, or read from saved settings, is kept: no fit made later for a view
  // that was not yet shown takes its place.
  for (const plexa::PropertyItemInterface* range :
       std::initializer_list<const plexa::PropertyItemInterface*>{
         d->xAxis->min().get(), d->xAxis->max().get(), d->yAxis->min().get(), d->yAxis->max().get() })
    d->connections.add(range->connectSignalPropertyChanged(
      [impl]
      {
        if (!impl->fitting)
          impl->pendingFit = false;
      }));

  saveVariableSetting("XVariable", d->x, *d->project);
  saveVariableSetting("YVariable", d->y, *d->project);
  saveVariableSetting("ColorVariable", d->color, *d->project);
  saveSetting(d->legend->serializer());
  saveSetting(boost::make_shared<GenericSerializer<short>>("Points", d->pointsMode), "0, 1 or 2");
  saveSetting(boost::make_shared<GenericSerializer<double>>("PointOpacity", d->pointOpacity),
              "a number from 0.05 to 1");
  // The range first: a custom grid spacing is checked against it.
  for (const auto& [prefix, axis] :
       { std::make_pair("X", d->xAxis.get()), std::make_pair("Y", d->yAxis.get()) })
  {
    const std::string name = prefix;
    saveSetting(boost::make_shared<GenericSerializer<double>>(name + "Min", axis->min()),
                "a number");
    saveSetting(boost::make_shared<GenericSerializer<double>>(name + "Max", axis->max()),
                "a number");
    saveSetting(boost::make_shared<GridSpacingSerializer>(name + "GridSpacing", *axis), "a number");
  }
  saveSetting(boost::make_shared<LegendPlacementSerializer>(
    [impl](double* placement)
    {
      std::copy(impl->legendPlacement, impl->legendPlacement + 4, placement);
      return impl->legendPlacedByUser;
    },
    [impl](const double* placement)
    {
      impl->legendPlacedByUser = placement != nullptr;
      if (placement)
        std::copy(placement, placement + 4, impl->legendPlacement);
      impl->scheduleRender();
    }));

  d->updatePoints();
  fitToData();
}

ScatterPlotView::~ScatterPlotView()
{
  d->connections.clear();
  d->window->RemoveObserver(d->layoutObserver);
  d->legendWidget->RemoveObserver(d->legendMovedObserver);
  d->synchronizer.reset();
  d->legend.reset();
  if (d->widget)
  {
    d->widget->interactor()->RemoveObserver(d->pressObserver);
    d->widget->interactor()->RemoveObserver(d->releaseObserver);
    d->widget->interactor()->RemoveObserver(d->swallowKeys);
    delete d->widget;
  }
}

QWidget* ScatterPlotView::widget() const
{
  return d->widget;
}

void ScatterPlotView::accept(DataViewVisitorInterface& visitor)
{
  visitor.visit(boost::dynamic_pointer_cast<ScatterPlot2DInterface>(shared_from_this()));
}

std::string ScatterPlotView::selectionSummary() const
{
  return std::to_string(highlightedPoints()) + " highlighted points";
}

void ScatterPlotView::suspend()
{
  d->connections.block();
  d->synchronizer->suspend();
  d->legend->suspend();
}

void ScatterPlotView::resume()
{
  d->connections.unblock();
  d->synchronizer->resume();
  d->legend->resume();
  d->updatePoints();
  refresh();
}

void ScatterPlotView::refresh()
{
  if (d->pendingFit && d->widget && d->widget->isVisible())
  {
    d->pendingFit = false;
    fitToData();
    return;
  }
  d->chart->Update();
  if (!d->fitting)
    d->render();
}

std::vector<SettingsSection> ScatterPlotView::settingsSections(PropertyEditors& editors)
{
  auto* chart = new QWidget();
  auto* form = new QFormLayout(chart);
  form->addRow("X", editors.variableChooser(d->x, true, "(case order)"));
  form->addRow("Y", editors.variableChooser(d->y, true, {}));
  form->addRow("Colour", editors.variableChooser(d->color, true, "(none)"));
  form->addRow("Points",
               editors.enumChooser<short>(d->pointsMode,
                                          { { "Automatic (density above 25,000)", AutomaticPoints },
                                            { "Markers", MarkerPoints },
                                            { "Density", DensityPoints } }));
  form->addRow("Point opacity", editors.numberEditor(d->pointOpacity));
  form->addRow(editors.axisEditor("X axis", *d->xAxis));
  form->addRow(editors.axisEditor("Y axis", *d->yAxis));
  return { { title(), chart }, { "Colour legend", editors.colorLegendEditor(*d->legend) } };
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlotView::xVariable() const
{
  return d->x;
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlotView::yVariable() const
{
  return d->y;
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlotView::colorVariable() const
{
  return d->color;
}

AxisDetailsInterface& ScatterPlotView::xAxis() const
{
  return *d->xAxis;
}

AxisDetailsInterface& ScatterPlotView::yAxis() const
{
  return *d->yAxis;
}

ColorLegend& ScatterPlotView::colorLegend() const
{
  return *d->legend;
}

void ScatterPlotView::fitToData()
{
  d->pendingFit = !d->widget || !d->widget->isVisible();
  {
    const ScopedValue<bool> fitting(d->fitting, true);
    vtkChartUtils::fitData(*d->chart, *this);
    d->widenToPoints(vtkAxis::BOTTOM);
    d->widenToPoints(vtkAxis::LEFT);
  }
  d->render();
}

void ScatterPlotView::fitAxis(int which)
{
  if (!d->widget || !d->widget->isVisible())
  {
    fitToData();
    return;
  }
  {
    const ScopedValue<bool> fitting(d->fitting, true);
    vtkChartUtils::resetAxisRange(*d->chart, *d->chart->GetAxis(which), *this);
    d->widenToPoints(which);
  }
  d->render();
}

vtkPlotPoints& ScatterPlotView::points() const
{
  return *d->points;
}

long long ScatterPlotView::rowOfCase(unsigned long long caseId) const
{
  vtkTable* table = d->points->GetInput();
  unsigned long long key = 0;
  if (!table || table->GetNumberOfColumns() == 0 || !d->keys->keyOf(caseId, key))
    return -1;
  auto* keys = vtkIntArray::SafeDownCast(table->GetColumn(0));
  for (vtkIdType row = 0; keys && row < keys->GetNumberOfTuples(); ++row)
    if (static_cast<unsigned long long>(keys->GetValue(row)) == key)
      return row;
  return -1;
}

boost::shared_ptr<plexa::PropertyAbstract<short>> ScatterPlotView::pointsMode() const
{
  return d->pointsMode;
}

boost::shared_ptr<plexa::PropertyAbstract<double>> ScatterPlotView::pointOpacity() const
{
  return d->pointOpacity;
}

ChartXY& ScatterPlotView::chart() const
{
  return *d->chart;
}

int ScatterPlotView::highlightedPoints() const
{
  vtkIdTypeArray* selection = d->points->GetSelection();
  return selection ? static_cast<int>(selection->GetNumberOfTuples()) : 0;
}

std::string ScatterPlotView::notes() const
{
  return d->notes->GetVisibility() ? d->notes->GetInput() : std::string();
}

std::string ScatterPlotView::legendNote() const
{
  return d->legendNote->GetVisibility() ? d->legendNote->GetInput() : std::string();
}

bool ScatterPlotView::caseIDAtPoint(unsigned long long& caseID)
{
  vtkTable* table = d->points->GetInput();
  if (!table || table->GetNumberOfColumns() == 0 || table->GetNumberOfRows() == 0)
  {
    return false;
  }
  // The pick box: 5 pixels around the click, in the plot's (shifted and scaled) coordinates.
  const ChartXYLocationTransformer transformer(d->chart);
  const int tolerance = 5;
  const vtkVector2f low = transformer.getWorldCoordinatesFromPixelLocation(
    { d->clickPosition[0] - tolerance, d->clickPosition[1] - tolerance });
  const vtkVector2f high = transformer.getWorldCoordinatesFromPixelLocation(
    { d->clickPosition[0] + tolerance, d->clickPosition[1] + tolerance });
  const vtkRectd shiftScale = d->points->GetShiftScale();
  const auto scaled = [&](const vtkVector2f& p)
  {
    return vtkVector2f(static_cast<float>((p.GetX() + shiftScale.GetX()) * shiftScale.GetWidth()),
                       static_cast<float>((p.GetY() + shiftScale.GetY()) * shiftScale.GetHeight()));
  };
  unsigned long long key = 0;
  return vtkChartUtils::caseIDAtPoint(
           *d->points, *table->GetColumn(0), scaled(low), scaled(high), key) &&
         d->keys->caseIdOf(key, caseID);
}

} // namespace explorer
