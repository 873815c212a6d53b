// Replays every saved fuzzing input (the seeds and every input that ever found a problem), so
// that a problem fixed once never returns unnoticed.

#include "Harnesses.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace
{

void replay(const char* folder, void (*harness)(const std::uint8_t*, std::size_t))
{
  const QDir corpus(QString(FUZZ_CORPUS) + "/" + folder);
  const QStringList files = corpus.entryList(QDir::Files);
  ASSERT_FALSE(files.isEmpty()) << "no corpus in " << corpus.path().toStdString();
  for (const QString& name : files)
  {
    QFile file(corpus.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    SCOPED_TRACE(name.toStdString());
    harness(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
            static_cast<std::size_t>(bytes.size()));
  }
}

} // namespace

TEST(FuzzCorpus, SavedSettingsReplay)
{
  replay("settings", fuzz::settings);
}

TEST(FuzzCorpus, CommaListsReplay)
{
  replay("list", fuzz::list);
}

TEST(FuzzCorpus, StudyFilesReplay)
{
  replay("study", fuzz::study);
}

TEST(FuzzCorpus, TablesReplay)
{
  replay("tables", fuzz::tables);
}
