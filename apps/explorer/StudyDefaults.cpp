#include "StudyDefaults.h"

#include "datamanagement/Project.h"

#include <algorithm>

namespace explorer::defaults
{

namespace
{

bool contains(const std::vector<WeakPtr<Variable>>& list, const WeakPtr<Variable>& variable)
{
  return std::find(list.begin(), list.end(), variable) != list.end();
}

// The first of the candidates, in order, that is not among `taken`.
WeakPtr<Variable> firstNotIn(const std::vector<WeakPtr<Variable>>& candidates,
                             const std::vector<WeakPtr<Variable>>& taken)
{
  for (const auto& candidate : candidates)
    if (!contains(taken, candidate))
      return candidate;
  return {};
}

// The varying numbers split into inputs and outputs.
void inputsAndOutputs(const Project& project,
                      std::vector<WeakPtr<Variable>>& inputs,
                      std::vector<WeakPtr<Variable>>& outputs)
{
  for (const auto& handle : project.variables())
  {
    const Variable variable = handle.lock();
    if (variable.nature() == Variable::Text || !varies(project, variable))
      continue;
    // A study that says what its variables are is taken at its word; otherwise swept values
    // (few, repeated) are inputs and the others results.
    const bool input =
      variable.role() == Variable::Input ||
      (variable.role() == Variable::Unknown && variable.nature() == Variable::Discrete);
    (input ? inputs : outputs).push_back(handle);
  }
}

std::vector<WeakPtr<Variable>> joined(std::vector<WeakPtr<Variable>> first,
                                      const std::vector<WeakPtr<Variable>>& second)
{
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

} // namespace

bool varies(const Project& project, const Variable& variable)
{
  if (const auto* texts = project.textValues(variable))
  {
    for (const std::string& text : *texts)
      if (text != texts->front())
        return true;
    return false;
  }
  const auto range = variable.range();
  return range.first < range.second;
}

std::vector<WeakPtr<Variable>> varyingNumbers(const Project& project)
{
  std::vector<WeakPtr<Variable>> inputs;
  std::vector<WeakPtr<Variable>> outputs;
  inputsAndOutputs(project, inputs, outputs);
  return joined(inputs, outputs);
}

ScatterChoice scatter(const Project& project)
{
  std::vector<WeakPtr<Variable>> inputs;
  std::vector<WeakPtr<Variable>> outputs;
  inputsAndOutputs(project, inputs, outputs);
  if (inputs.size() + outputs.size() == 1)
    return { {}, inputs.empty() ? outputs.front() : inputs.front(), {} };
  ScatterChoice choice;
  choice.x = firstNotIn(joined(inputs, outputs), {});
  choice.y = firstNotIn(joined(outputs, inputs), { choice.x });
  choice.colour = firstNotIn(joined(outputs, inputs), { choice.x, choice.y });
  return choice;
}

std::array<WeakPtr<Variable>, 4> scatter3D(const Project& project)
{
  std::vector<WeakPtr<Variable>> inputs;
  std::vector<WeakPtr<Variable>> outputs;
  inputsAndOutputs(project, inputs, outputs);
  const auto across = joined(inputs, outputs);
  const auto up = joined(outputs, inputs);
  std::array<WeakPtr<Variable>, 4> choice;
  std::vector<WeakPtr<Variable>> taken;
  const std::vector<WeakPtr<Variable>>* order[4] = { &across, &across, &up, &up };
  for (std::size_t i = 0; i < 4; ++i)
  {
    choice[i] = firstNotIn(*order[i], taken);
    // Fewer variables than axes: the axes repeat them rather than stay empty; the colour does not.
    if (choice[i].lock().isNull() && i < 3 && !across.empty())
      choice[i] = across[i % across.size()];
    taken.push_back(choice[i]);
  }
  return choice;
}

MatrixChoice matrix(const Project& project,
                    const WeakPtr<Variable>& column,
                    const WeakPtr<Variable>& row)
{
  std::vector<WeakPtr<Variable>> inputs;
  std::vector<WeakPtr<Variable>> outputs;
  inputsAndOutputs(project, inputs, outputs);
  // Without inputs, a small study is laid out along an output: a row of images in its order
  // says more than one cell holding them all. A large one would make a column per case.
  if (inputs.empty() && project.numberOfRecords() <= matrixCasesAlongAnOutput)
    inputs = outputs;
  const auto usable = [&](const WeakPtr<Variable>& variable)
  { return !variable.lock().isNull() && varies(project, variable.lock()); };
  MatrixChoice choice;
  choice.column = usable(column) ? column : firstNotIn(inputs, { row });
  choice.row = usable(row) && !(row == choice.column) ? row : firstNotIn(inputs, { choice.column });
  // Two outputs of many values each would make a sparse grid of cases squared cells.
  if (!(choice.row == row) && project.numberOfRecords() > 0 &&
      choice.row.lock().nature() == Variable::Continuous)
    choice.row = {};
  return choice;
}

std::vector<WeakPtr<Variable>> parallelAxes(const Project& project, std::size_t most)
{
  std::vector<WeakPtr<Variable>> inputs;
  std::vector<WeakPtr<Variable>> outputs;
  inputsAndOutputs(project, inputs, outputs);
  std::vector<WeakPtr<Variable>> axes = joined(inputs, outputs);
  for (const auto& handle : project.variables())
    if (handle.lock().nature() == Variable::Text && varies(project, handle.lock()))
      axes.push_back(handle);
  if (axes.empty())
    axes = project.variables();
  if (axes.size() > most)
    axes.resize(most);
  return axes;
}

} // namespace explorer::defaults
