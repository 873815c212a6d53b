#include "SettingsFile.h"

#include "ExplorerView.h"
#include "analyzer_common/GenericUndoCommand.h"
#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "datapipeline/RangeFilter.h"
#include "serialize/SerializerInterface.h"

#include <QDomDocument>
#include <QDomElement>
#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <utility>

namespace explorer
{

namespace
{

// Visits every place the document names a variable: the texts of the elements a view declares as
// variable settings (attribute empty), "Variable" elements of lists and the filters' variables
// (attribute "name" or "variable").
void visitVariableNames(QDomElement element,
                        const std::vector<std::string>& variableElements,
                        const std::function<void(QDomElement&, const QString& attribute)>& visit)
{
  const std::string tag = element.tagName().toStdString();
  if (std::find(variableElements.begin(), variableElements.end(), tag) != variableElements.end() &&
      !element.text().isEmpty())
    visit(element, {});
  if (tag == "Variable" && element.hasAttribute("name"))
    visit(element, "name");
  if (tag == "Filter" && element.hasAttribute("variable"))
    visit(element, "variable");
  for (QDomElement child = element.firstChildElement(); !child.isNull();
       child = child.nextSiblingElement())
    visitVariableNames(child, variableElements, visit);
}

QString nameAt(const QDomElement& element, const QString& attribute)
{
  return attribute.isEmpty() ? element.text() : element.attribute(attribute);
}

// Every variable name the document refers to, to check them all before applying anything.
void collectVariableNames(const QDomElement& element,
                          const std::vector<std::string>& variableElements,
                          std::set<std::string>& names)
{
  visitVariableNames(element,
                     variableElements,
                     [&names](QDomElement& at, const QString& attribute)
                     { names.insert(nameAt(at, attribute).toStdString()); });
}

QDomDocument parsed(const QString& xml, const std::string& source)
{
  QDomDocument document;
  QString error;
  int line = 0;
  int column = 0;
  if (!document.setContent(xml, &error, &line, &column))
    throw SettingsError(source + ":" + std::to_string(line) + ":" + std::to_string(column) +
                        ": the settings are not well-formed XML: " + error.toStdString());
  const QDomElement root = document.documentElement();
  if (root.tagName() != "ExplorerSettings")
    throw SettingsError(source + ": these are not explorer settings (the root element is \"" +
                        root.tagName().toStdString() + R"(", not "ExplorerSettings"))");
  return document;
}

double number(const QDomElement& filter, const char* attribute, const std::string& source)
{
  bool ok = false;
  const double value = filter.attribute(attribute).toDouble(&ok);
  if (!ok)
    throw SettingsError(source + ": the filter on \"" + filter.attribute("variable").toStdString() +
                        "\" has no number as " + attribute);
  return value;
}

void applyFilters(const QDomElement& root,
                  DataPipelineManager& pipeline,
                  const Project& project,
                  const std::string& source)
{
  const QDomElement filters = root.firstChildElement("Filters");
  if (filters.isNull())
    return;
  for (const auto& filter : pipeline.filters())
    pipeline.removeFilter(filter->variable());
  for (QDomElement filter = filters.firstChildElement("Filter"); !filter.isNull();
       filter = filter.nextSiblingElement("Filter"))
  {
    const auto variable = project.variable(filter.attribute("variable").toStdString());
    const double min = number(filter, "min", source);
    const double max = number(filter, "max", source);
    if (min > max)
      throw SettingsError(source + ": the filter on \"" +
                          filter.attribute("variable").toStdString() +
                          "\" has its minimum above its maximum");
    pipeline.setRangeFilter(variable, min, max);
    pipeline.setFilterEnabled(variable, filter.attribute("enabled", "1") != "0");
  }
}

void applyAll(const QDomElement& root,
              const SettingsFile::StudySettings& study,
              const std::vector<ExplorerView*>& views,
              DataPipelineManager& pipeline,
              const Project& project,
              const std::string& source)
{
  for (const auto& setting : study)
  {
    QDomElement element = root.firstChildElement(QString::fromStdString(setting->name()));
    if (!element.isNull())
      setting->deserialize(element);
  }
  applyFilters(root, pipeline, project, source);
  for (ExplorerView* view : views)
  {
    QDomElement element = root.firstChildElement(QString::fromStdString(view->domName()));
    if (!element.isNull())
      view->serializer().deserialize(element);
  }
}

} // namespace

QString SettingsFile::write(const StudySettings& study,
                            const std::vector<ExplorerView*>& views,
                            const DataPipelineManager& pipeline,
                            const DerivedVariables& derived)
{
  QDomDocument document;
  document.appendChild(
    document.createProcessingInstruction("xml", R"(version="1.0" encoding="UTF-8")"));
  QDomElement root = document.createElement("ExplorerSettings");
  root.setAttribute("version", 1);
  document.appendChild(root);
  for (const auto& setting : study)
    root.appendChild(setting->serialize(document));
  for (ExplorerView* view : views)
    root.appendChild(view->serializer().serialize(document));
  QDomElement filters = document.createElement("Filters");
  for (const auto& filter : pipeline.filters())
  {
    const auto range = boost::dynamic_pointer_cast<RangeFilter>(filter);
    if (!range)
      continue;
    QDomElement element = document.createElement("Filter");
    element.setAttribute("variable", QString::fromStdString(filter->variable().lock().name()));
    element.setAttribute(
      "min", QString::fromStdString(boost::lexical_cast<std::string>(range->range().first)));
    element.setAttribute(
      "max", QString::fromStdString(boost::lexical_cast<std::string>(range->range().second)));
    element.setAttribute("enabled", pipeline.isFilterEnabled(filter->variable()) ? 1 : 0);
    filters.appendChild(element);
  }
  root.appendChild(filters);
  QString text = document.toString(2);
  return derived.empty() ? text : withDerivedVariables(text, derived);
}

DerivedVariables SettingsFile::derivedVariablesOf(const QString& xml, const std::string& source)
{
  const QDomDocument document = parsed(xml, source);
  DerivedVariables derived;
  for (QDomElement element = document.documentElement()
                               .firstChildElement("DerivedVariables")
                               .firstChildElement("DerivedVariable");
       !element.isNull();
       element = element.nextSiblingElement("DerivedVariable"))
  {
    derived.push_back(
      { element.attribute("name").toStdString(), element.attribute("expression").toStdString() });
    if (derived.back().name.empty())
      throw SettingsError(source + ": a derived variable has no name");
  }
  return derived;
}

QString SettingsFile::withDerivedVariables(const QString& xml, const DerivedVariables& derived)
{
  QDomDocument document = parsed(xml, "the settings");
  QDomElement root = document.documentElement();
  root.removeChild(root.firstChildElement("DerivedVariables"));
  if (!derived.empty())
  {
    QDomElement list = document.createElement("DerivedVariables");
    for (const auto& variable : derived)
    {
      QDomElement element = document.createElement("DerivedVariable");
      element.setAttribute("name", QString::fromStdString(variable.name));
      element.setAttribute("expression", QString::fromStdString(variable.expression));
      list.appendChild(element);
    }
    // First, so that a reader learns the variables before the settings that name them.
    root.insertBefore(list, root.firstChild());
  }
  return document.toString(2);
}

QString SettingsFile::withVariableRenamed(const QString& xml,
                                          const std::vector<ExplorerView*>& views,
                                          const std::string& from,
                                          const std::string& to)
{
  QDomDocument document = parsed(xml, "the settings");
  const QDomElement root = document.documentElement();
  const QString oldName = QString::fromStdString(from);
  const QString newName = QString::fromStdString(to);
  const auto rename = [&](QDomElement& element, const QString& attribute)
  {
    if (nameAt(element, attribute) != oldName)
      return;
    if (!attribute.isEmpty())
    {
      element.setAttribute(attribute, newName);
      return;
    }
    while (element.hasChildNodes())
      element.removeChild(element.firstChild());
    element.appendChild(document.createTextNode(newName));
  };
  visitVariableNames(root.firstChildElement("Filters"), {}, rename);
  for (ExplorerView* view : views)
    visitVariableNames(root.firstChildElement(QString::fromStdString(view->domName())),
                       view->variableElements(),
                       rename);
  return document.toString(2);
}

std::vector<std::string> SettingsFile::usesOf(const QString& xml,
                                              const std::vector<ExplorerView*>& views,
                                              const std::string& variable)
{
  const QDomDocument document = parsed(xml, "the settings");
  const QDomElement root = document.documentElement();
  std::vector<std::string> uses;
  std::set<std::string> names;
  for (ExplorerView* view : views)
  {
    names.clear();
    collectVariableNames(root.firstChildElement(QString::fromStdString(view->domName())),
                         view->variableElements(),
                         names);
    if (names.count(variable) != 0)
      uses.push_back(view->title().toStdString());
  }
  names.clear();
  collectVariableNames(root.firstChildElement("Filters"), {}, names);
  if (names.count(variable) != 0)
    uses.emplace_back("the range filters");
  return uses;
}

void SettingsFile::apply(const QString& xml,
                         const std::string& source,
                         const StudySettings& study,
                         const std::vector<ExplorerView*>& views,
                         DataPipelineManager& pipeline,
                         const Project& project)
{
  const QDomDocument document = parsed(xml, source);
  const QDomElement root = document.documentElement();

  std::set<std::string> names;
  collectVariableNames(root.firstChildElement("Filters"), {}, names);
  for (ExplorerView* view : views)
    collectVariableNames(root.firstChildElement(QString::fromStdString(view->domName())),
                         view->variableElements(),
                         names);
  std::string unknown;
  for (const auto& name : names)
  {
    if (project.variable(name).lock().isNull())
      unknown += (unknown.empty() ? "\"" : ", \"") + name + "\"";
  }
  if (!unknown.empty())
    throw SettingsError(source +
                        ": the settings name variables this study does not have: " + unknown);

  QDomDocument before;
  before.setContent(write(study, views, pipeline));
  {
    // The settings' own changes are not recorded one by one: loading is one step.
    UndoStack::SuspendUndoRecording notRecorded;
    try
    {
      applyAll(root, study, views, pipeline, project, source);
    }
    catch (const std::exception& e)
    {
      const std::string problem = e.what();
      applyAll(before.documentElement(), study, views, pipeline, project, source);
      throw SettingsError(source + ": a setting was refused, nothing was changed: " + problem);
    }
  }
}

void SettingsFile::load(const QString& xml,
                        const std::string& source,
                        const StudySettings& study,
                        const std::vector<ExplorerView*>& views,
                        DataPipelineManager& pipeline,
                        const Project& project,
                        const DeleteSignaler& owner)
{
  const QString before = write(study, views, pipeline);
  apply(xml, source, study, views, pipeline, project);
  const QDomDocument document = parsed(xml, source);
  QDomDocument beforeDocument;
  beforeDocument.setContent(before);

  // Both documents applied cleanly once; undo and redo apply them again. The stack runs redo on
  // push, when the settings are already in place.
  const auto applying =
    [study, views, pipeline = &pipeline, project = &project, source](const QDomDocument& doc)
  {
    return [=]
    {
      UndoStack::SuspendUndoRecording replaying;
      try
      {
        applyAll(doc.documentElement(), study, views, *pipeline, *project, source);
      }
      catch (const std::exception&)
      {
        // Cannot happen for documents that applied before; a half-applied step is still better
        // than an exception escaping the undo stack.
      }
    };
  };
  auto applied = std::make_shared<bool>(true);
  const auto redo = applying(document);
  UndoStack().push(new GenericUndoCommand(
    [applied, redo]
    {
      if (!std::exchange(*applied, false))
        redo();
    },
    applying(beforeDocument),
    owner,
    "Load Settings",
    -1,
    nullptr));
}

} // namespace explorer
