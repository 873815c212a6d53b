// A host in miniature: a property behind an undoable proxy, the master selection and a study
// built in memory, all reached through the one imported target.
#include "analyzer_common/SelectionModel.h"
#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"

#include <boost/make_shared.hpp>

#include <iostream>

int main()
{
  auto target = boost::make_shared<plexa::Property<double>>(1.0);
  plexa::UndoablePropertyProxy<double> proxy("Zoom", target);
  proxy.setValue(2.0);
  UndoStack().undo();

  SelectionModel selection;
  selection.setSelection({ 42 });

  ProjectBuilder builder;
  builder.setCaseIds({ 42 });
  builder.addNumericVariable("x", { 3.5 });
  const auto project = builder.build();

  const bool ok = target->value() == 1.0 && selection.getSelections().count(42) == 1 &&
                  project->record(42).lock().data(project->variable("x")).toDouble() == 3.5;
  std::cout << (ok ? "consumer ok" : "consumer FAILED") << std::endl;
  return ok ? 0 : 1;
}
