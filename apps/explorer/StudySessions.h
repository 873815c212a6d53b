#pragma once

#include <QString>
#include <QStringList>

namespace explorer
{

/// What the explorer remembers of the studies a user opened, in the application's settings:
/// the last ones opened, most recent first (File > Open Recent), and for each the file keeping
/// the view settings it was closed with, so that it comes back as the user left it.
class StudySessions
{
public:
  static constexpr int maximumRecent = 10;

  /// The studies opened last, most recent first, as absolute paths.
  QStringList recent() const;
  /// Puts the study first among the recent ones (once, however it was spelled).
  void remember(const QString& studyPath);
  void forget(const QString& studyPath);

  /// Where the view settings of a study are kept between runs (the file may not exist yet): in
  /// the application's settings folder, never beside the user's files.
  QString settingsFile(const QString& studyPath) const;

  /// The same study however its path is spelled (relative, with "..", a link).
  static QString key(const QString& studyPath);
};

} // namespace explorer
