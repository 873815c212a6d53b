#include "views/line/LinePlotModel.h"

#include "FileLocator.h"
#include "StudyFiles.h"
#include "views/ColourScale.h"
#include "views/line/LineGroups.h"

#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "datamanagement/SeriesReader.h"

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace explorer
{

namespace
{

std::string countText(std::size_t count)
{
  std::string digits = std::to_string(count);
  for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3)
    digits.insert(static_cast<std::size_t>(at), ",");
  return digits;
}

// The sorted distinct texts of a text variable over the whole study, so that categories keep
// their place as filters change.
std::vector<std::string> categoriesOf(const Project& project, const Variable& variable)
{
  std::vector<std::string> categories;
  if (const auto* all = project.textValues(variable))
    categories = *all;
  std::sort(categories.begin(), categories.end());
  categories.erase(std::unique(categories.begin(), categories.end()), categories.end());
  return categories;
}

// A column of the shown cases as numbers: a text column as its categories' indices.
std::vector<double> numbersOf(vtkTable& shown,
                              const Project& project,
                              const Variable& variable,
                              std::vector<std::string>* categories)
{
  const auto rows = static_cast<std::size_t>(shown.GetNumberOfRows());
  std::vector<double> values(rows, NAN);
  if (variable.isNull())
    return values;
  vtkAbstractArray* column = shown.GetColumnByName(variable.name().c_str());
  if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
    std::copy_n(numbers->GetPointer(0), rows, values.begin());
  else if (auto* texts = vtkStringArray::SafeDownCast(column))
  {
    std::vector<std::string> names = categoriesOf(project, variable);
    for (std::size_t row = 0; row < rows; ++row)
    {
      const auto found =
        std::lower_bound(names.begin(), names.end(), texts->GetValue(static_cast<vtkIdType>(row)));
      if (found != names.end() && *found == texts->GetValue(static_cast<vtkIdType>(row)))
        values[row] = static_cast<double>(found - names.begin());
    }
    if (categories)
      *categories = std::move(names);
  }
  return values;
}

} // namespace

LinePlotModel::LinePlotModel(std::shared_ptr<const Project> project,
                             std::shared_ptr<const FileLocator> files)
  : project(std::move(project))
  , files(std::move(files))
{
}

LinePlotModel::~LinePlotModel() = default;

void LinePlotModel::reload(vtkTable& shown,
                           const LineSettings& chosen,
                           QObject* context,
                           std::function<void()> arrived)
{
  settings = chosen;
  // What follows the shown cases alone is read again only when they change.
  if (shown.GetMTime() != shownTime)
  {
    shownTime = shown.GetMTime();
    rowOfCase.assign(CaseIds(shown));
    orderedX.clear();
  }
  curveLook = {};
  seriesProblems.clear();
  waiting = 0;
  if (settings.mode == LineMode::Response)
    buildResponse(shown);
  else
    readSeries(shown, context, std::move(arrived));
}

void LinePlotModel::buildResponse(vtkTable& shown)
{
  const Variable xVariable = settings.x.lock();
  const Variable yVariable = settings.y.lock();
  const std::string xName = xVariable.isNull() ? std::string() : xVariable.name();
  if (orderedX != xName || xName.empty())
  {
    xCategories.clear();
    auto* numbers = xVariable.isNull()
                      ? nullptr
                      : vtkDoubleArray::SafeDownCast(shown.GetColumnByName(xName.c_str()));
    const std::size_t rows = caseIds().size();
    xInIntervals = false;
    if (numbers && fewValues(numbers->GetPointer(0), rows, xIntervalsAtMost))
    {
      numbers->Register(nullptr);
      xOwner = std::shared_ptr<const void>(
        numbers, [](vtkDoubleArray* array) { array->UnRegister(nullptr); });
      xValues = Values(numbers->GetPointer(0), rows);
    }
    else
    {
      auto values = std::make_shared<std::vector<double>>();
      if (xVariable.isNull())
      {
        // Without X, the cases in their order, as the scatter plot shows them.
        values->resize(rows);
        std::iota(values->begin(), values->end(), 1.0);
      }
      else
      {
        *values = numbersOf(shown, *project, xVariable, &xCategories);
        xInIntervals = xCategories.empty() && intoIntervals(*values, xIntervalsAtMost);
      }
      xValues = Values(*values);
      xOwner = std::move(values);
    }
    xOrder = orderByX(xValues);
    orderedX = xName;
  }
  curveLook.x.categories = xCategories;
  // A numeric Y is read where it lies.
  auto* yNumbers =
    yVariable.isNull()
      ? nullptr
      : vtkDoubleArray::SafeDownCast(shown.GetColumnByName(yVariable.name().c_str()));
  const std::vector<double> yCopy =
    yNumbers ? std::vector<double>() : numbersOf(shown, *project, yVariable, nullptr);
  const Values ys = yNumbers ? Values(yNumbers->GetPointer(0), caseIds().size()) : Values(yCopy);
  std::vector<vtkAbstractArray*> columns;
  for (const auto& handle : settings.linesBy)
  {
    const Variable variable = handle.lock();
    if (!variable.isNull() && columns.size() < 2)
      if (auto* column = shown.GetColumnByName(variable.name().c_str()))
      {
        columns.push_back(column);
        curveLook.legendTitle += (curveLook.legendTitle.empty() ? "" : ", ") + variable.name();
      }
  }
  const LineGroups groups = lineGroups(columns, caseIds().size());
  shownCurves =
    responseCurves(xValues, ys, groups, settings.aggregate, settings.band, settings.log, &xOrder);
  curveLook.x.title =
    xVariable.isNull() ? "case order" : xVariable.name() + (xInIntervals ? " (in intervals)" : "");
  curveLook.y.title = yVariable.isNull() ? "" : yVariable.name();
  curveLook.legend = groups.labels.size() > 1;
  for (const Curve& curve : shownCurves.curves)
  {
    curveLook.colours.push_back(groupColour(curve.group));
    curveLook.scale.push_back(NAN);
  }
}

void LinePlotModel::readSeries(vtkTable& shown, QObject* context, std::function<void()> arrived)
{
  colourOfRow.assign(caseIds().size(), NAN);
  const Variable colourVariable = settings.colour.lock();
  if (!colourVariable.isNull())
    if (auto* numbers =
          vtkDoubleArray::SafeDownCast(shown.GetColumnByName(colourVariable.name().c_str())))
    {
      const auto [low, high] = colourVariable.range();
      for (std::size_t row = 0; row < caseIds().size(); ++row)
      {
        const double value = numbers->GetValue(static_cast<vtkIdType>(row));
        if (!std::isnan(value))
          colourOfRow[row] = high > low ? static_cast<float>((value - low) / (high - low)) : 0.5f;
      }
    }
  // Without a file of the tag in the study no case has a series: no record to ask for per case
  // (ten million at the largest), no list of empty paths.
  seriesPaths.clear();
  const std::vector<std::string>& tags = project->tags();
  if (std::binary_search(tags.begin(), tags.end(), settings.seriesTag))
    seriesPaths.assign(caseIds().size(), std::string());
  for (std::size_t row = 0; row < seriesPaths.size(); ++row)
  {
    const Record record = project->record(caseIds()[row]).lock();
    if (record.isNull())
      continue;
    for (const auto& handle : record.auxFiles())
    {
      const AuxFile file = handle.lock();
      if (file.hasTag(settings.seriesTag) && studyfiles::isSeries(file.filePath()))
      {
        seriesPaths[row] = files ? files->locate(file.filePath()) : file.filePath();
        break;
      }
    }
  }
  series.request(seriesPaths, context, std::move(arrived));
  shownCurves = {};
  seriesTaken.assign(caseIds().size(), 0);
  seriesXName = settings.seriesX;
  seriesYName = settings.seriesY;
  takeInSeries();
}

void LinePlotModel::takeInSeries()
{
  if (settings.mode != LineMode::Series)
    return;
  const std::array<QRgb, 256>& colours = colourScale();
  waiting = 0;
  for (std::size_t row = 0; row < seriesPaths.size(); ++row)
  {
    if (seriesPaths[row].empty() || seriesTaken[row])
      continue;
    const SeriesCache::Entry* entry = series.find(seriesPaths[row]);
    if (!entry)
    {
      ++waiting;
      continue;
    }
    seriesTaken[row] = 1;
    const std::string caseName = "case " + std::to_string(caseIds()[row]);
    if (!entry->table)
    {
      seriesProblems.push_back(caseName + ": " + entry->error);
      continue;
    }
    const SeriesTable& table = *entry->table;
    // Without a choice, the first column is X and the second Y.
    if (seriesXName.empty() && !table.names.empty())
      seriesXName = table.names.front();
    if (seriesYName.empty() && !table.names.empty())
      seriesYName = table.names.size() > 1 ? table.names[1] : table.names.front();
    const auto* xs = table.column(seriesXName);
    const auto* ys = table.column(seriesYName);
    if (!xs || !ys)
    {
      seriesProblems.push_back(caseName + ": " + seriesPaths[row] + " has no column \"" +
                               (xs ? seriesYName : seriesXName) + "\"");
      continue;
    }
    addSeriesCurve(
      shownCurves, static_cast<std::uint32_t>(row), caseName, *xs, *ys, settings.log, entry->table);
    const float tone = colourOfRow[row];
    curveLook.colours.push_back(
      std::isnan(tone)
        ? 0xff4682b4
        : colours[static_cast<std::size_t>(std::clamp(static_cast<int>(tone * 255), 0, 255))]);
    curveLook.scale.push_back(tone);
  }
  curveLook.x.title = seriesXName;
  curveLook.y.title = seriesYName;
}

void LinePlotModel::select(const std::vector<unsigned long long>& caseIds)
{
  selected.assign(rowOfCase.caseIds().size(), 0);
  const std::vector<int> rows = rowOfCase.rowsOf(caseIds);
  for (int row : rows)
    selected[static_cast<std::size_t>(row)] = 1;
  selectedCases = rows.size();
}

std::vector<std::string> LinePlotModel::notes(bool density) const
{
  std::vector<std::string> lines;
  const bool ofSeries = settings.mode == LineMode::Series;
  const auto what = [ofSeries](std::size_t count)
  {
    const std::string unit = ofSeries ? " sample" : " case";
    return countText(count) + unit + (count == 1 ? "" : "s");
  };
  if (shownCurves.curves.empty() && waiting == 0 && seriesProblems.empty())
    lines.emplace_back(ofSeries && settings.seriesTag.empty()
                         ? "Choose the tag of the runs' series files"
                         : "Nothing to plot");
  if (density)
    lines.push_back(countText(shownCurves.curves.size()) +
                    (shownCurves.curves.size() == 1 ? " curve" : " curves") + ", drawn as density");
  if (shownCurves.missing > 0)
    lines.push_back(what(shownCurves.missing) + " without a value, left out");
  if (shownCurves.notPositive > 0)
    lines.push_back(what(shownCurves.notPositive) +
                    " at or below zero on a logarithmic axis, left out");
  if (waiting > 0)
    lines.push_back("Reading series: " + countText(waiting) + " to go");
  if (!seriesProblems.empty())
  {
    lines.push_back(countText(seriesProblems.size()) + " series could not be read:");
    for (std::size_t i = 0; i < std::min<std::size_t>(seriesProblems.size(), 3); ++i)
      lines.push_back(seriesProblems[i]);
  }
  return lines;
}

std::vector<std::string> LinePlotModel::seriesColumns()
{
  for (const auto& path : seriesPaths)
  {
    const SeriesCache::Entry* entry = path.empty() ? nullptr : series.find(path);
    if (entry && entry->table)
      return entry->table->names;
  }
  return {};
}

} // namespace explorer
