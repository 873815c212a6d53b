#include "views/ImageMatrixView.h"

#include "PropertyEditors.h"

#include "analyzer_common/SelectionModelInterface.h"
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
#include <QDomDocument>
#include <QDomElement>
#include <QFormLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QSlider>
#include <QVBoxLayout>
#include <boost/make_shared.hpp>

#include <charconv>

namespace explorer
{

namespace
{

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

} // namespace

struct ImageMatrixView::Impl
{
  QPointer<QWidget> container;
  ImageTableView* table = nullptr;
  std::shared_ptr<ImageMatrixViewProperties> properties;
  SignalConnectionCollection connections;
};

ImageMatrixView::ImageMatrixView(const ViewContext& context)
  : ExplorerView(std::make_unique<Serializer>("ImageMatrix"), context.selection)
  , d(std::make_unique<Impl>())
{
  const Project& project = *context.project;
  d->container = new QWidget();
  d->container->setObjectName("imageMatrix");
  auto* layout = new QVBoxLayout(d->container);
  layout->setContentsMargins(0, 0, 0, 0);
  d->properties = std::make_shared<ImageMatrixViewProperties>();
  d->properties->zoom()->setValue(12);
  d->table = new ImageTableView(*d->container,
                                context.pipeline,
                                context.selection,
                                context.images->sharedLoader(),
                                d->properties);
  layout->addWidget(d->table);
  QTableView* cells = &d->table->tableView();
  d->connections.add(context.selection->connectSignalSelectionChanged(
    [cells](const std::set<unsigned long long>&) { scrollToSelectionLater(*cells); }));

  using Matrix = ImageMatrixViewProperties;
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
  saveSetting(boost::make_shared<GenericSerializer<unsigned long long>>("Zoom", p->zoom()),
              "a whole number");
}

ImageMatrixView::~ImageMatrixView()
{
  d->connections.clear();
  delete d->container;
}

QWidget* ImageMatrixView::widget() const
{
  return d->container;
}

void ImageMatrixView::accept(DataViewVisitorInterface& visitor)
{
  visitor.visit(boost::dynamic_pointer_cast<ImageMatrixViewInterface>(shared_from_this()));
}

std::vector<SettingsSection> ImageMatrixView::settingsSections(PropertyEditors& editors)
{
  using Matrix = ImageMatrixViewProperties;
  const auto p = d->properties;
  const Project& project = editors.project();
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  const std::vector<std::pair<QString, Matrix::RowColumnDimensionBy>> axes = {
    { "Variable", Matrix::ByVariable }, { "Tag", Matrix::ByTag }
  };
  form->addRow("Rows by", editors.enumChooser(p->dimensionRowsBy(), axes));
  form->addRow("Row variable", editors.variableChooser(p->rowVar(), false, true));
  form->addRow("Columns by", editors.enumChooser(p->dimensionColumnsBy(), axes));
  form->addRow("Column variable", editors.variableChooser(p->columnVar(), false, true));
  form->addRow(
    "Pages",
    editors.enumChooser<Matrix::PageDimensionBy>(p->dimensionPagesBy(),
                                                 { { "None", Matrix::NoPages },
                                                   { "By variable", Matrix::PageByVariable },
                                                   { "By tag", Matrix::PageByTag } }));
  form->addRow("Page variable", editors.variableChooser(p->pageVar(), false, true));

  // A page value typed as a number is a number; anything else is a text value.
  auto* page = new QLineEdit();
  const auto showPage = [page, p]
  { page->setText(QString::fromStdString(p->pageValue()->value().toString())); };
  showPage();
  editors.follow(*p->pageValue(), showPage);
  QObject::connect(page,
                   &QLineEdit::editingFinished,
                   [&editors, page, p, showPage]
                   {
                     double number = 0;
                     const Variant value = parseNumber(page->text(), number)
                                             ? Variant(number)
                                             : Variant(page->text().toStdString());
                     editors.edit([&] { p->pageValue()->setValue(value); }, showPage);
                   });
  form->addRow("Page value", page);
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
  zoom->setRange(0, 100);
  const auto showZoom = [zoom, p]
  {
    const QSignalBlocker blocker(zoom);
    zoom->setValue(static_cast<int>(std::min<unsigned long long>(p->zoom()->value(), 100)));
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

void ImageMatrixView::suspend()
{
  d->table->suspend();
}

void ImageMatrixView::resume()
{
  d->table->resume();
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
