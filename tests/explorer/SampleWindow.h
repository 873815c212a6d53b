#pragma once

// A window over a small sample study, shared by the tests of one view each: the study is
// written once per test suite, the window made for each test.

#include "ExplorerWindow.h"
#include "SampleStudy.h"

#include "analyzer_common/UndoStack.h"
#include "datamanagement/StudyReader.h"
#include "support/RenderedView.h"
#include "support/TemporaryFolder.h"

#include <QTabWidget>
#include <QTest>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace testsupport
{

class SampleWindow : public ::testing::Test
{
protected:
  /// Writes the sample study of `runs` runs, then lets `spoil` change its files.
  static void writeStudy(int runs, const std::function<void(const std::string&)>& spoil = {})
  {
    keepGraphicsDriverLoaded();
    study = new TemporaryFolder;
    explorer::SampleStudyOptions options;
    options.folder = study->path();
    options.runs = runs;
    explorer::writeSampleStudy(options);
    if (spoil)
      spoil(study->path());
  }
  static void TearDownTestSuite()
  {
    delete study;
    study = nullptr;
  }

  /// A window over the study with the tab of `view` brought forward.
  void openWith(QWidget* (*viewOf)(explorer::ExplorerWindow&))
  {
    window = std::make_unique<explorer::ExplorerWindow>();
    window->showStudy(readStudy(study->path()));
    window->resize(1400, 900);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    window->findChild<QTabWidget*>("viewTabs")->setCurrentWidget(viewOf(*window));
    UndoStack().clear();
  }

  static inline TemporaryFolder* study = nullptr;
  std::unique_ptr<explorer::ExplorerWindow> window;
};

} // namespace testsupport
