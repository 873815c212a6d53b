// The main of every test executable: one QApplication for the whole run, and warnings that no
// test expects turned into failures.

#include "support/TemporaryFolder.h"
#include "support/WarningGuard.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv)
{
  // Without a display (a plain run outside ./dev test) Qt still works on its offscreen platform;
  // tests that render through VTK need the X display that ./dev test provides.
  if (std::getenv("DISPLAY") == nullptr && std::getenv("QT_QPA_PLATFORM") == nullptr)
  {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  // What the windows remember between runs goes to a folder of this run's own, made before the
  // application so that it is removed after the application's last write.
  const QTemporaryDir settings;
  QApplication application(argc, argv);
  QApplication::setOrganizationName("quen-tests");
  QApplication::setApplicationName("quen-tests");
  testsupport::keepRunSettingsIn(settings.path());
  testsupport::installWarningHandlers();
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
