// Ordinary tasks on the sample study, as a new user does them in the first minutes: zooming,
// grid spacing, the colour legend's fields, undo from a field, range filters, the status bar,
// the window's layout, tool tips over crowded points and the order of the selected images.

#include "ExplorerWindow.h"
#include "MasterSelection.h"
#include "SampleStudy.h"
#include "views/ImageDiffView.h"
#include "views/ImageMatrixView.h"
#include "views/SelectedImageView.h"
#include "views/scatter/ScatterPlotView.h"
#include "views/table/CasesTableView.h"

#include "analyzer_common/UndoStack.h"
#include "charts/AxisDetailsInterface.h"
#include "charts/ChartXY.h"
#include "colorlegend/ColorLegend.h"
#include "datamanagement/Project.h"
#include "datamanagement/StudyReader.h"
#include "datapipeline/DataPipelineManager.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableView.h"
#include "images/QImageTableView.h"
#include "properties/PropertyAbstract.h"
#include "support/ChartEvents.h"
#include "support/RenderedView.h"
#include "support/TemporaryFolder.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSpinBox>
#include <QSplitter>
#include <QTableWidget>
#include <QTest>
#include <QUndoStack>
#include <QVTKOpenGLNativeWidget.h>
#include <gtest/gtest.h>
#include <vtkAxis.h>
#include <vtkDoubleArray.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>
#include <vtkTooltipItem.h>

#include <cmath>
#include <limits>

using explorer::ExplorerWindow;
using testsupport::TemporaryFolder;

namespace
{

class OrdinaryTasks : public ::testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    testsupport::keepGraphicsDriverLoaded();
    study = new TemporaryFolder;
    explorer::SampleStudyOptions options;
    options.folder = study->path();
    options.runs = 60;
    explorer::writeSampleStudy(options);
  }
  static void TearDownTestSuite()
  {
    delete study;
    study = nullptr;
  }

  void SetUp() override
  {
    window = std::make_unique<ExplorerWindow>();
    window->showStudy(readStudy(study->path()));
    window->resize(1400, 900);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    scatter = window->view<explorer::ScatterPlotView>();
    widget = qobject_cast<QVTKOpenGLNativeWidget*>(scatter->widget());
    scatter->fitToData();
    widget->renderWindow()->Render();
    UndoStack().clear();
  }

  static std::vector<double> ticks(vtkAxis& axis)
  {
    vtkDoubleArray* positions = axis.GetTickPositions();
    std::vector<double> values;
    for (vtkIdType i = 0; positions && i < positions->GetNumberOfTuples(); ++i)
      values.push_back(positions->GetValue(i));
    return values;
  }

  static TemporaryFolder* study;
  TemporaryFolder output;
  std::unique_ptr<ExplorerWindow> window;
  explorer::ScatterPlotView* scatter = nullptr;
  QVTKOpenGLNativeWidget* widget = nullptr;
};

TemporaryFolder* OrdinaryTasks::study = nullptr;

} // namespace

TEST_F(OrdinaryTasks, AClickInZoomModeZoomsNothingAndKeepsTheSelection)
{
  window->selection().setSelection({ 1003 });
  scatter->mouseMode()->setValue(DataViewInterface::Zoom);
  vtkAxis* x = scatter->chart().GetAxis(vtkAxis::BOTTOM);
  vtkAxis* y = scatter->chart().GetAxis(vtkAxis::LEFT);
  const double before[4] = { x->GetMinimum(), x->GetMaximum(), y->GetMinimum(), y->GetMaximum() };
  vtkAbstractContextItem& chart = scatter->chart();
  vtkRenderWindowInteractor* mouse = widget->interactor();
  const auto at = [&](double px, double py, float dx)
  { return testsupport::mouseAt(scatter->chart(), mouse, px, py, dx, dx); };
  // A user's click: the mouse comes over the point, and the hand moves it a pixel between press
  // and release. The widget's interactor hears it all; the chart, which hears it through the
  // interactor's style, gets it here directly.
  const auto press = [&](double px, double py)
  {
    const vtkContextMouseEvent event = at(px, py, 0);
    mouse->SetEventInformation(event.GetScreenPos().GetX(), event.GetScreenPos().GetY());
    mouse->InvokeEvent(vtkCommand::MouseMoveEvent);
    mouse->InvokeEvent(vtkCommand::LeftButtonPressEvent);
    chart.MouseButtonPressEvent(event);
  };
  const auto release = [&](double px, double py, float dx)
  {
    const vtkContextMouseEvent event = at(px, py, dx);
    chart.MouseMoveEvent(event);
    chart.MouseButtonReleaseEvent(event);
    mouse->SetEventInformation(event.GetScreenPos().GetX(), event.GetScreenPos().GetY());
    mouse->InvokeEvent(vtkCommand::LeftButtonReleaseEvent);
    QApplication::processEvents();
  };
  const double middle = (before[0] + before[1]) / 2;
  press(middle, before[2] + 1);
  release(middle, before[2] + 1, 1);
  EXPECT_DOUBLE_EQ(x->GetMinimum(), before[0]) << "a click is no zoom";
  EXPECT_DOUBLE_EQ(x->GetMaximum(), before[1]);
  EXPECT_DOUBLE_EQ(y->GetMaximum(), before[3]);
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 1003 }))
    << "a click beside the points keeps the selection outside Select mode";
  // A drag still zooms.
  press(before[0], before[2]);
  release(middle, before[3], 0);
  EXPECT_LT(x->GetMaximum() - x->GetMinimum(), before[1] - before[0]);
}

TEST_F(OrdinaryTasks, ACustomGridSpacingLabelsEveryMultipleInsideTheRange)
{
  AxisDetailsInterface& y = scatter->yAxis();
  vtkAxis* axis = scatter->chart().GetAxis(vtkAxis::LEFT);
  const struct
  {
    double min, max, spacing;
    std::vector<double> ticks;
  } cases[] = {
    { 198, 242, 50, { 200 } },
    { -5, 450, 50, { 0, 50, 100, 150, 200, 250, 300, 350, 400, 450 } },
    { -130, -20, 50, { -100, -50 } },
    { 0.15, 0.65, 0.1, { 0.2, 0.3, 0.4, 0.5, 0.6 } },
  };
  for (const auto& c : cases)
  {
    y.min()->setValue(c.min);
    y.max()->setValue(c.max);
    y.useCustomGridSpacing()->setValue(true);
    y.gridSpacing()->setValue(c.spacing);
    widget->renderWindow()->Render();
    EXPECT_EQ(ticks(*axis), c.ticks) << c.min << " to " << c.max << " by " << c.spacing;
    for (double tick : ticks(*axis))
      EXPECT_FALSE(std::signbit(tick) && tick == 0) << "no tick reads -0";
    y.useCustomGridSpacing()->setValue(false);
  }
}

TEST_F(OrdinaryTasks, ANewVariableOnOneAxisKeepsTheOtherAxisRange)
{
  AxisDetailsInterface& y = scatter->yAxis();
  y.max()->setValue(450);
  const double yMin = y.min()->value();
  scatter->xVariable()->setValue(window->project()->variable("speed"));
  EXPECT_EQ(y.max()->value(), 450) << "a custom Y maximum survives a change of X";
  EXPECT_EQ(y.min()->value(), yMin);
  const auto [speedMin, speedMax] = window->project()->variable("speed").lock().range();
  EXPECT_LE(scatter->xAxis().min()->value(), speedMin) << "X is fitted to its new variable";
  EXPECT_GE(scatter->xAxis().max()->value(), speedMax);
}

TEST_F(OrdinaryTasks, SettingsFieldsCommitWholeValuesAndUndoTheProgramsSteps)
{
  auto* labels = window->findChild<QWidget*>("settingsPanel")->findChild<QSpinBox*>();
  ASSERT_NE(labels, nullptr);
  labels->setFocus();
  labels->selectAll();
  QTest::keyClicks(labels, "12");
  QTest::keyClick(labels, Qt::Key_Return);
  EXPECT_EQ(scatter->colorLegend().numLabels()->value(), 12) << "two digits typed";

  // Ctrl+Z in a field undoes the program's last step, not the field's typing.
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  auto* findField = window->findChild<QLineEdit*>("findCase");
  auto* minimum = window->findChild<QWidget*>("settingsPanel")->findChildren<QLineEdit*>().first();
  minimum->setFocus();
  QApplication::processEvents();
  QTest::keyClick(minimum, Qt::Key_Z, Qt::ControlModifier);
  QApplication::processEvents();
  EXPECT_NE(scatter->colorLegend().numLabels()->value(), 12) << "the step was undone";
  EXPECT_NE(findField, nullptr);
}

TEST_F(OrdinaryTasks, EditingAFilterBoundSwitchesTheFilterOnAndTheStatusBarCountsWhatIsShown)
{
  auto* filters = window->findChild<QTableWidget*>("filtersTable");
  ASSERT_NE(filters, nullptr);
  auto* shown = window->findChild<QLabel*>("shownCount");
  EXPECT_EQ(shown->text(), "60 cases shown");
  int speedRow = -1;
  for (int row = 0; row < filters->rowCount(); ++row)
    if (filters->item(row, 0)->text() == "speed")
      speedRow = row;
  ASSERT_GE(speedRow, 0);
  auto* maximum = qobject_cast<QLineEdit*>(filters->cellWidget(speedRow, 3));
  maximum->setText("25");
  Q_EMIT maximum->editingFinished();
  QApplication::processEvents();
  const int left = window->shownCases();
  EXPECT_LT(left, 60) << "the filter is on without ticking its box";
  EXPECT_EQ(shown->text(), QString("%1 of 60 cases shown").arg(left));
  // Leaving the field again changes nothing more.
  const int steps = UndoStack().qUndoStack().count();
  Q_EMIT maximum->editingFinished();
  EXPECT_EQ(UndoStack().qUndoStack().count(), steps);
}

TEST_F(OrdinaryTasks, TheToolTipCountsEveryCaseOnItsSpot)
{
  // Angle against speed: the sample study's swept inputs, several runs on each spot.
  scatter->xVariable()->setValue(window->project()->variable("angle"));
  scatter->yVariable()->setValue(window->project()->variable("speed"));
  scatter->fitToData();
  widget->renderWindow()->Render();
  const auto [x, y] = testsupport::valuesAtRow(scatter->points(), scatter->rowOfCase(1000));
  vtkContextMouseEvent hover = testsupport::mouseAt(scatter->chart(), widget->interactor(), x, y);
  hover.SetButton(vtkContextMouseEvent::NO_BUTTON);
  static_cast<vtkAbstractContextItem&>(scatter->chart()).MouseMoveEvent(hover);
  const std::string tip = scatter->chart().GetTooltip()->GetText();
  int onSpot = 0;
  const Project& project = *window->project();
  for (const auto& record : project.records())
    onSpot += record.lock().data(project.variable("angle")).toDouble() == x &&
                  record.lock().data(project.variable("speed")).toDouble() == y
                ? 1
                : 0;
  ASSERT_GT(onSpot, 1);
  EXPECT_EQ(tip.rfind(std::to_string(onSpot) + " cases here: ", 0), 0u) << tip;
}

TEST_F(OrdinaryTasks, SelectedImagesFollowTheTablesSortAndTheImageMatrixPagesThroughValues)
{
  auto* table = window->view<explorer::CasesTableView>();
  // Sorted by case id, descending: the difference compares the later case first.
  table->sortColumn()->setValue(0);
  table->sortDescending()->setValue(true);
  window->selection().setSelection({ 1002, 1005, 1010 });
  auto* difference = window->view<explorer::ImageDiffView>();
  EXPECT_EQ(difference->comparedCases(), (std::vector<unsigned long long>{ 1010, 1005 }));
  auto* image = window->view<explorer::SelectedImageView>();
  EXPECT_EQ(image->shownCases(), (std::vector<unsigned long long>{ 1010 }));

  // Pages by a variable start on its first value and step through the others.
  auto* matrix = window->view<explorer::ImageMatrixView>();
  auto* page = window->findChild<QComboBox*>("imageMatrixPage");
  ASSERT_NE(page, nullptr);
  QComboBox* pages = nullptr;
  for (QComboBox* combo : window->findChild<QWidget*>("settingsPanel")->findChildren<QComboBox*>())
    if (combo->findText("By variable") >= 0 && combo->findText("None") >= 0)
      pages = combo;
  ASSERT_NE(pages, nullptr);
  const std::string firstTag = matrix->properties()->pageValue()->value().toString();
  pages->setCurrentIndex(pages->findText("By variable"));
  Q_EMIT pages->activated(pages->currentIndex());
  const auto properties = matrix->properties();
  ASSERT_EQ(properties->dimensionPagesBy()->value(), ImageMatrixViewProperties::PageByVariable);
  ASSERT_GT(page->count(), 1);
  EXPECT_EQ(page->currentIndex(), 0) << "the first value's page, not an empty one";
  EXPECT_FALSE(properties->pageValue()->value().isEmpty());
  UndoStack().undo();
  EXPECT_EQ(properties->dimensionPagesBy()->value(), ImageMatrixViewProperties::PageByTag)
    << "paging and its first page are one step; the sample's series files are no images, so "
       "its matrix pages by its first image tag at first";
  EXPECT_EQ(properties->pageValue()->value().toString(), firstTag);
}

TEST_F(OrdinaryTasks, TheWindowReopensWithItsSizeAndPanes)
{
  const testsupport::TemporarySettings settings;
  QSize size;
  QList<int> panes;
  {
    ExplorerWindow first;
    first.showStudy(window->project());
    first.rememberBetweenRuns();
    first.show();
    first.resize(1300, 850);
    auto* main = qobject_cast<QSplitter*>(first.centralWidget());
    main->setSizes({ 400, 700 });
    QApplication::processEvents();
    size = first.size();
    panes = main->sizes();
    first.close();
  }
  ExplorerWindow second;
  second.showStudy(window->project());
  second.rememberBetweenRuns();
  second.show();
  QApplication::processEvents();
  EXPECT_EQ(second.size(), size);
  EXPECT_EQ(qobject_cast<QSplitter*>(second.centralWidget())->sizes(), panes);
}

TEST_F(OrdinaryTasks, TheChartActionsStayWithTheChartWhenAnotherViewHasTheFocus)
{
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  QAction* fit = nullptr;
  for (QAction* action : window->findChildren<QAction*>())
    if (action->text() == "Fit to Data")
      fit = action;
  ASSERT_NE(fit, nullptr);
  widget->setFocus();
  QApplication::processEvents();
  EXPECT_TRUE(fit->isEnabled());
  window->view<explorer::CasesTableView>()->table().setFocus();
  window->findChild<QLineEdit*>("findCase")->setFocus();
  QApplication::processEvents();
  EXPECT_TRUE(fit->isEnabled()) << "a click in the table leaves Fit to Data to the chart";
  EXPECT_EQ(window->currentView(), scatter);
}

TEST_F(OrdinaryTasks, ALogarithmicAxisFitsThePointsAndUndoesBackToALinearOne)
{
  vtkAxis* y = scatter->points().GetYAxis();
  const double linearMin = y->GetMinimum();
  scatter->logY()->setValue(true);
  widget->renderWindow()->Render();
  EXPECT_TRUE(y->GetLogScaleActive());
  // Every range of the sample study lies between its logarithmic axis's ends.
  const auto project = window->project();
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
  for (double range : *project->numericValues(project->variable("range").lock()))
    if (range > 0)
    {
      low = std::min(low, range);
      high = std::max(high, range);
    }
  EXPECT_LT(y->GetUnscaledMinimum(), low);
  EXPECT_GT(y->GetUnscaledMaximum(), high);
  EXPECT_LT(y->GetUnscaledMaximum(), high * 2) << "fitted, not left wide";

  UndoStack().undo();
  widget->renderWindow()->Render();
  EXPECT_FALSE(y->GetLogScaleActive());
  EXPECT_NEAR(y->GetMinimum(), linearMin, std::abs(linearMin) * 0.01 + 1e-9);
}

TEST_F(OrdinaryTasks, AnAxisTurnedLogarithmicAndADraggedLegendAreUndoneWhole)
{
  // A range of the user's own, not the one a fit to the values gives.
  scatter->yAxis().min()->setValue(-7);
  scatter->yAxis().max()->setValue(333);
  const QString start = window->settingsDocument();
  vtkAxis& y = *scatter->chart().GetAxis(vtkAxis::LEFT);
  const std::pair<double, double> linear(-7, 333);
  ASSERT_EQ(std::make_pair(y.GetUnscaledMinimum(), y.GetUnscaledMaximum()), linear);

  // Logarithmic Y fits the axis to the values above zero; undone, the axis has its range again.
  scatter->logY()->setValue(true);
  ASSERT_TRUE(y.GetLogScale());
  UndoStack().undo();
  EXPECT_FALSE(y.GetLogScale());
  EXPECT_EQ(std::make_pair(y.GetUnscaledMinimum(), y.GetUnscaledMaximum()), linear);
  EXPECT_EQ(window->settingsDocument().toStdString(), start.toStdString());

  // The legend dragged out of its margin on the right, then the drag undone.
  widget->renderWindow()->Render();
  const QPoint from(widget->width() - 50, widget->height() / 2);
  const QPoint to(widget->width() / 2, widget->height() / 3);
  QTest::mousePress(widget, Qt::LeftButton, {}, from);
  for (int step = 1; step <= 3; ++step)
  {
    const QPoint at = from + (to - from) * step / 3;
    QMouseEvent move(
      QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(widget, &move);
  }
  QTest::mouseRelease(widget, Qt::LeftButton, {}, to);
  ASSERT_NE(window->settingsDocument().toStdString(), start.toStdString()) << "the legend moved";
  ASSERT_TRUE(UndoStack().canUndo()) << "a step of the history";
  UndoStack().undo();
  EXPECT_EQ(window->settingsDocument().toStdString(), start.toStdString());
}
