#pragma once

#include <string>

namespace explorer
{

/// Writes a sample study into a folder: a design study of a projectile with air drag. The inputs
/// are swept on a grid (launch angle, launch speed, drag coefficient, mass); the outputs are
/// computed by integrating the flight (range, apex height, flight time, impact speed). A few runs
/// fail and have no outputs (NaN). Each run has two images drawn with QPainter, its trajectory
/// ("plot:trajectory") and its speed over time ("plot:speed"), and its flight as a series table
/// (time, x, y, speed; "series:flight"). The same seed writes the same study.
struct SampleStudyOptions
{
  std::string folder;
  unsigned seed = 20261121;
  /// Runs to write; the sweep is cut or repeated with other masses to reach it.
  int runs = 288;
  /// Without images the study has no auxfiles.csv, and a million runs take seconds.
  bool images = true;
  int imageWidth = 240;
  int imageHeight = 160;
};

/// Returns the number of runs written; throws std::runtime_error when the folder cannot be
/// written.
int writeSampleStudy(const SampleStudyOptions& options);

} // namespace explorer
