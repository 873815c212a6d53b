#include "views/ParallelCoordinatesView.h"

#include "CaseRowIndex.h"
#include "ChangesWhileHidden.h"
#include "FilterEdits.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "analyzer_common/DeleteSignaler.h"
#include "analyzer_common/SelectionModelInterface.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/GenericSerializer.h"
#include "serialization/VariableListSerializer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QFormLayout>
#include <QImage>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QWidget>
#include <boost/make_shared.hpp>
#include <vtkDoubleArray.h>
#include <vtkLookupTable.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>

namespace explorer
{

namespace
{

constexpr int densityThreshold = 20000;
// Up to this many selected lines are drawn outlined in their colour, smoothly; up to the next
// as thin dark lines (stroking wide smooth lines costs about 0.2 ms each); above that, the
// selection too is drawn as a density.
constexpr int selectedLinesOutlined = 200;
constexpr int selectedLinesDrawn = 5000;
constexpr float missing = std::numeric_limits<float>::quiet_NaN();

using VariableList = std::vector<WeakPtr<Variable>>;

// One axis: its variable and where each shown case lies on it, from 0 (bottom) to 1 (top), NaN
// for a missing value.
struct Axis
{
  WeakPtr<Variable> variable;
  QString name;
  bool text = false;
  double min = 0;
  double max = 1;
  std::vector<std::string> categories;
  std::vector<float> position;
};

// Pixel geometry of the plot for the widget's size.
struct Layout
{
  int width = 0;
  int height = 0;
  int count = 0;
  double left = 60;
  double right = 0;
  double top = 40;
  double bottom = 0;
  double missingY = 0;

  Layout(const QSize& size, int axes)
    : width(size.width())
    , height(size.height())
    , count(axes)
    , right(size.width() - 60.0)
    , bottom(size.height() - 56.0)
    , missingY(size.height() - 28.0)
  {
  }

  double x(int axis) const
  {
    return count <= 1 ? width / 2.0 : left + axis * (right - left) / (count - 1);
  }
  double y(float position) const
  {
    return std::isnan(position) ? missingY : bottom - position * (bottom - top);
  }
  // The position a height stands for, within the axis.
  double position(double y) const
  {
    return std::clamp((bottom - y) / std::max(bottom - top, 1.0), 0.0, 1.0);
  }
};

// The colours of the colour variable's scale, blue to red as in the scatter plot.
std::array<QRgb, 256> palette()
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

// Lines binned by the pairs of heights they join on each pair of neighbouring axes (bins of
// two pixels), then drawn into an image with an opacity growing with the logarithm of their
// number. `rows` lists the lines to draw, all of them when null; `colour` gives each line's
// position on the colour scale, NaN for a line drawn in `plain`; without it every line is plain.
QImage densityImage(const std::vector<Axis>& axes,
                    const std::vector<float>* colour,
                    const std::vector<int>* rows,
                    const Layout& layout,
                    const std::array<QRgb, 256>& colours,
                    QRgb plain)
{
  constexpr int binHeight = 2;
  const int w = layout.width;
  const int h = layout.height;
  QImage image(std::max(w, 1), std::max(h, 1), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  if (axes.size() < 2 || w <= 0 || h <= 0)
    return image;
  const int bins = (h + binHeight - 1) / binHeight;
  const auto binOf = [&](float position)
  {
    const int y = static_cast<int>(std::lround(layout.y(position)));
    return std::clamp(y, 0, h - 1) / binHeight;
  };
  std::vector<float> count(static_cast<std::size_t>(w) * h, 0.f);
  std::vector<float> colourSum(count.size(), 0.f);
  std::vector<float> coloured(count.size(), 0.f);
  std::vector<float> pairCount(static_cast<std::size_t>(bins) * bins);
  std::vector<float> pairColour(pairCount.size());
  std::vector<float> pairColoured(pairCount.size());
  const std::size_t total = rows ? rows->size() : axes.front().position.size();
  for (std::size_t pair = 0; pair + 1 < axes.size(); ++pair)
  {
    std::fill(pairCount.begin(), pairCount.end(), 0.f);
    std::fill(pairColour.begin(), pairColour.end(), 0.f);
    std::fill(pairColoured.begin(), pairColoured.end(), 0.f);
    const auto& from = axes[pair].position;
    const auto& to = axes[pair + 1].position;
    for (std::size_t i = 0; i < total; ++i)
    {
      const std::size_t row = rows ? static_cast<std::size_t>((*rows)[i]) : i;
      const std::size_t bin = static_cast<std::size_t>(binOf(from[row])) * bins +
                              static_cast<std::size_t>(binOf(to[row]));
      pairCount[bin] += 1;
      if (colour && !std::isnan((*colour)[row]))
      {
        pairColour[bin] += (*colour)[row];
        pairColoured[bin] += 1;
      }
    }
    const int x0 = static_cast<int>(layout.x(static_cast<int>(pair)));
    const int x1 = static_cast<int>(layout.x(static_cast<int>(pair) + 1));
    const int span = std::max(x1 - x0, 1);
    for (std::size_t bin = 0; bin < pairCount.size(); ++bin)
    {
      if (pairCount[bin] == 0)
        continue;
      const int a = static_cast<int>(bin) / bins * binHeight;
      const int b = static_cast<int>(bin) % bins * binHeight;
      for (int x = std::max(x0, 0); x < std::min(x1, w); ++x)
      {
        const int y = a + (b - a) * (x - x0) / span;
        const std::size_t pixel = static_cast<std::size_t>(y) * w + static_cast<std::size_t>(x);
        count[pixel] += pairCount[bin];
        colourSum[pixel] += pairColour[bin];
        coloured[pixel] += pairColoured[bin];
      }
    }
  }
  const float most = *std::max_element(count.begin(), count.end());
  const float scale = most > 0 ? 1.f / std::log1p(most) : 0.f;
  for (int y = 0; y < h; ++y)
  {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < w; ++x)
    {
      const std::size_t pixel = static_cast<std::size_t>(y) * w + static_cast<std::size_t>(x);
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

// The widget draws and takes the mouse; the view's Impl does the rest.
class Canvas : public QWidget
{
public:
  std::function<void(QPainter&)> paint;
  std::function<void(QMouseEvent&)> press;
  std::function<void(QMouseEvent&)> move;
  std::function<void(QMouseEvent&)> release;

protected:
  void paintEvent(QPaintEvent*) override
  {
    QPainter painter(this);
    if (paint)
      paint(painter);
  }
  void mousePressEvent(QMouseEvent* event) override
  {
    if (press)
      press(*event);
  }
  void mouseMoveEvent(QMouseEvent* event) override
  {
    if (move)
      move(*event);
  }
  void mouseReleaseEvent(QMouseEvent* event) override
  {
    if (release)
      release(*event);
  }
};

} // namespace

struct ParallelCoordinatesView::Impl
{
  std::shared_ptr<const Project> project;
  DataPipelineManager& pipeline;
  boost::shared_ptr<SelectionModelInterface> selection;
  QPointer<Canvas> canvas;
  boost::shared_ptr<plexa::UndoablePropertyProxy<VariableList>> axesProperty;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> color;
  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> mode;
  // The owner of the brushes' undo steps.
  DeleteSignaler undoOwner;
  const std::array<QRgb, 256> colours = palette();

  // The shown cases, one row each.
  std::vector<Axis> axes;
  std::vector<unsigned long long> caseIds;
  std::vector<float> colour;
  CaseRowIndex rowOfCase;
  std::vector<int> selectedRows;

  QImage linesLayer;
  bool linesLayerValid = false;
  // A large selection's density, drawn again when the selection or the size changes.
  QImage selectedLayer;
  int brushedAxis = -1;
  double brushFrom = 0;
  double brushTo = 0;
  QPoint pressedAt;
  QPoint clickedAt;

  explicit Impl(DataPipelineManager& pipeline)
    : pipeline(pipeline)
  {
  }

  Layout layout() const { return Layout(canvas->size(), static_cast<int>(axes.size())); }

  bool density() const
  {
    return mode->value() == DensityLines ||
           (mode->value() == AutomaticLines && caseIds.size() > densityThreshold);
  }

  std::unique_ptr<ChangesWhileHidden> changes;

  // Reads the shown cases of the chosen variables from the pipeline's output.
  void reload()
  {
    pipeline.output()->Update();
    vtkTable* table = pipeline.output()->GetOutput();
    const vtkIdType rows = table->GetNumberOfRows();
    axes.clear();
    for (const auto& variable : axesProperty->value())
    {
      const Variable v = variable.lock();
      if (v.isNull())
        continue;
      Axis axis;
      axis.variable = variable;
      axis.name = QString::fromStdString(v.name());
      axis.position.assign(static_cast<std::size_t>(rows), missing);
      vtkAbstractArray* column = table->GetColumnByName(v.name().c_str());
      if (auto* texts = vtkStringArray::SafeDownCast(column))
      {
        // Categories from the whole study, so that they stay in place as filters change.
        axis.text = true;
        if (const auto* all = project->textValues(v))
        {
          axis.categories = *all;
          std::sort(axis.categories.begin(), axis.categories.end());
          axis.categories.erase(std::unique(axis.categories.begin(), axis.categories.end()),
                                axis.categories.end());
        }
        const double steps = std::max<double>(static_cast<double>(axis.categories.size()) - 1, 1);
        for (vtkIdType row = 0; row < rows; ++row)
        {
          const auto found =
            std::lower_bound(axis.categories.begin(), axis.categories.end(), texts->GetValue(row));
          if (found != axis.categories.end() && *found == texts->GetValue(row))
            axis.position[static_cast<std::size_t>(row)] =
              axis.categories.size() == 1
                ? 0.5f
                : static_cast<float>(static_cast<double>(found - axis.categories.begin()) / steps);
        }
      }
      else if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
      {
        std::tie(axis.min, axis.max) = v.range();
        const double span = axis.max - axis.min;
        for (vtkIdType row = 0; row < rows; ++row)
        {
          const double value = numbers->GetValue(row);
          if (!std::isnan(value))
            axis.position[static_cast<std::size_t>(row)] =
              span > 0 ? static_cast<float>((value - axis.min) / span) : 0.5f;
        }
      }
      axes.push_back(std::move(axis));
    }

    caseIds = caseIdsOf(*table);
    rowOfCase.assign(caseIds);

    colour.assign(caseIds.size(), missing);
    const Variable colourVariable = color->value().lock();
    if (!colourVariable.isNull())
    {
      if (auto* numbers =
            vtkDoubleArray::SafeDownCast(table->GetColumnByName(colourVariable.name().c_str())))
      {
        const auto range = colourVariable.range();
        const double span = range.second - range.first;
        for (vtkIdType row = 0; row < rows; ++row)
        {
          const double value = numbers->GetValue(row);
          if (!std::isnan(value))
            colour[static_cast<std::size_t>(row)] =
              span > 0 ? static_cast<float>((value - range.first) / span) : 0.5f;
        }
      }
    }
    linesLayerValid = false;
    findSelectedRows(selection->getSelections());
  }

  void findSelectedRows(const std::set<unsigned long long>& ids)
  {
    selectedRows = rowOfCase.rowsOf(ids);
    selectedLayer = QImage();
  }

  QRgb colourOf(std::size_t row) const
  {
    const float t = colour[row];
    return std::isnan(t)
             ? qRgb(110, 110, 110)
             : colours[static_cast<std::size_t>(std::clamp(static_cast<int>(t * 255), 0, 255))];
  }

  QPolygonF lineOf(std::size_t row, const Layout& at) const
  {
    QPolygonF line;
    for (std::size_t a = 0; a < axes.size(); ++a)
      line << QPointF(at.x(static_cast<int>(a)), at.y(axes[a].position[row]));
    return line;
  }

  void drawLines(QPainter& painter, const Layout& at)
  {
    if (!linesLayerValid || linesLayer.size() != canvas->size())
    {
      if (density())
      {
        linesLayer = densityImage(axes, &colour, nullptr, at, colours, qRgb(110, 110, 110));
      }
      else
      {
        linesLayer = QImage(canvas->size(), QImage::Format_ARGB32_Premultiplied);
        linesLayer.fill(Qt::transparent);
        QPainter layer(&linesLayer);
        // Many lines thin and plain: a smooth or wide pen is stroked, at many times the cost.
        const bool few = caseIds.size() < 2000;
        layer.setRenderHint(QPainter::Antialiasing, few);
        const int alpha = caseIds.size() < 500 ? 230 : 110;
        for (std::size_t row = 0; row < caseIds.size(); ++row)
        {
          QColor c(colourOf(row));
          c.setAlpha(alpha);
          layer.setPen(QPen(c, few ? 1.2 : 0));
          layer.drawPolyline(lineOf(row, at));
        }
      }
      linesLayerValid = true;
    }
    if (axes.size() == 1)
    {
      drawTicks(painter, at);
      return;
    }
    // A selection stands out against faded lines.
    painter.setOpacity(selectedRows.empty() ? 1.0 : 0.3);
    painter.drawImage(0, 0, linesLayer);
    painter.setOpacity(1.0);
    if (static_cast<int>(selectedRows.size()) > selectedLinesDrawn)
    {
      if (selectedLayer.size() != canvas->size() && selectedRows.size() == caseIds.size())
      {
        // Every line selected: the lines themselves, darkened, without binning them again.
        selectedLayer = linesLayer;
        QPainter tint(&selectedLayer);
        tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
        tint.fillRect(selectedLayer.rect(), QColor(20, 20, 20));
      }
      if (selectedLayer.size() != canvas->size())
        selectedLayer = densityImage(axes, nullptr, &selectedRows, at, colours, qRgb(20, 20, 20));
      painter.drawImage(0, 0, selectedLayer);
      return;
    }
    if (static_cast<int>(selectedRows.size()) > selectedLinesOutlined)
    {
      painter.setRenderHint(QPainter::Antialiasing, false);
      painter.setPen(QPen(QColor(20, 20, 20), 0));
      for (int row : selectedRows)
        painter.drawPolyline(lineOf(static_cast<std::size_t>(row), at));
      return;
    }
    painter.setRenderHint(QPainter::Antialiasing, true);
    for (int row : selectedRows)
    {
      const QPolygonF line = lineOf(static_cast<std::size_t>(row), at);
      painter.setPen(QPen(QColor(20, 20, 20), 4.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
      painter.drawPolyline(line);
      painter.setPen(QPen(QColor(colourOf(static_cast<std::size_t>(row))), 2.0));
      painter.drawPolyline(line);
    }
  }

  // One axis joins nothing: each case is a short mark across it, the selected ones dark.
  void drawTicks(QPainter& painter, const Layout& at)
  {
    const double x = at.x(0);
    for (std::size_t row = 0; row < caseIds.size(); ++row)
    {
      painter.setPen(QPen(QColor(colourOf(row)), 1.5));
      const double y = at.y(axes.front().position[row]);
      painter.drawLine(QPointF(x - 10, y), QPointF(x + 10, y));
    }
    painter.setPen(QPen(QColor(20, 20, 20), 3));
    for (int row : selectedRows)
    {
      const double y = at.y(axes.front().position[static_cast<std::size_t>(row)]);
      painter.drawLine(QPointF(x - 14, y), QPointF(x + 14, y));
    }
  }

  void drawAxes(QPainter& painter, const Layout& at)
  {
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(QRectF(0, at.missingY - 8, at.width, 16), QColor(0, 0, 0, 18));
    painter.setPen(QColor(90, 90, 90));
    painter.drawText(
      QRectF(4, at.missingY - 8, 56, 16), Qt::AlignLeft | Qt::AlignVCenter, "missing");
    const Variable colourVariable = color->value().lock();
    if (!colourVariable.isNull())
    {
      // Right of the "missing" label, shortened rather than cut when the view is narrow.
      const QRectF caption(64, at.missingY + 8, std::max(at.width - 70.0, 0.0), 18);
      painter.drawText(
        caption,
        Qt::AlignRight | Qt::AlignVCenter,
        painter.fontMetrics().elidedText(
          "colour: " + QString::fromStdString(colourVariable.name()) + " (blue low, red high)",
          Qt::ElideMiddle,
          static_cast<int>(caption.width())));
    }
    QFont bold = painter.font();
    bold.setBold(true);
    const QFont plain = painter.font();
    const double slot = at.count <= 1 ? at.width : (at.right - at.left) / (at.count - 1);
    for (std::size_t a = 0; a < axes.size(); ++a)
    {
      const Axis& axis = axes[a];
      const double x = at.x(static_cast<int>(a));
      painter.setPen(QPen(QColor(60, 60, 60), 1.5));
      painter.drawLine(QPointF(x, at.top), QPointF(x, at.bottom));
      const FilterState filter = filterState(pipeline, axis.variable);
      if (filter.exists && filter.enabled && !axis.text)
      {
        const double span = axis.max - axis.min;
        const auto y = [&](double value)
        { return at.y(static_cast<float>(span > 0 ? (value - axis.min) / span : 0.5)); };
        painter.fillRect(QRectF(QPointF(x - 7, y(std::min(filter.max, axis.max))),
                                QPointF(x + 7, y(std::max(filter.min, axis.min)))),
                         QColor(30, 30, 30, 70));
      }
      if (brushedAxis == static_cast<int>(a))
        painter.fillRect(QRectF(QPointF(x - 7, std::min(brushFrom, brushTo)),
                                QPointF(x + 7, std::max(brushFrom, brushTo))),
                         QColor(30, 90, 200, 90));
      painter.setPen(QColor(20, 20, 20));
      painter.setFont(bold);
      const QRectF nameBox(x - slot / 2, 4, slot, 18);
      painter.drawText(
        nameBox,
        Qt::AlignCenter,
        painter.fontMetrics().elidedText(axis.name, Qt::ElideRight, static_cast<int>(slot) - 4));
      painter.setFont(plain);
      if (axis.text)
      {
        // At most about one label per 14 pixels.
        const std::size_t n = axis.categories.size();
        const std::size_t every =
          std::max<std::size_t>(1,
                                static_cast<std::size_t>(static_cast<double>(n) * 14 /
                                                         std::max(at.bottom - at.top, 1.0)));
        for (std::size_t i = 0; i < n; i += every)
        {
          const double y =
            at.y(n == 1 ? 0.5f
                        : static_cast<float>(static_cast<double>(i) / static_cast<double>(n - 1)));
          painter.drawText(QRectF(x + 4, y - 7, slot / 2, 14),
                           Qt::AlignLeft | Qt::AlignVCenter,
                           QString::fromStdString(axis.categories[i]));
        }
      }
      else
      {
        painter.drawText(QRectF(x - slot / 2, at.top - 17, slot, 14),
                         Qt::AlignCenter,
                         QString::number(axis.max, 'g', 5));
        painter.drawText(QRectF(x - slot / 2, at.bottom + 2, slot, 14),
                         Qt::AlignCenter,
                         QString::number(axis.min, 'g', 5));
      }
    }
  }

  void paint(QPainter& painter)
  {
    changes->catchUp();
    painter.fillRect(canvas->rect(), Qt::white);
    if (axes.empty())
    {
      painter.drawText(canvas->rect(), Qt::AlignCenter, "Choose the variables to show as axes");
      return;
    }
    const Layout at = layout();
    drawLines(painter, at);
    drawAxes(painter, at);
  }

  // The numeric axis within reach of a point, or -1.
  int axisAt(const QPoint& point) const
  {
    const Layout at = layout();
    for (std::size_t a = 0; a < axes.size(); ++a)
      if (!axes[a].text && std::abs(point.x() - at.x(static_cast<int>(a))) <= 9 &&
          point.y() >= at.top - 6 && point.y() <= at.bottom + 6)
        return static_cast<int>(a);
    return -1;
  }

  // Ends a drag along an axis: its range becomes the variable's filter. Without a drag, the
  // click takes the axis's filter away; on an axis without one it is a click like elsewhere,
  // and the result says so.
  bool endBrush(const QPoint& point)
  {
    const Axis& axis = axes[static_cast<std::size_t>(brushedAxis)];
    brushedAxis = -1;
    brushTo = point.y();
    const bool dragged = std::abs(brushTo - brushFrom) >= 3;
    if (!dragged && !filterState(pipeline, axis.variable).exists)
    {
      canvas->update();
      return false;
    }
    FilterState after;
    if (dragged)
    {
      const Layout at = layout();
      const double span = axis.max - axis.min;
      const double a = axis.min + at.position(brushFrom) * span;
      const double b = axis.min + at.position(brushTo) * span;
      after = { true, std::min(a, b), std::max(a, b), true };
    }
    // The pipeline's change redraws the view.
    changeFilter(pipeline, axis.variable, after, undoOwner);
    canvas->update();
    return true;
  }

  // The shown case whose line passes nearest a point, within 5 pixels.
  int rowAt(const QPoint& point) const
  {
    if (axes.empty())
      return -1;
    const Layout at = layout();
    // The neighbouring axes around the point, or the nearest axis outside them.
    int from = 0;
    while (from + 1 < static_cast<int>(axes.size()) && at.x(from + 1) < point.x())
      ++from;
    const int to = std::min(from + 1, static_cast<int>(axes.size()) - 1);
    const double x0 = at.x(from);
    const double x1 = at.x(to);
    const double t = x1 > x0 ? std::clamp((point.x() - x0) / (x1 - x0), 0.0, 1.0) : 0.0;
    const auto& a = axes[static_cast<std::size_t>(from)].position;
    const auto& b = axes[static_cast<std::size_t>(to)].position;
    int best = -1;
    double nearest = 5.0;
    for (std::size_t row = 0; row < caseIds.size(); ++row)
    {
      const double y = at.y(a[row]) * (1 - t) + at.y(b[row]) * t;
      if (std::abs(y - point.y()) <= nearest)
      {
        nearest = std::abs(y - point.y());
        best = static_cast<int>(row);
      }
    }
    return best;
  }
};

ParallelCoordinatesView::ParallelCoordinatesView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("ParallelCoordinates"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  d->project = context.project;
  d->selection = context.selection;
  d->canvas = new Canvas();
  setWidget(d->canvas);
  d->canvas->setObjectName("parallelCoordinates");
  d->canvas->setMinimumSize(200, 160);
  d->canvas->setMouseTracking(false);

  // The varying variables as the axes; the lines coloured as the scatter plot's points.
  const VariableList firstAxes = defaults::parallelAxes(*d->project, 8);
  const WeakPtr<Variable> firstColour = defaults::scatter(*d->project).colour;
  d->axesProperty = boost::make_shared<plexa::UndoablePropertyProxy<VariableList>>(
    "Axes", boost::make_shared<plexa::Property<VariableList>>(firstAxes));
  d->color = boost::make_shared<plexa::UndoablePropertyProxy<WeakPtr<Variable>>>(
    "Line Color Variable", boost::make_shared<plexa::Property<WeakPtr<Variable>>>(firstColour));
  using Bounded = plexa::BoundedValueValidator<short>;
  d->mode = boost::make_shared<plexa::UndoablePropertyProxy<short>>(
    "Lines",
    boost::make_shared<plexa::Property<short>>(
      AutomaticLines,
      boost::make_shared<Bounded>(
        AutomaticLines, Bounded::Inclusive, DensityLines, Bounded::Inclusive)));

  Impl* impl = d.get();
  d->canvas->paint = [impl](QPainter& painter) { impl->paint(painter); };
  d->canvas->press = [impl](QMouseEvent& event)
  {
    impl->pressedAt = event.pos();
    if (event.button() != Qt::LeftButton)
      return;
    impl->brushedAxis = impl->axisAt(event.pos());
    impl->brushFrom = impl->brushTo = event.pos().y();
  };
  d->canvas->move = [impl](QMouseEvent& event)
  {
    if (impl->brushedAxis < 0)
      return;
    impl->brushTo = event.pos().y();
    impl->canvas->update();
  };
  d->canvas->release = [this, impl](QMouseEvent& event)
  {
    if (impl->brushedAxis >= 0 && impl->endBrush(event.pos()))
      return;
    if ((event.pos() - impl->pressedAt).manhattanLength() >= 3 || event.button() != Qt::LeftButton)
      return;
    impl->clickedAt = event.pos();
    if (event.modifiers() & Qt::ControlModifier)
    {
      const int row = impl->rowAt(event.pos());
      if (row < 0)
        return;
      auto ids = impl->selection->getSelections();
      const unsigned long long id = impl->caseIds[static_cast<std::size_t>(row)];
      if (!ids.erase(id))
        ids.insert(id);
      impl->selection->setSelection(ids);
      return;
    }
    adjustSelectionForMouseClickAtPoint();
  };

  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->canvas,
    *context.selection,
    ChangesWhileHidden::Steps{ [impl] { impl->reload(); },
                               [impl](const auto& ids) { impl->findSelectedRows(ids); },
                               [impl] { impl->canvas->update(); } });
  const auto reload = [impl] { impl->changes->changed(true); };
  connections().add(context.pipeline->connectSignalPipelineChanged(reload));
  connections().add(d->axesProperty->connectSignalPropertyChanged(reload));
  connections().add(d->color->connectSignalPropertyChanged(reload));
  connections().add(d->mode->connectSignalPropertyChanged(
    [impl]
    {
      impl->linesLayerValid = false;
      impl->canvas->update();
    }));
  connections().add(context.selection->connectSignalSelectionChanged(
    [impl](const std::set<unsigned long long>& ids) { impl->changes->selectionChanged(ids); }));

  saveSetting(
    boost::make_shared<VariableListSerializer>("Axes", d->axesProperty, d->project->variables()));
  saveVariableSetting("ColorVariable", d->color, *d->project);
  saveSetting(boost::make_shared<GenericSerializer<short>>("Lines", d->mode), "0, 1 or 2");
}

ParallelCoordinatesView::~ParallelCoordinatesView() = default;

std::vector<SettingsSection> ParallelCoordinatesView::settingsSections(PropertyEditors& editors)
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  // The chosen axes first, in their order, then the others; drag an entry to reorder.
  form->addRow("Axes", editors.variableList(d->axesProperty, true));
  form->addRow("Colour", editors.variableChooser(d->color, true, "(none)"));
  form->addRow("Lines",
               editors.enumChooser<short>(d->mode,
                                          { { "Automatic", AutomaticLines },
                                            { "One line per case", SingleLines },
                                            { "Density", DensityLines } }));
  return { { "Parallel coordinates", box } };
}

std::string ParallelCoordinatesView::selectionSummary() const
{
  return std::to_string(highlightedLines()) + " highlighted lines";
}

void ParallelCoordinatesView::suspendParts() {}

void ParallelCoordinatesView::resumeParts()
{
  d->changes->changed(true);
}

void ParallelCoordinatesView::refresh()
{
  d->canvas->update();
}

boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>>
ParallelCoordinatesView::axes() const
{
  return d->axesProperty;
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>>
ParallelCoordinatesView::colorVariable() const
{
  return d->color;
}

boost::shared_ptr<plexa::PropertyAbstract<short>> ParallelCoordinatesView::linesMode() const
{
  return d->mode;
}

bool ParallelCoordinatesView::drawsDensity() const
{
  d->changes->catchUp();
  return d->density();
}

QPoint ParallelCoordinatesView::pointOnAxis(int axis, double value) const
{
  d->changes->catchUp();
  const Layout at = d->layout();
  const Axis& a = d->axes.at(static_cast<std::size_t>(axis));
  double position = std::numeric_limits<double>::quiet_NaN();
  if (a.text && !std::isnan(value))
    position = a.categories.size() <= 1 ? 0.5 : value / double(a.categories.size() - 1);
  else if (!std::isnan(value))
    position = a.max > a.min ? (value - a.min) / (a.max - a.min) : 0.5;
  return QPointF(at.x(axis), at.y(static_cast<float>(position))).toPoint();
}

int ParallelCoordinatesView::highlightedLines() const
{
  d->changes->catchUp();
  return static_cast<int>(d->selectedRows.size());
}

bool ParallelCoordinatesView::caseIDAtPoint(unsigned long long& caseID)
{
  const int row = d->rowAt(d->clickedAt);
  if (row < 0)
    return false;
  caseID = d->caseIds[static_cast<std::size_t>(row)];
  return true;
}

} // namespace explorer
