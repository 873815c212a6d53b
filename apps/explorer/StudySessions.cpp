#include "StudySessions.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace explorer
{

namespace
{

const char* const recentKey = "studies/recent";

} // namespace

QString StudySessions::key(const QString& studyPath)
{
  const QFileInfo info(studyPath);
  const QString canonical = info.canonicalFilePath();
  return canonical.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : canonical;
}

QStringList StudySessions::recent() const
{
  return QSettings().value(recentKey).toStringList();
}

void StudySessions::remember(const QString& studyPath)
{
  QStringList studies = recent();
  const QString path = key(studyPath);
  studies.removeAll(path);
  studies.prepend(path);
  while (studies.size() > maximumRecent)
    studies.removeLast();
  QSettings().setValue(recentKey, studies);
}

void StudySessions::forget(const QString& studyPath)
{
  QStringList studies = recent();
  studies.removeAll(key(studyPath));
  QSettings().setValue(recentKey, studies);
}

QString StudySessions::settingsFile(const QString& studyPath) const
{
  // Named by a digest of the path: any path makes a valid file name, and two studies in one
  // folder (two tables, say) keep settings of their own.
  const QByteArray digest =
    QCryptographicHash::hash(key(studyPath).toUtf8(), QCryptographicHash::Sha1).toHex();
  const QString folder = QFileInfo(QSettings().fileName()).absolutePath() + "/sessions";
  return folder + "/" + QString::fromLatin1(digest) + ".xml";
}

} // namespace explorer
