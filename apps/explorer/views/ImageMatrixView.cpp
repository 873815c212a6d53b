#include "views/ImageMatrixView.h"

#include "ChangesWhileHidden.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "StudyFiles.h"

#include "analyzer_common/UndoStack.h"
#include "analyzer_common/VariantDisplayText.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "images/ImageCache.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableView.h"
#include "images/QImageTableView.h"
#include "properties/PropertyAbstract.h"
#include "serialization/EnumSerializer.h"
#include "serialization/GenericSerializer.h"
#include "serialization/TagGroupsToShowSerializer.h"
#include "serialization/TagsToShowSerializer.h"
#include "serialization/VariableInfoSerializer.h"
#include "serialization/VariableListSerializer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDomDocument>
#include <QDomElement>
#include <QEvent>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QSlider>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>
#include <vtkInformation.h>
#include <vtkObjectFactory.h>
#include <vtkTableAlgorithm.h>

#include <charconv>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeinfo>

namespace explorer
{

namespace
{

/// A table of no cases: the grid's input for a study without image files. Its grid is never
/// shown (a message stands in its place), and over the study's cases it would lay every case out
/// once, 320 MB at ten million.
class vtkNoCases : public vtkTableAlgorithm
{
public:
  static vtkNoCases* New();
  vtkTypeMacro(vtkNoCases, vtkTableAlgorithm);

protected:
  vtkNoCases() { SetNumberOfInputPorts(0); }
  int RequestData(vtkInformation*, vtkInformationVector**, vtkInformationVector*) override
  {
    return 1;
  }
};
vtkStandardNewMacro(vtkNoCases);

// The most a cell is zoomed to, as the zoom slider goes (800 pixels a side). A saved level beyond
// it asks for images Qt cannot scale to (at level 10,000, 75,050 pixels a side, its smooth
// scaling crashes; at 4,000 it makes an image of 2.7 GB per file).
constexpr unsigned long long mostZoom = 100;

/// The zoom level as a whole number of 0 to mostZoom; another text or level is refused as a text
/// that is no value (boost::bad_lexical_cast) and leaves the zoom as it was.
class ZoomSerializer : public Serializer
{
public:
  explicit ZoomSerializer(boost::shared_ptr<plexa::PropertyAbstract<unsigned long long>> zoom)
    : Serializer("Zoom")
    , zoom(std::move(zoom))
  {
  }

private:
  void serializeSelf(QDomElement& element) const override
  {
    element.appendChild(element.ownerDocument().createTextNode(QString::number(zoom->value())));
  }

  void deserializeSelf(QDomElement& element) const override
  {
    const auto level = savedtext::parse<unsigned long long>(element.text().toStdString());
    if (level > mostZoom)
      throw boost::bad_lexical_cast(typeid(std::string), typeid(unsigned long long));
    zoom->setValue(level);
  }

  boost::shared_ptr<plexa::PropertyAbstract<unsigned long long>> zoom;
};

/// Saves a value as its text; reads a text that is a number back as a number.
class VariantTextSerializer : public Serializer
{
public:
  VariantTextSerializer(const std::string& name,
                        boost::shared_ptr<plexa::PropertyAbstract<Variant>> property)
    : Serializer(name)
    , property(std::move(property))
  {
  }

private:
  void serializeSelf(QDomElement& element) const override
  {
    const Variant value = property->value();
    element.setAttribute("type", value.isString() ? "text" : value.isEmpty() ? "empty" : "number");
    element.appendChild(
      element.ownerDocument().createTextNode(QString::fromStdString(value.toString())));
  }

  void deserializeSelf(QDomElement& element) const override
  {
    const std::string text = element.text().toStdString();
    const QString type = element.attribute("type", "text");
    if (type == "empty")
    {
      property->setValue(Variant());
      return;
    }
    if (type == "number")
    {
      double number = 0;
      const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
      if (result.ec == std::errc() && result.ptr == text.data() + text.size())
      {
        property->setValue(Variant(number));
        return;
      }
    }
    property->setValue(Variant(text));
  }

  boost::shared_ptr<plexa::PropertyAbstract<Variant>> property;
};

// Why a study shows no image at all, or nothing when it has images.
QString withoutImages(const Project& project)
{
  if (project.auxFiles().empty())
    return "This study has no image files.";
  std::set<QString> extensions;
  for (const auto& file : project.auxFiles())
    extensions.insert(QFileInfo(QString::fromStdString(file.lock().filePath())).suffix());
  QStringList listed;
  for (const QString& extension : extensions)
    listed << (extension.isEmpty() ? QString("no extension") : "." + extension);
  return "The files of this study are not images (" + listed.join(", ") + ").";
}

using Matrix = ImageMatrixViewProperties;

// The values a page can show: the page variable's values among the study's cases, or the tags.
std::vector<Variant> pageValues(const Project& project, const Matrix& properties)
{
  std::vector<Variant> values;
  if (properties.dimensionPagesBy()->value() == Matrix::PageByTag)
  {
    std::vector<std::string> tags = studyfiles::imageTags(project);
    for (const auto& tag : project.tags())
      if (std::find(tags.begin(), tags.end(), tag) == tags.end())
        tags.push_back(tag);
    for (const auto& tag : tags)
      values.emplace_back(tag);
    return values;
  }
  const Variable variable = properties.pageVar()->value().lock();
  if (variable.isNull())
    return values;
  // Read from the study's columns: a handle per record is a gigabyte of them at ten million.
  std::set<Variant> distinct;
  if (const auto* numbers = project.numericValues(variable))
  {
    for (double number : *numbers)
      distinct.insert(Variant(number));
  }
  else if (const auto* texts = project.textValues(variable))
  {
    const std::set<std::string_view> words(texts->begin(), texts->end());
    for (std::string_view word : words)
      distinct.insert(Variant(std::string(word)));
  }
  else
  {
    for (const auto& record : project.records())
      distinct.insert(record.lock().data(variable));
  }
  return { distinct.begin(), distinct.end() };
}

} // namespace

// The library's grid lays every shown case out again at each change of the shown cases (a
// filter, a brush): at ten million cases, a third of a brush's time, for a grid nobody sees while
// the matrix is behind another tab or the study has no images (a message stands in its place).
// The grid is suspended while it is hidden or its view is, and laid out when both are shown.
class GridWhileShown : public QObject
{
public:
  explicit GridWhileShown(ImageTableView& grid)
    : shown(&grid)
    , grid(grid)
  {
    grid.installEventFilter(this);
    update();
  }

  /// The view is suspended (its settings are being loaded, say), or resumed.
  void viewSuspended(bool suspended)
  {
    viewSuspends = suspended;
    update();
  }

private:
  bool eventFilter(QObject*, QEvent* event) override
  {
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
      update();
    return false;
  }

  void update()
  {
    const bool wanted = viewSuspends || !shown || !shown->isVisible();
    if (wanted == suspended)
      return;
    suspended = wanted;
    if (suspended)
      grid.suspend();
    else
      grid.resume();
  }

  QPointer<QWidget> shown;
  ImageTableView& grid;
  bool viewSuspends = false;
  bool suspended = false;
};

struct ImageMatrixView::Impl
{
  QPointer<QWidget> container;
  ImageTableView* table = nullptr;
  std::shared_ptr<ImageMatrixViewProperties> properties;
  std::unique_ptr<ChangesWhileHidden> changes;
  std::unique_ptr<GridWhileShown> whileShown;
};

ImageMatrixView::ImageMatrixView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("ImageMatrix"), context.selection)
  , d(std::make_unique<Impl>())
{
  const Project& project = *context.project;
  d->container = new QWidget();
  setWidget(d->container);
  d->container->setObjectName("imageMatrix");
  auto* layout = new QStackedLayout(d->container);
  d->properties = std::make_shared<ImageMatrixViewProperties>();
  d->properties->zoom()->setValue(12);
  // A layout that shows something on any study: never by a constant, and image files only
  // where the study lists others beside them.
  const defaults::MatrixChoice chosen = defaults::matrix(
    project, d->properties->columnVar()->value(), d->properties->rowVar()->value());
  d->properties->columnVar()->setValue(chosen.column);
  d->properties->rowVar()->setValue(chosen.row);
  const std::vector<std::string> imageTags = studyfiles::imageTags(project);
  if (!imageTags.empty() && studyfiles::hasOtherFiles(project))
  {
    d->properties->dimensionPagesBy()->setValue(ImageMatrixViewProperties::PageByTag);
    d->properties->pageValue()->setValue(Variant(imageTags.front()));
  }
  // The grid shows the master's sorted list itself, and only while it is shown: the library's
  // view would otherwise be told every change as a set of every selected case.
  auto picks = boost::make_shared<MasterPicks>(context.selection);
  d->table = imageTags.empty() ? new ImageTableView(*d->container,
                                                    vtkSmartPointer<vtkNoCases>::New(),
                                                    std::move(picks),
                                                    context.images->sharedLoader(),
                                                    d->properties)
                               : new ImageTableView(*d->container,
                                                    context.pipeline,
                                                    std::move(picks),
                                                    context.images->sharedLoader(),
                                                    d->properties);
  ImageTableView* table = d->table;
  d->whileShown = std::make_unique<GridWhileShown>(*table);
  const boost::shared_ptr<MasterSelection> master = context.selection;
  table->showSelectedCases(master->cases());
  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->container,
    *master,
    ChangesWhileHidden::Steps{
      {}, [table, master](const auto&) { table->showSelectedCases(master->cases()); }, {} });
  ChangesWhileHidden* changes = d->changes.get();
  connections().add(master->connectCasesChanged([changes](const MasterSelection::SharedCases& ids)
                                                { changes->selectionChanged(*ids); }));
  layout->addWidget(d->table);
  if (imageTags.empty())
  {
    auto* reason = new QLabel(withoutImages(project));
    reason->setObjectName("imageMatrixMessage");
    reason->setAlignment(Qt::AlignCenter);
    reason->setWordWrap(true);
    layout->addWidget(reason);
    layout->setCurrentWidget(reason);
  }
  QTableView* cells = &d->table->tableView();
  connections().add(context.selection->connectCasesChanged(
    [cells](const MasterSelection::SharedCases&) { scrollToSelectionLater(*cells); }));

  NamedValueTranslator<Matrix::RowColumnDimensionBy> axes;
  axes.add("Variable", Matrix::ByVariable);
  axes.add("Tag", Matrix::ByTag);
  NamedValueTranslator<Matrix::PageDimensionBy> pages;
  pages.add("None", Matrix::NoPages);
  pages.add("Tag", Matrix::PageByTag);
  pages.add("Variable", Matrix::PageByVariable);
  const auto variables = project.variables();
  const auto& p = d->properties;
  const std::set<std::string> knownTags(project.tags().begin(), project.tags().end());
  saveVariableSetting("RowVariable", p->rowVar(), project);
  saveSetting(boost::make_shared<EnumSerializer<Matrix::RowColumnDimensionBy>>(
    "DimensionRowsBy", p->dimensionRowsBy(), axes));
  saveVariableSetting("ColumnVariable", p->columnVar(), project);
  saveSetting(boost::make_shared<EnumSerializer<Matrix::RowColumnDimensionBy>>(
    "DimensionColumnsBy", p->dimensionColumnsBy(), axes));
  saveVariableSetting("PageVariable", p->pageVar(), project);
  saveSetting(boost::make_shared<VariantTextSerializer>("PageValue", p->pageValue()));
  saveSetting(boost::make_shared<EnumSerializer<Matrix::PageDimensionBy>>(
    "DimensionPagesBy", p->dimensionPagesBy(), pages));
  saveSetting(boost::make_shared<GenericSerializer<bool>>("ShowLabels", p->showLabels()), "0 or 1");
  saveSetting(boost::make_shared<VariableListSerializer>(
    "VariablesInLabel", p->variablesInLabel(), variables));
  saveSetting(boost::make_shared<TagGroupsToShowSerializer>(p->tagGroupsToShow()));
  saveSetting(boost::make_shared<TagsToShowSerializer>(p->tagsToShow(), knownTags));
  saveSetting(boost::make_shared<ZoomSerializer>(p->zoom()),
              "a zoom level, a whole number of 0 to " + std::to_string(mostZoom));
}

ImageMatrixView::~ImageMatrixView()
{
  // The master's signal reaches `changes`, which goes with d before the view's connections do.
  connections().clear();
}

std::vector<SettingsSection> ImageMatrixView::settingsSections(PropertyEditors& editors)
{
  using Matrix = ImageMatrixViewProperties;
  const auto p = d->properties;
  const Project& project = editors.project();
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  const std::vector<std::pair<QString, Matrix::RowColumnDimensionBy>> axes = {
    { "By variable", Matrix::ByVariable }, { "By tag", Matrix::ByTag }
  };
  // An axis laid out by tags shows the tags to show: with none chosen yet, the image tags are
  // chosen with it, in the same step. Its variable has no say meanwhile.
  const auto axisEditors =
    [&](const QString& name,
        const boost::shared_ptr<plexa::PropertyAbstract<Matrix::RowColumnDimensionBy>>& by,
        const boost::shared_ptr<PropertyEditors::VariableProperty>& variable)
  {
    QComboBox* mode = editors.enumChooser(by, axes);
    QComboBox* chooser = editors.variableChooser(variable, false, "(none)");
    const auto enable = [chooser, by] { chooser->setEnabled(by->value() == Matrix::ByVariable); };
    enable();
    editors.follow(*by, enable);
    editors.followEdits(mode,
                        "Change " + name + " By",
                        [p, &project, by]
                        {
                          if (by->value() == Matrix::ByTag && p->tagsToShow()->value().empty())
                          {
                            std::vector<std::string> tags = studyfiles::imageTags(project);
                            if (tags.empty())
                              tags = project.tags();
                            p->tagsToShow()->setValue(tags);
                          }
                        });
    form->addRow(name + " by", mode);
    form->addRow(name + " variable", chooser);
  };
  axisEditors("Rows", p->dimensionRowsBy(), p->rowVar());
  axisEditors("Columns", p->dimensionColumnsBy(), p->columnVar());

  QComboBox* pages =
    editors.enumChooser<Matrix::PageDimensionBy>(p->dimensionPagesBy(),
                                                 { { "None", Matrix::NoPages },
                                                   { "By variable", Matrix::PageByVariable },
                                                   { "By tag", Matrix::PageByTag } });
  form->addRow("Pages", pages);
  QComboBox* pageVariable = editors.variableChooser(p->pageVar(), false, "(none)");
  form->addRow("Page variable", pageVariable);

  // The page shown: one of the values the page variable takes (or a tag), stepped through with
  // the buttons. Paging by a variable starts on its first value.
  auto* pageRow = new QWidget();
  auto* pageLayout = new QHBoxLayout(pageRow);
  pageLayout->setContentsMargins(0, 0, 0, 0);
  auto* previous = new QPushButton("<");
  auto* page = new QComboBox();
  page->setObjectName("imageMatrixPage");
  auto* next = new QPushButton(">");
  for (QPushButton* button : { previous, next })
    button->setMaximumWidth(28);
  pageLayout->addWidget(previous);
  pageLayout->addWidget(page, 1);
  pageLayout->addWidget(next);
  auto values = std::make_shared<std::vector<Variant>>();
  const auto showPage = [page, pageVariable, previous, next, p, values, &project]
  {
    const QSignalBlocker blocker(page);
    *values = pageValues(project, *p);
    page->clear();
    for (const Variant& value : *values)
      page->addItem(QString::fromStdString(variantDisplayText(value)));
    const auto at = std::find(values->begin(), values->end(), p->pageValue()->value());
    page->setCurrentIndex(at == values->end() ? -1 : static_cast<int>(at - values->begin()));
    const bool paged = p->dimensionPagesBy()->value() != Matrix::NoPages;
    pageVariable->setEnabled(p->dimensionPagesBy()->value() == Matrix::PageByVariable);
    for (QWidget* widget : std::initializer_list<QWidget*>{ page, previous, next })
      widget->setEnabled(paged && !values->empty());
  };
  showPage();
  for (const plexa::PropertyItemInterface* setting :
       std::initializer_list<const plexa::PropertyItemInterface*>{
         p->pageValue().get(), p->pageVar().get(), p->dimensionPagesBy().get() })
    editors.follow(*setting, showPage);
  const auto choosePage = [&editors, p, values, showPage](int index)
  {
    if (index >= 0 && index < static_cast<int>(values->size()))
      editors.edit([&] { p->pageValue()->setValue((*values)[static_cast<std::size_t>(index)]); },
                   showPage);
  };
  QObject::connect(page, QOverload<int>::of(&QComboBox::activated), choosePage);
  QObject::connect(previous,
                   &QPushButton::clicked,
                   [page, choosePage] { choosePage(std::max(page->currentIndex() - 1, 0)); });
  QObject::connect(next,
                   &QPushButton::clicked,
                   [page, choosePage]
                   { choosePage(std::min(page->currentIndex() + 1, page->count() - 1)); });
  // A page value that is not among the values shows an empty page: the first value instead.
  const auto firstPage = [p, &project]
  {
    if (p->dimensionPagesBy()->value() == Matrix::NoPages)
      return;
    const std::vector<Variant> all = pageValues(project, *p);
    if (!all.empty() && std::find(all.begin(), all.end(), p->pageValue()->value()) == all.end())
      p->pageValue()->setValue(all.front());
  };
  editors.followEdits(pages, "Change Dimension Pages By", firstPage);
  editors.followEdits(pageVariable, "Change Page Variable", firstPage);
  form->addRow("Page", pageRow);
  form->addRow(editors.checkBox("Show labels", p->showLabels()));

  form->addRow("Label variables", editors.variableList(p->variablesInLabel(), false));
  form->addRow("Tags to show",
               editors.checkList(
                 project.tags(),
                 [p](const std::string& tag)
                 {
                   const auto shown = p->tagsToShow()->value();
                   return std::find(shown.begin(), shown.end(), tag) != shown.end();
                 },
                 [&editors, p](const std::vector<std::string>& checked)
                 { editors.edit([&] { p->tagsToShow()->setValue(checked); }, [] {}); },
                 false,
                 p->tagsToShow().get()));

  auto* zoom = new QSlider(Qt::Horizontal);
  zoom->setRange(0, static_cast<int>(mostZoom));
  const auto showZoom = [zoom, p]
  {
    const QSignalBlocker blocker(zoom);
    zoom->setValue(static_cast<int>(std::min(p->zoom()->value(), mostZoom)));
  };
  showZoom();
  editors.follow(*p->zoom(), showZoom);
  QObject::connect(
    zoom,
    &QSlider::valueChanged,
    [&editors, p, showZoom](int value) {
      editors.edit([&] { p->zoom()->setValue(static_cast<unsigned long long>(value)); }, showZoom);
    });
  form->addRow("Zoom", zoom);
  return { { title(), box } };
}

std::string ImageMatrixView::selectionSummary() const
{
  return std::to_string(d->table->numSelections()) + " selected cells";
}

void ImageMatrixView::suspendParts()
{
  d->whileShown->viewSuspended(true);
}

void ImageMatrixView::resumeParts()
{
  d->whileShown->viewSuspended(false);
  d->changes->changed(false);
}

void ImageMatrixView::refresh()
{
  d->table->tableView().viewport()->update();
}

std::shared_ptr<ImageMatrixViewProperties> ImageMatrixView::properties() const
{
  return d->properties;
}

ImageTableView& ImageMatrixView::imageTable() const
{
  return *d->table;
}

} // namespace explorer
