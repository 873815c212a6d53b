#pragma once

#include "CaseRowIndex.h"

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

class Project;
class vtkTable;

namespace explorer
{

/// Places from 0 to 1 (on an axis, on the colour scale), one per shown case, each in two bytes:
/// ten million cases on eight axes would take 320 MB as floats. A place is kept to 1/16384 (a
/// hundredth of a pixel on the tallest screen); places outside -1 to 3 (a value beyond the
/// study's range) are kept at those ends, and NaN (no place) is kept.
class Places
{
public:
  /// `count` places, none of them placed.
  void assign(std::size_t count) { codes.assign(count, noCode); }
  /// `count` places, each to be set before it is read: where every place is set anyway (a linear
  /// axis), they are not first written as none.
  void allocate(std::size_t count)
  {
    codes.clear();
    codes.resize(count);
  }
  void set(std::size_t i, float place) { codes[i] = codeOf(place); }
  /// Places `first` to `last` (excluded) each at `placeOf(i)`, in a loop without branches that the
  /// compiler can run on several places at once.
  template<typename PlaceOf>
  void set(std::size_t first, std::size_t last, PlaceOf placeOf)
  {
    std::uint16_t* code = codes.data();
    for (std::size_t i = first; i < last; ++i)
      code[i] = codeOf(placeOf(i));
  }
  float operator[](std::size_t i) const { return placeOfCode(codes[i]); }
  std::size_t size() const { return codes.size(); }

  /// How a place is kept: the same place for the same code, whichever case it is of. A reader
  /// that maps every place the same way maps each of the 65,536 codes once (`placeOfCode`).
  std::uint16_t codeAt(std::size_t i) const { return codes[i]; }
  static constexpr std::size_t codeCount = 0x10000;
  static constexpr std::uint16_t noCode = 0xffff;
  static float placeOfCode(std::uint16_t code)
  {
    return code == noCode ? std::numeric_limits<float>::quiet_NaN()
                          : static_cast<float>(code) / steps - 1.0f;
  }
  /// The mean of places from the mean of their codes (a place is linear in its code).
  static float placeOfMeanCode(double code) { return static_cast<float>(code / steps - 1.0); }

private:
  // An allocator that leaves a new code unwritten (a vector would write each one as zero).
  template<typename T>
  struct Unwritten : std::allocator<T>
  {
    template<typename U>
    struct rebind
    {
      using other = Unwritten<U>;
    };
    Unwritten() = default;
    template<typename U>
    Unwritten(const Unwritten<U>&) noexcept
    {
    }
    template<typename U>
    void construct(U* place) noexcept
    {
      ::new (static_cast<void*>(place)) U;
    }
    template<typename U, typename... Arguments>
    void construct(U* place, Arguments&&... arguments)
    {
      ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
    }
  };

  static constexpr float steps = 16384.0f;
  // Rounded to the nearest step: a half step up, then floored by the conversion (no call to lround
  // per place); the ends keep what lies beyond them, NaN is no place. The bounds are applied so
  // that NaN comes out of them a number, converted without harm, then left for `noCode`.
  static std::uint16_t codeOf(float place)
  {
    const float code =
      std::min(float(noCode) - 0.5f, std::max(0.5f, (place + 1.0f) * steps + 0.5f));
    return place == place ? static_cast<std::uint16_t>(code) : noCode;
  }
  std::vector<std::uint16_t, Unwritten<std::uint16_t>> codes;
};

/// One axis of parallel coordinates: its variable, and where each shown case lies on it, from 0
/// (bottom) to 1 (top), NaN for a missing value. A text variable's categories (from the whole
/// study, sorted, so that they stay in place as filters change) are spread evenly.
/// A numeric axis may be logarithmic: its range is then that of the values above zero, and the
/// values at or below zero sit with the missing ones, counted.
struct ParallelAxis
{
  WeakPtr<Variable> variable;
  std::string name;
  bool text = false;
  bool log = false;
  double min = 0;
  double max = 1;
  std::vector<std::string> categories;
  Places position;
  /// Shown cases at or below zero on a logarithmic axis.
  std::size_t notPositive = 0;

  /// Where a number lies on the axis, from 0 to 1; NaN where it cannot be placed.
  float place(double value) const;
  /// The number at a place on the axis.
  double valueAt(double place) const;
};

/// What parallel coordinates show of the shown cases: one line per case across the axes, its
/// colour's place on the colour scale, and which lines are selected. No widget.
class ParallelCoordinatesModel
{
public:
  static constexpr float missing = std::numeric_limits<float>::quiet_NaN();

  /// Reads the shown cases (a table of the pipeline's output) for these axes and colour; the
  /// axes of the variables in `logAxes` are logarithmic.
  void reload(vtkTable& shown,
              const Project& project,
              const std::vector<WeakPtr<Variable>>& axes,
              const WeakPtr<Variable>& colour,
              const std::vector<WeakPtr<Variable>>& logAxes = {});
  /// The rows of the selected cases.
  void select(const std::vector<unsigned long long>& caseIds);

  const std::vector<ParallelAxis>& axes() const { return axesShown; }
  const CaseIds& caseIds() const { return rowOfCase.caseIds(); }
  /// Each line's place on the colour scale, from 0 to 1; NaN without a colour value.
  const Places& colour() const { return colours; }
  const std::vector<int>& selectedRows() const { return selected; }

  /// Where a value lies on an axis, from 0 to 1 (a category's index on a text axis); NaN for a
  /// missing value.
  float positionOf(std::size_t axis, double value) const;

private:
  std::vector<ParallelAxis> axesShown;
  Places colours;
  CaseRowIndex rowOfCase;
  std::vector<int> selected;
};

} // namespace explorer
