#include "Harnesses.h"

#include "datamanagement/CinemaReader.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datamanagement/SeriesReader.h"
#include "datamanagement/StudyFormatError.h"
#include "datamanagement/StudyReader.h"
#include "datamanagement/TableReader.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/ValueRangeValidator.h"
#include "serialization/EnumSerializer.h"
#include "serialization/GenericSerializer.h"
#include "serialization/TagGroupsToShowSerializer.h"
#include "serialization/TagsToShowSerializer.h"
#include "serialization/ValueRangeSerializer.h"
#include "serialization/VariableInfoSerializer.h"
#include "serialization/VariableListSerializer.h"
#include "serialize/Serializer.h"
#include "serialize/VectorSerializer.h"

#include <QDir>
#include <QDomDocument>
#include <QTemporaryDir>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>
#include <boost/tokenizer.hpp>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace fuzz
{

namespace
{

enum Mode : std::int32_t
{
  First = 0,
  Second = 1
};

std::shared_ptr<const Project> smallProject()
{
  static const std::shared_ptr<const Project> project = []
  {
    ProjectBuilder builder;
    builder.setCaseIds({ 1, 2 });
    builder.addNumericVariable("x", { 1, 2 });
    builder.addTextVariable("label", { "a", "b" });
    builder.addAuxFile(1, "a.png", { "plot:a", "final" });
    return builder.build();
  }();
  return project;
}

} // namespace

void settings(const std::uint8_t* data, std::size_t size)
{
  QDomDocument document;
  if (!document.setContent(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size))))
    return;
  const auto project = smallProject();
  Project::setProject(project);
  using Bounded = plexa::BoundedValueValidator<short>;
  auto show = boost::make_shared<plexa::Property<bool>>(false);
  auto count = boost::make_shared<plexa::Property<short>>(
    short(15),
    boost::make_shared<Bounded>(short(3), Bounded::Inclusive, short(40), Bounded::Inclusive));
  auto mode = boost::make_shared<plexa::Property<Mode>>(First);
  auto range = boost::make_shared<plexa::Property<ValueRange_s<double>>>(
    ValueRange_s<double>{ 0, 1 }, boost::make_shared<plexa::ValueRangeValidator<double>>());
  auto zoom = boost::make_shared<plexa::Property<unsigned long long>>(25ULL);
  auto tags = boost::make_shared<plexa::Property<std::vector<std::string>>>();
  auto groups = boost::make_shared<plexa::Property<std::vector<WeakPtr<TagGroup>>>>();
  auto variable = boost::make_shared<plexa::Property<WeakPtr<Variable>>>();
  auto variables = boost::make_shared<plexa::Property<std::vector<WeakPtr<Variable>>>>();
  NamedValueTranslator<Mode> modes;
  modes.add("First", First);
  modes.add("Second", Second);

  Serializer root(document.documentElement().tagName().toStdString());
  root.addSubElement(boost::make_shared<GenericSerializer<bool>>("Show", show));
  root.addSubElement(boost::make_shared<GenericSerializer<short>>("NumLabels", count));
  root.addSubElement(boost::make_shared<EnumSerializer<Mode>>("Mode", mode, modes));
  root.addSubElement(boost::make_shared<ValueRangeSerializer<double>>("Range", range));
  root.addSubElement(boost::make_shared<GenericSerializer<unsigned long long>>("Zoom", zoom));
  root.addSubElement(
    boost::make_shared<TagsToShowSerializer>(tags, std::set<std::string>{ "final", "plot:a" }));
  root.addSubElement(boost::make_shared<TagGroupsToShowSerializer>(groups));
  root.addSubElement(
    boost::make_shared<VariableInfoSerializer>("XVariable", variable, project->variables()));
  root.addSubElement(
    boost::make_shared<VariableListSerializer>("Variables", variables, project->variables()));
  QDomElement element = document.documentElement();
  try
  {
    root.deserialize(element);
  }
  catch (const boost::bad_lexical_cast&)
  {
  }
  catch (const std::out_of_range&)
  {
  }
  catch (const boost::escaped_list_error&)
  {
  }
  catch (const plexa::InvalidPropertyValueException&)
  {
  }
  // Whatever was read, the settings hold values their validators accept.
  if (count->value() < 3 || count->value() > 40 || range->value().min > range->value().max)
    std::abort();
  QDomDocument written;
  written.appendChild(root.serialize(written));
}

void list(const std::uint8_t* data, std::size_t size)
{
  const std::string text(reinterpret_cast<const char*>(data), size);
  try
  {
    StringVectorSerializer::split(text);
  }
  catch (const boost::escaped_list_error&)
  {
  }
  std::vector<std::string> strings;
  std::string::size_type start = 0;
  while (start <= text.size())
  {
    const auto end = text.find('\0', start);
    strings.push_back(
      text.substr(start, end == std::string::npos ? std::string::npos : end - start));
    if (end == std::string::npos)
      break;
    start = end + 1;
  }
  std::string joined;
  for (std::size_t i = 0; i < strings.size(); ++i)
    joined += (i ? "," : "") + StringVectorSerializer::stringValue(strings[i]);
  if (StringVectorSerializer::split(joined) != strings)
    std::abort();
}

void study(const std::uint8_t* data, std::size_t size)
{
  static QTemporaryDir folder;
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto cut = text.find('\f');
  {
    std::ofstream cases(folder.filePath("cases.csv").toStdString(),
                        std::ios::binary | std::ios::trunc);
    cases << text.substr(0, cut);
  }
  const std::string auxPath = folder.filePath("auxfiles.csv").toStdString();
  if (cut == std::string::npos)
    QFile::remove(QString::fromStdString(auxPath));
  else
    std::ofstream(auxPath, std::ios::binary | std::ios::trunc) << text.substr(cut + 1);
  try
  {
    const auto project = readStudy(folder.path().toStdString());
    // A study that reads is consistent: every file belongs to a case of the study.
    for (const auto& file : project->auxFiles())
    {
      if (project->record(file.lock().record().lock().caseId()).lock().isNull())
        std::abort();
    }
  }
  catch (const StudyFormatError&)
  {
  }
}

void tables(const std::uint8_t* data, std::size_t size)
{
  static QTemporaryDir folder;
  static const bool made = QDir(folder.path()).mkpath("runs.cdb");
  (void)made;
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string table = folder.filePath("runs.csv").toStdString();
  const std::string cinema = folder.filePath("runs.cdb").toStdString();
  std::ofstream(table, std::ios::binary | std::ios::trunc) << text;
  std::ofstream(cinema + "/data.csv", std::ios::binary | std::ios::trunc) << text;
  // A study that reads is consistent: every file belongs to a case of the study.
  const auto consistent = [](const Project& project)
  {
    for (const auto& file : project.auxFiles())
      if (project.record(file.lock().record().lock().caseId()).lock().isNull())
        std::abort();
  };
  try
  {
    consistent(*readRunTable(table, {}));
  }
  catch (const StudyFormatError&)
  {
  }
  try
  {
    consistent(*readCinemaDatabase(cinema, {}));
  }
  catch (const StudyFormatError&)
  {
  }
  try
  {
    // A series that reads has a column per name, all of one length.
    const SeriesTable series = readSeriesTable(table);
    if (series.columns.size() != series.names.size())
      std::abort();
    for (const auto& column : series.columns)
      if (column.size() != series.rows())
        std::abort();
  }
  catch (const StudyFormatError&)
  {
  }
}

} // namespace fuzz
