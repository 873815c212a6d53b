#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

class Project;

namespace explorer
{

class FileLocator;

/// A figure of each run's own series (the table file the run carries under `tag`), which an
/// expression uses as a variable of the case: series_max(`series:flight`, speed).
struct SeriesFeature
{
  enum Kind
  {
    Final,        // series_final(TAG, Y): Y of the last sample
    Minimum,      // series_min(TAG, Y)
    Maximum,      // series_max(TAG, Y)
    Mean,         // series_mean(TAG, Y)
    XAtMaximum,   // series_x_at_max(TAG, X, Y): X where Y is largest (the first such sample)
    Integral,     // series_integral(TAG, X, Y): trapezoids over X
    FirstCrossing // series_crossing(TAG, X, Y, VALUE): first X where Y reaches VALUE
  };

  Kind kind = Final;
  std::string tag;
  std::string x; // empty for the figures of Y alone
  std::string y;
  double value = 0.0;

  /// The function of the expression language for each kind, and whether it takes X.
  static const char* functionName(Kind kind);
  static bool takesX(Kind kind);
  /// How an expression writes it; also the name it is looked up by.
  std::string text() const;
  /// The figure of one series of `n` samples; `x` is ignored by the figures of Y alone. Missing
  /// samples (NaN) are skipped; a series without the samples a figure needs gives NaN.
  double of(const double* x, const double* y, std::size_t n) const;
};

/// Computes series features for every case of a study, reading each run's series file once per
/// tag for all the features asked at once, and keeps the columns computed: a study shown again
/// with other derived variables does not read its series again.
class SeriesFeatureColumns
{
public:
  /// One column (a value per case, in record order) per feature. Throws ExpressionError when no
  /// run has a series with that tag, or none of them has a column named. A run without the file,
  /// or whose file cannot be read, gets NaN.
  std::vector<std::vector<double>> columns(const Project& study,
                                           const FileLocator* files,
                                           const std::vector<SeriesFeature>& features);
  void clear() { computed.clear(); }

private:
  std::map<std::string, std::vector<double>> computed;
};

} // namespace explorer
