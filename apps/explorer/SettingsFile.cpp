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
#include <memory>
#include <set>
#include <utility>

namespace explorer
{

namespace
{

// Every variable name the document refers to, to check them all before applying anything:
// the texts of the elements a view declares as variable settings, "Variable" elements of lists
// and the filters' variables.
void collectVariableNames(const QDomElement& element,
                          const std::vector<std::string>& variableElements,
                          std::set<std::string>& names)
{
  const std::string tag = element.tagName().toStdString();
  if (std::find(variableElements.begin(), variableElements.end(), tag) != variableElements.end() &&
      !element.text().isEmpty())
    names.insert(element.text().toStdString());
  if (tag == "Variable" && element.hasAttribute("name"))
    names.insert(element.attribute("name").toStdString());
  if (tag == "Filter" && element.hasAttribute("variable"))
    names.insert(element.attribute("variable").toStdString());
  for (QDomElement child = element.firstChildElement(); !child.isNull();
       child = child.nextSiblingElement())
    collectVariableNames(child, variableElements, names);
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
                            const DataPipelineManager& pipeline)
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
  return document.toString(2);
}

void SettingsFile::load(const QString& xml,
                        const std::string& source,
                        const StudySettings& study,
                        const std::vector<ExplorerView*>& views,
                        DataPipelineManager& pipeline,
                        const Project& project,
                        const DeleteSignaler& owner)
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
    // The settings' own changes are not recorded one by one: loading is one step, below.
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

  // Both documents applied cleanly once; undo and redo apply them again. The stack runs redo on
  // push, when the settings are already in place.
  const auto apply =
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
  const auto redo = apply(document);
  UndoStack().push(new GenericUndoCommand(
    [applied, redo]
    {
      if (!std::exchange(*applied, false))
        redo();
    },
    apply(before),
    owner,
    "Load Settings",
    -1,
    nullptr));
}

} // namespace explorer
