#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <array>
#include <vector>

class Project;

/// What a fresh view shows of a study, chosen so that the first screen is full whatever the
/// study looks like: only variables whose values vary (a constant plots as a line and lays out
/// one cell), different variables for different roles, inputs across and outputs up. Inputs
/// are the variables the study says are (Variable::Input), or else swept (discrete) ones;
/// outputs those it says are, or else continuous ones. A choice that cannot be made is an empty
/// handle.
namespace explorer::defaults
{

/// Whether a variable takes more than one value among the cases (missing values aside).
bool varies(const Project& project, const Variable& variable);

/// The numeric variables that vary, inputs (discrete) first, then outputs (continuous), each in
/// the study's order.
std::vector<WeakPtr<Variable>> varyingNumbers(const Project& project);

/// The scatter plot's X, Y and colour: an output against an input, coloured by another output
/// (or input), three different varying variables where the study has them. A study of one
/// varying variable gets it as Y with X empty (the case order), and no colour.
struct ScatterChoice
{
  WeakPtr<Variable> x;
  WeakPtr<Variable> y;
  WeakPtr<Variable> colour;
};
ScatterChoice scatter(const Project& project);

/// The 3-D plot's X, Y, Z and colour: as the scatter plot, four different varying variables
/// where there are so many; repeats only where the study has fewer.
std::array<WeakPtr<Variable>, 4> scatter3D(const Project& project);

/// Up to this many cases, a study without inputs is laid out along its first output.
constexpr std::size_t matrixCasesAlongAnOutput = 500;

/// The image matrix's column and row variables: `column` and `row` (the library's choice) where
/// they vary, else varying inputs; a small study without inputs is laid out along its first
/// output, in columns, with one row. Never a constant.
struct MatrixChoice
{
  WeakPtr<Variable> column;
  WeakPtr<Variable> row;
};
MatrixChoice matrix(const Project& project,
                    const WeakPtr<Variable>& column,
                    const WeakPtr<Variable>& row);

/// The parallel coordinates' axes: the varying variables (inputs first, then outputs, then
/// texts), up to `most`; constants only when nothing varies.
std::vector<WeakPtr<Variable>> parallelAxes(const Project& project, std::size_t most);

} // namespace explorer::defaults
