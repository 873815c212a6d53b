#include "support/WarningGuard.h"

#include <QString>
#include <QtGlobal>
#include <gtest/gtest.h>
#include <vtkObjectFactory.h>
#include <vtkOutputWindow.h>
#include <vtkSmartPointer.h>

#include <algorithm>

namespace testsupport
{

namespace
{

std::vector<ExpectWarnings*>& activeExpectations()
{
  static std::vector<ExpectWarnings*> active;
  return active;
}

// Messages of the platform itself, not of the code under test.
bool isEnvironmentNoise(const std::string& text)
{
  static const char* const noise[] = {
    "This plugin does not support propagateSizeHints",
    "QStandardPaths: XDG_RUNTIME_DIR not set",
    "QStandardPaths: runtime directory",
  };
  return std::any_of(std::begin(noise),
                     std::end(noise),
                     [&](const char* fragment)
                     { return text.find(fragment) != std::string::npos; });
}

void report(const std::string& origin, const std::string& text)
{
  if (isEnvironmentNoise(text) || claimWarning(text))
  {
    return;
  }
  ADD_FAILURE() << "unexpected " << origin << ": " << text;
}

void qtMessageHandler(QtMsgType type, const QMessageLogContext&, const QString& message)
{
  if (type == QtDebugMsg || type == QtInfoMsg)
  {
    return;
  }
  report("Qt message", message.toStdString());
}

class FailingOutputWindow : public vtkOutputWindow
{
public:
  static FailingOutputWindow* New();
  vtkTypeMacro(FailingOutputWindow, vtkOutputWindow);

  void DisplayErrorText(const char* text) override { report("VTK error", text); }
  void DisplayWarningText(const char* text) override { report("VTK warning", text); }
  void DisplayGenericWarningText(const char* text) override { report("VTK warning", text); }
  void DisplayText(const char*) override {}
  void DisplayDebugText(const char*) override {}
};

vtkStandardNewMacro(FailingOutputWindow);

} // namespace

bool claimWarning(const std::string& text)
{
  for (ExpectWarnings* expectation : activeExpectations())
  {
    if (text.find(expectation->fragment) != std::string::npos)
    {
      expectation->messages.push_back(text);
      return true;
    }
  }
  return false;
}

void installWarningHandlers()
{
  qInstallMessageHandler(qtMessageHandler);
  auto window = vtkSmartPointer<FailingOutputWindow>::New();
  vtkOutputWindow::SetInstance(window);
}

ExpectWarnings::ExpectWarnings(std::string fragment)
  : fragment(std::move(fragment))
{
  activeExpectations().push_back(this);
}

ExpectWarnings::~ExpectWarnings()
{
  auto& active = activeExpectations();
  active.erase(std::remove(active.begin(), active.end(), this), active.end());
}

} // namespace testsupport
