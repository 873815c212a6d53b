#pragma once

#include "support/TemporaryFolder.h"

#include <QColor>

#include <memory>
#include <string>

class Project;

namespace testsupport
{

/// Writes a PNG of one colour and returns its path.
std::string writeImage(const TemporaryFolder& folder,
                       const std::string& name,
                       int width,
                       int height,
                       const QColor& color);

/// A small design study with images, built in memory over files in a temporary folder:
///
///   case  angle  speed  material  files (tags)
///   1     30     10     steel     1_traj.png (plot:trajectory), 1_speed.png (plot:speed)
///   2     30     20     wood      2_traj.png (plot:trajectory), 2_speed.png (plot:speed)
///   3     45     10     steel     3_traj.png (plot:trajectory), 3_extra.png (plot:trajectory)
///   4     45     20     wood      4_speed.png (plot:speed)
///   5     30     10     lead      none
///   6     45     10     wood      6_traj.png (plot:trajectory, final)
///
/// "angle" and "speed" are discrete; each image is 40 x 30 pixels.
struct SmallStudy
{
  SmallStudy();

  TemporaryFolder folder;
  std::shared_ptr<const Project> project;
};

} // namespace testsupport
