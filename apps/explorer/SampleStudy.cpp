#include "SampleStudy.h"

#include <QColor>
#include <QDir>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <charconv>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

namespace explorer
{

namespace
{

constexpr double gravity = 9.81;
constexpr double airDensity = 1.225;
constexpr double area = 0.01; // cross-section, m^2

struct Flight
{
  std::vector<double> x, y, t, speed;
  double range = 0, apex = 0, time = 0, impactSpeed = 0;
};

// Integrates the flight with a fixed step (semi-implicit Euler), until the projectile lands.
// The path is kept only when it is to be drawn: a million runs need the outputs alone.
Flight fly(double angleDegrees, double launchSpeed, double drag, double mass, bool keepPath)
{
  Flight flight;
  const double angle = angleDegrees * M_PI / 180.0;
  double vx = launchSpeed * std::cos(angle);
  double vy = launchSpeed * std::sin(angle);
  double x = 0;
  double y = 0;
  double t = 0;
  const double dt = 0.01;
  const double k = 0.5 * airDensity * drag * area / mass;
  while (t < 120)
  {
    // Not std::hypot: it guards against overflow that speeds never reach, and a million runs
    // make it the bulk of the time.
    const double v = std::sqrt(vx * vx + vy * vy);
    if (keepPath)
    {
      flight.x.push_back(x);
      flight.y.push_back(y);
      flight.t.push_back(t);
      flight.speed.push_back(v);
    }
    flight.apex = std::max(flight.apex, y);
    vx -= k * v * vx * dt;
    vy -= (gravity + k * v * vy) * dt;
    const double nx = x + vx * dt;
    const double ny = y + vy * dt;
    t += dt;
    if (ny < 0)
    {
      // Land between the two steps.
      const double f = y / (y - ny);
      x += f * (nx - x);
      if (keepPath)
      {
        flight.x.push_back(x);
        flight.y.push_back(0);
        flight.t.push_back(t);
        flight.speed.push_back(std::hypot(vx, vy));
      }
      break;
    }
    x = nx;
    y = ny;
  }
  flight.range = x;
  flight.time = t;
  flight.impactSpeed = std::hypot(vx, vy);
  return flight;
}

void drawCurve(QImage& image,
               const std::vector<double>& xs,
               const std::vector<double>& ys,
               double xMax,
               double yMax,
               const QColor& color,
               const QString& title)
{
  image.fill(QColor(252, 252, 250));
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const int left = 34;
  const int bottom = image.height() - 22;
  const int right = image.width() - 8;
  const int top = 20;
  painter.setPen(QPen(QColor(120, 120, 120), 1));
  painter.drawLine(left, bottom, right, bottom);
  painter.drawLine(left, bottom, left, top);
  QFont font = painter.font();
  font.setPixelSize(11);
  painter.setFont(font);
  painter.setPen(QColor(40, 40, 40));
  painter.drawText(QRect(0, 2, image.width(), 16), Qt::AlignHCenter, title);
  painter.drawText(QRect(0, bottom - 6, left - 4, 12), Qt::AlignRight, "0");
  painter.drawText(QRect(0, top - 6, left - 4, 12), Qt::AlignRight, QString::number(yMax, 'g', 3));
  painter.drawText(
    QRect(right - 60, bottom + 4, 60, 14), Qt::AlignRight, QString::number(xMax, 'g', 3));
  QPainterPath path;
  for (std::size_t i = 0; i < xs.size(); ++i)
  {
    const QPointF p(left + xs[i] / xMax * (right - left), bottom - ys[i] / yMax * (bottom - top));
    if (i == 0)
      path.moveTo(p);
    else
      path.lineTo(p);
  }
  painter.setPen(QPen(color, 2));
  painter.drawPath(path);
}

// Ten significant digits, as a measurement would have; empty for NaN. to_chars, because a
// million runs through iostreams take seconds.
std::string number(double value)
{
  if (std::isnan(value))
    return "";
  char buffer[32];
  const auto result =
    std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 10);
  return std::string(buffer, result.ptr);
}

} // namespace

int writeSampleStudy(const SampleStudyOptions& options)
{
  const QDir folder(QString::fromStdString(options.folder));
  if (!folder.mkpath(options.images ? "images" : ".") ||
      (options.images && !folder.mkpath("series")))
    throw std::runtime_error("cannot create the folder " + options.folder);

  const double angles[] = { 15, 25, 35, 45, 55, 65 };
  const double speeds[] = { 20, 35, 50, 65 };
  const double drags[] = { 0.1, 0.3, 0.5, 0.8 };
  const double masses[] = { 0.2, 0.5, 1.0, 2.0, 5.0 };
  std::mt19937 random(options.seed);
  std::uniform_real_distribution<double> jitter(-0.02, 0.02);
  std::uniform_real_distribution<double> chance(0.0, 1.0);

  std::ofstream cases(options.folder + "/cases.csv");
  std::ofstream files;
  if (options.images)
    files.open(options.folder + "/auxfiles.csv");
  if (!cases || (options.images && !files))
    throw std::runtime_error("cannot write into " + options.folder);
  cases << "case_id,angle,speed,drag_coefficient,mass,range,apex_height,flight_time,impact_speed\n";
  if (options.images)
    files << "case_id,path,tags\n";

  // The inputs in the order the seed gives them; then every flight on its own, on every core.
  struct Run
  {
    double angle, speed, launchSpeed, drag, mass;
    bool failed;
    Flight outputs;
  };
  std::vector<Run> runs(static_cast<std::size_t>(std::max(options.runs, 0)));
  for (std::size_t i = 0; i < runs.size(); ++i)
  {
    Run& run = runs[i];
    run.angle = angles[i % 6];
    run.speed = speeds[(i / 6) % 4];
    run.drag = drags[(i / 24) % 4];
    run.mass = masses[(i / 96) % 5];
    run.launchSpeed = run.speed * (1 + jitter(random));
    // About three runs in a hundred fail: the solver gives no outputs.
    run.failed = chance(random) < 0.03;
  }
  const std::size_t workers = std::max(1u, std::thread::hardware_concurrency());
  std::vector<std::thread> threads;
  for (std::size_t w = 0; w < workers; ++w)
    threads.emplace_back(
      [&runs, w, workers]
      {
        for (std::size_t i = w; i < runs.size(); i += workers)
          runs[i].outputs =
            fly(runs[i].angle, runs[i].launchSpeed, runs[i].drag, runs[i].mass, false);
      });
  for (std::thread& thread : threads)
    thread.join();

  int written = 0;
  for (const Run& run : runs)
  {
    const double angle = run.angle;
    const double speed = run.speed;
    const double drag = run.drag;
    const double mass = run.mass;
    const bool failed = run.failed;
    const unsigned long long id = 1000 + static_cast<unsigned long long>(written);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Flight& outputs = run.outputs;
    cases << id << ',' << angle << ',' << speed << ',' << drag << ',' << mass << ','
          << number(failed ? nan : outputs.range) << ',' << number(failed ? nan : outputs.apex)
          << ',' << number(failed ? nan : outputs.time) << ','
          << number(failed ? nan : outputs.impactSpeed) << '\n';
    ++written;
    if (!options.images)
      continue;
    const Flight flight = fly(angle, run.launchSpeed, drag, mass, true);
    QImage trajectory(options.imageWidth, options.imageHeight, QImage::Format_RGB32);
    drawCurve(trajectory,
              flight.x,
              flight.y,
              std::max(1.0, flight.range),
              std::max(1.0, flight.apex * 1.1),
              failed ? QColor(200, 40, 40) : QColor(30, 90, 200),
              QString("case %1: %2 deg, %3 m/s").arg(id).arg(angle).arg(speed));
    QImage profile(options.imageWidth, options.imageHeight, QImage::Format_RGB32);
    double vMax = 1;
    for (double v : flight.speed)
      vMax = std::max(vMax, v);
    drawCurve(profile,
              flight.t,
              flight.speed,
              std::max(0.1, flight.time),
              vMax * 1.1,
              QColor(20, 150, 80),
              QString("speed, drag %1, mass %2").arg(drag).arg(mass));

    const QString traj = QString("images/%1_trajectory.png").arg(id);
    const QString prof = QString("images/%1_speed.png").arg(id);
    if (!trajectory.save(folder.filePath(traj)) || !profile.save(folder.filePath(prof)))
      throw std::runtime_error("cannot write the images of case " + std::to_string(id));
    files << id << ',' << traj.toStdString() << ",plot:trajectory"
          << (failed ? ";status:failed" : "") << '\n';
    files << id << ',' << prof.toStdString() << ",plot:speed\n";

    // The flight itself, as the run's own series.
    if (!flight.t.empty())
    {
      const std::string series = "series/" + std::to_string(id) + "_flight.csv";
      std::ofstream table(options.folder + "/" + series);
      table << "time,x,y,speed\n";
      for (std::size_t i = 0; i < flight.t.size(); ++i)
        table << flight.t[i] << ',' << flight.x[i] << ',' << flight.y[i] << ',' << flight.speed[i]
              << '\n';
      if (!table)
        throw std::runtime_error("cannot write the series of case " + std::to_string(id));
      files << id << ',' << series << ",series:flight\n";
    }
  }
  return written;
}

} // namespace explorer
