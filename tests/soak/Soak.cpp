#include "soak/Soak.h"

#include "ExplorerView.h"
#include "ExplorerWindow.h"
#include "MasterSelection.h"
#include "SampleStudy.h"

#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QUndoStack>
#include <QWheelEvent>

#include <cstddef>
#include <fstream>
#include <functional>
#include <malloc.h>
#include <random>
#include <sstream>
#include <stdexcept>
#include <unistd.h>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
// ASan's count of the bytes its allocator hands out (GCC ships no header that declares it).
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace soak
{

void writeStudy(const std::string& folder, int runs)
{
  // The images: those of a small sample study, shared by every run of the large one.
  constexpr int imageRuns = 200;
  const std::string images = folder + "/image-source";
  explorer::SampleStudyOptions small;
  small.folder = images;
  small.runs = imageRuns;
  explorer::writeSampleStudy(small);
  explorer::SampleStudyOptions large;
  large.folder = folder;
  large.runs = runs;
  large.images = false;
  explorer::writeSampleStudy(large);

  // The sample's case ids start at 1000 and follow one another.
  std::ofstream files(folder + "/auxfiles.csv");
  files << "case_id,path,tags\n";
  for (int run = 0; run < runs; ++run)
  {
    const int image = 1000 + run % imageRuns;
    files << 1000 + run << ",image-source/images/" << image << "_trajectory.png,plot:trajectory\n";
    files << 1000 + run << ",image-source/images/" << image << "_speed.png,plot:speed\n";
  }
}

// Memory in use: the allocator first hands back what it keeps free, so that fragmentation of its
// free lists is not counted as growth.
std::size_t residentMemory()
{
  malloc_trim(0);
  std::ifstream statm("/proc/self/statm");
  std::size_t pages = 0;
  std::size_t resident = 0;
  statm >> pages >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// Bytes in blocks the program holds from the allocator: when resident memory grows and this does
// not, the growth is outside malloc (OpenGL's or the X server's shared buffers, say), not a block
// the program forgot.
std::size_t heapInUse()
{
#if defined(__SANITIZE_ADDRESS__)
  // ASan's allocator replaces malloc's, whose own figures then stay at zero.
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}

namespace
{

class Monkey
{
public:
  Monkey(explorer::ExplorerWindow& window, unsigned seed, std::string scratch)
    : window(window)
    , random(seed)
    , scratch(std::move(scratch))
  {
  }

  std::string act()
  {
    using Action = std::pair<const char*, std::function<void()>>;
    const std::vector<std::pair<int, Action>> actions{
      { 20, { "click", [this] { click(); } } },
      { 12, { "drag", [this] { drag(); } } },
      { 16, { "edit a setting", [this] { editSetting(); } } },
      { 6, { "change tab", [this] { changeTab(); } } },
      { 12, { "undo", [] { UndoStack().qUndoStack().undo(); } } },
      { 6, { "redo", [] { UndoStack().qUndoStack().redo(); } } },
      { 2, { "save settings", [this] { saveSettings(); } } },
      { 2, { "load settings", [this] { loadSettings(); } } },
      { 3, { "fit to data", [this] { fitToData(); } } },
      { 4, { "zoom", [this] { zoom(); } } },
      { 2, { "add a derived variable", [this] { addDerived(); } } },
      { 1, { "remove a derived variable", [this] { removeDerived(); } } },
    };
    int total = 0;
    for (const auto& entry : actions)
      total += entry.first;
    int pick = std::uniform_int_distribution<int>(0, total - 1)(random);
    for (const auto& [weight, action] : actions)
    {
      if (pick < weight)
      {
        action.second();
        return action.first;
      }
      pick -= weight;
    }
    return {};
  }

  // Each derived variable is a column of every run in the study and in the views (some 5 MB at
  // 100,000 runs): a study that kept gaining them would grow in memory without any leak. The
  // study is given its most at the start, and the random actions keep it near that size.
  static constexpr std::size_t mostDerived = 8;
  void giveMostDerived()
  {
    for (std::size_t i = 0; i < mostDerived; ++i)
      addDerived();
  }

private:
  int uniform(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }
  bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(random) < p; }

  // Where a pointer can go: the shown views' widgets, an item view's viewport rather than its
  // frame.
  QWidget* someShownView()
  {
    std::vector<QWidget*> shown;
    for (explorer::ExplorerView* view : window.views())
    {
      if (view->widget() && view->widget()->isVisible())
        shown.push_back(view->widget());
    }
    if (shown.empty())
      return nullptr;
    QWidget* widget = shown[std::size_t(uniform(0, int(shown.size()) - 1))];
    const auto items = widget->findChildren<QAbstractItemView*>();
    if (!items.isEmpty() && chance(0.7))
    {
      QAbstractItemView* item = items[uniform(0, items.size() - 1)];
      if (item->isVisible())
        return item->viewport();
    }
    return widget;
  }

  QPoint somePoint(const QWidget& widget)
  {
    return { uniform(0, std::max(0, widget.width() - 1)),
             uniform(0, std::max(0, widget.height() - 1)) };
  }

  Qt::KeyboardModifiers someModifiers()
  {
    return chance(0.3) ? Qt::ControlModifier : Qt::NoModifier;
  }

  void click()
  {
    if (QWidget* widget = someShownView())
      QTest::mouseClick(widget, Qt::LeftButton, someModifiers(), somePoint(*widget));
  }

  void drag()
  {
    QWidget* widget = someShownView();
    if (!widget)
      return;
    const Qt::KeyboardModifiers modifiers = someModifiers();
    const QPoint from = somePoint(*widget);
    const QPoint to = somePoint(*widget);
    QTest::mousePress(widget, Qt::LeftButton, modifiers, from);
    for (int step = 1; step <= 3; ++step)
    {
      QMouseEvent move(QEvent::MouseMove,
                       from + (to - from) * step / 3,
                       widget->mapToGlobal(from + (to - from) * step / 3),
                       Qt::NoButton,
                       Qt::LeftButton,
                       modifiers);
      QApplication::sendEvent(widget, &move);
    }
    QTest::mouseRelease(widget, Qt::LeftButton, modifiers, to);
  }

  void editSetting()
  {
    auto* dock = window.findChild<QDockWidget*>();
    if (!dock)
      return;
    std::vector<QWidget*> editors;
    for (QWidget* editor : dock->findChildren<QWidget*>())
    {
      if (editor->isEnabled() &&
          (qobject_cast<QComboBox*>(editor) || qobject_cast<QCheckBox*>(editor) ||
           qobject_cast<QAbstractSpinBox*>(editor) ||
           (qobject_cast<QLineEdit*>(editor) &&
            !qobject_cast<QAbstractSpinBox*>(editor->parent()) &&
            !qobject_cast<QComboBox*>(editor->parent()))))
        editors.push_back(editor);
    }
    if (editors.empty())
      return;
    QWidget* editor = editors[std::size_t(uniform(0, int(editors.size()) - 1))];
    if (auto* combo = qobject_cast<QComboBox*>(editor))
    {
      if (combo->count() > 0)
        combo->setCurrentIndex(uniform(0, combo->count() - 1));
    }
    else if (auto* check = qobject_cast<QCheckBox*>(editor))
      check->click();
    else if (auto* spin = qobject_cast<QAbstractSpinBox*>(editor))
    {
      spin->stepBy(uniform(-3, 3));
      spin->editingFinished();
    }
    else if (auto* line = qobject_cast<QLineEdit*>(editor))
    {
      // Numbers mostly, in the ranges a user types, and now and then something else.
      const std::vector<QString> texts{ QString::number(uniform(-50, 400)),
                                        QString::number(uniform(0, 100) / 7.0),
                                        "",
                                        "abc",
                                        "1e308" };
      line->setText(texts[std::size_t(chance(0.8) ? uniform(0, 1) : uniform(2, 4))]);
      line->editingFinished();
    }
  }

  void changeTab()
  {
    const auto tabs = window.findChildren<QTabWidget*>();
    if (tabs.isEmpty())
      return;
    QTabWidget* tab = tabs[uniform(0, tabs.size() - 1)];
    if (tab->count() > 0)
      tab->setCurrentIndex(uniform(0, tab->count() - 1));
  }

  void saveSettings()
  {
    QString error;
    window.saveSettings(QString::fromStdString(scratch + "/soak-settings.xml"), error);
  }

  void loadSettings()
  {
    const QString path = QString::fromStdString(scratch + "/soak-settings.xml");
    QString error;
    if (QFile::exists(path))
      window.loadSettings(path, error);
  }

  void fitToData()
  {
    if (explorer::ExplorerView* view = window.currentView())
      view->fitToData();
  }

  void zoom()
  {
    QWidget* widget = someShownView();
    if (!widget)
      return;
    const QPoint at = somePoint(*widget);
    QWheelEvent wheel(at,
                      widget->mapToGlobal(at),
                      QPoint(),
                      QPoint(0, chance(0.5) ? 120 : -120),
                      Qt::NoButton,
                      Qt::NoModifier,
                      Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(widget, &wheel);
  }

  void addDerived()
  {
    if (window.derivedVariables().size() >= mostDerived)
      return;
    std::vector<std::string> numbers;
    const auto study = window.project();
    for (const auto& handle : study->variables())
    {
      const Variable variable = handle.lock();
      if (study->numericValues(variable))
        numbers.push_back(variable.name());
    }
    if (numbers.empty())
      return;
    const auto any = [&]
    { return "`" + numbers[std::size_t(uniform(0, int(numbers.size()) - 1))] + "`"; };
    const std::vector<std::string> forms{ any() + " / " + any(),
                                          "if(" + any() + " > 1, sqrt(" + any() + "), -1)",
                                          "log(" + any() + ") * 2 ^ " + any() };
    QString error;
    window.addDerivedVariable(
      { "derived " + std::to_string(++derivedMade), forms[std::size_t(uniform(0, 2))] }, error);
  }

  void removeDerived()
  {
    const auto& derived = window.derivedVariables();
    if (derived.empty())
      return;
    // A variable still shown somewhere is refused, as for the user.
    QString error;
    window.removeDerivedVariable(derived[std::size_t(uniform(0, int(derived.size()) - 1))].name,
                                 error);
  }

  explorer::ExplorerWindow& window;
  std::mt19937 random;
  std::string scratch;
  int derivedMade = 0;
};

// Lets the views take in what changed and draw.
void settle()
{
  for (int i = 0; i < 3; ++i)
    QApplication::processEvents();
}

std::string firstDifference(const QString& expected, const QString& actual)
{
  const QStringList a = expected.split('\n');
  const QStringList b = actual.split('\n');
  for (int i = 0; i < std::max(a.size(), b.size()); ++i)
  {
    if (a.value(i) != b.value(i))
      return "line " + std::to_string(i + 1) + ": expected \"" +
             a.value(i).trimmed().toStdString() + "\", got \"" +
             b.value(i).trimmed().toStdString() + "\"";
  }
  return {};
}

} // namespace

// What the window shows: its settings (derived variables included), the page of each tab and
// the selection. What the views hold depends on what they show (the 3-D view, the image matrix at
// a large zoom or the line plot's series hold tens of MB each), so memory is compared between two
// moments in the same state: two moments in different states differ by more than the leaks the
// check looks for.
class ShownState
{
public:
  void capture(explorer::ExplorerWindow& window, const std::string& file)
  {
    settingsFile = QString::fromStdString(file);
    QString error;
    if (!window.saveSettings(settingsFile, error))
      throw std::runtime_error("cannot save the settings to compare memory: " +
                               error.toStdString());
    pages.clear();
    for (const QTabWidget* tabs : window.findChildren<QTabWidget*>())
      pages.push_back(tabs->currentIndex());
    selection = window.selection().cases();
  }

  void restore(explorer::ExplorerWindow& window) const
  {
    QString error;
    if (!window.loadSettings(settingsFile, error))
      throw std::runtime_error("cannot load the settings to compare memory: " +
                               error.toStdString());
    const auto tabs = window.findChildren<QTabWidget*>();
    for (int i = 0; i < tabs.size() && i < static_cast<int>(pages.size()); ++i)
      tabs[i]->setCurrentIndex(pages[static_cast<std::size_t>(i)]);
    window.selection().setCases(*selection);
  }

private:
  QString settingsFile;
  std::vector<int> pages;
  explorer::MasterSelection::SharedCases selection;
};

Report run(explorer::ExplorerWindow& window,
           int steps,
           unsigned seed,
           const std::string& scratch,
           std::ostream* log)
{
  // A dialog or a menu a click opens would wait for a user: it is closed at once.
  QTimer closer;
  QObject::connect(&closer,
                   &QTimer::timeout,
                   []
                   {
                     if (QWidget* modal = QApplication::activeModalWidget())
                       modal->close();
                     if (QWidget* popup = QApplication::activePopupWidget())
                       popup->close();
                   });
  closer.start(20);

  settle();
  UndoStack().clear();
  const QString start = window.settingsDocument();
  Report report;
  Monkey monkey(window, seed, scratch);
  monkey.giveMostDerived();
  settle();
  // Memory is compared from the 1,000th step on, once caches have filled; a short run takes its
  // first tenth.
  const int warmUp = steps >= 2000 ? 1000 : std::max(1, steps / 10);
  // QUEN_SOAK_LOG_EVERY=N logs memory more often, to find the action after which it grew.
  const int logEvery = qEnvironmentVariableIsSet("QUEN_SOAK_LOG_EVERY")
                         ? std::max(1, qEnvironmentVariableIntValue("QUEN_SOAK_LOG_EVERY"))
                         : 500;
  ShownState warmedUp;
  auto lastSelection = window.selection().cases();
  for (int step = 0; step < steps; ++step)
  {
    const std::string action = monkey.act();
    ++report.actions[action];
    if (log)
      *log << step << ' ' << action << std::endl;
    settle();
    report.mostDerivedVariables =
      std::max(report.mostDerivedVariables, window.derivedVariables().size());
    if (*window.selection().cases() != *lastSelection)
    {
      ++report.selectionChanges;
      lastSelection = window.selection().cases();
    }
    if (step + 1 == warmUp)
    {
      warmedUp.capture(window, scratch + "/warmed-up-settings.xml");
      warmedUp.restore(window);
      settle();
      report.residentAfterWarmUp = residentMemory();
      report.heapAfterWarmUp = heapInUse();
    }
    // Where memory grew, for whoever reads the log of a failed run.
    if (log && (step + 1) % logEvery == 0)
      *log << "# after " << step + 1 << " steps: " << residentMemory() / (1 << 20)
           << " MB resident, " << heapInUse() / (1 << 20) << " MB in live heap blocks, "
           << window.derivedVariables().size() << " derived variables, " << UndoStack().index()
           << " steps to undo" << std::endl;
  }
  report.steps = steps;
  report.undoSteps = UndoStack().index();
  warmedUp.restore(window);
  settle();
  report.residentAtEnd = residentMemory();
  report.heapAtEnd = heapInUse();

  while (UndoStack().canUndo())
    UndoStack().qUndoStack().undo();
  settle();
  const QString end = window.settingsDocument();
  report.undoneToStart = end == start;
  if (!report.undoneToStart)
    report.firstDifference = firstDifference(start, end);
  return report;
}

} // namespace soak
