// Three hundred random actions over a small study with images in a real window: nothing faults,
// and undoing every step gives back the settings the window started with.

#include "soak/Soak.h"

#include "ExplorerWindow.h"

#include "datamanagement/StudyReader.h"
#include "support/RenderedView.h"
#include "support/TemporaryFolder.h"

#include <QTest>
#include <gtest/gtest.h>

#include <sstream>

TEST(Soak, ThreeHundredRandomActionsUndoneBackToTheStart)
{
  testsupport::keepGraphicsDriverLoaded();
  testsupport::TemporaryFolder folder;
  soak::writeStudy(folder.path() + "/study", 2000);
  explorer::ExplorerWindow window;
  window.showStudy(readStudy(folder.path() + "/study"));
  window.resize(1400, 900);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  std::ostringstream log;
  const soak::Report report = soak::run(window, 300, 20261123, folder.path(), &log);
  EXPECT_EQ(report.steps, 300);
  EXPECT_GE(report.actions.size(), 10U) << "most kinds of action ran";
  EXPECT_GT(report.undoSteps, 10) << "the settings changed";
  EXPECT_GT(report.selectionChanges, 10) << "clicks and drags selected cases";
  EXPECT_GT(report.mostDerivedVariables, 0U);
  EXPECT_TRUE(report.undoneToStart) << report.firstDifference << "\nactions:\n" << log.str();
}
