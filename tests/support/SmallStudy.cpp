#include "support/SmallStudy.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"

#include <QImage>

#include <stdexcept>

namespace testsupport
{

std::string writeImage(const TemporaryFolder& folder,
                       const std::string& name,
                       int width,
                       int height,
                       const QColor& color)
{
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(color);
  const std::string path = folder.write(name, "");
  if (!image.save(QString::fromStdString(path), "PNG"))
  {
    throw std::runtime_error("cannot write " + path);
  }
  return path;
}

SmallStudy::SmallStudy()
{
  ProjectBuilder builder;
  builder.setFolder(folder.path());
  builder.setCaseIds({ 1, 2, 3, 4, 5, 6 });
  builder.addNumericVariable("angle", { 30, 30, 45, 45, 30, 45 });
  builder.addNumericVariable("speed", { 10, 20, 10, 20, 10, 10 });
  builder.addTextVariable("material", { "steel", "wood", "steel", "wood", "lead", "wood" });
  const struct
  {
    unsigned long long caseId;
    const char* name;
    std::vector<std::string> tags;
    QColor color;
  } files[] = {
    { 1, "images/1_traj.png", { "plot:trajectory" }, Qt::red },
    { 1, "images/1_speed.png", { "plot:speed" }, Qt::green },
    { 2, "images/2_traj.png", { "plot:trajectory" }, Qt::blue },
    { 2, "images/2_speed.png", { "plot:speed" }, Qt::cyan },
    { 3, "images/3_traj.png", { "plot:trajectory" }, Qt::magenta },
    { 3, "images/3_extra.png", { "plot:trajectory" }, Qt::yellow },
    { 4, "images/4_speed.png", { "plot:speed" }, Qt::gray },
    { 6, "images/6_traj.png", { "plot:trajectory", "final" }, Qt::darkRed },
  };
  for (const auto& file : files)
  {
    writeImage(folder, file.name, 40, 30, file.color);
    builder.addAuxFile(file.caseId, file.name, file.tags);
  }
  project = builder.build();
}

} // namespace testsupport
