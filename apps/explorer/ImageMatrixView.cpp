#include "ImageMatrixView.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManagerInterface.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableView.h"
#include "images/QImageTableView.h"
#include "properties/PropertyAbstract.h"
#include "serialization/EnumSerializer.h"
#include "serialization/GenericSerializer.h"
#include "serialization/TagSerializers.h"
#include "serialization/VariableInfoSerializer.h"
#include "serialize/Serializer.h"

#include <QDomDocument>
#include <QDomElement>
#include <QPointer>
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
};

ImageMatrixView::ImageMatrixView(std::shared_ptr<const Project> project,
                                 std::shared_ptr<const DataPipelineManagerInterface> pipeline,
                                 boost::shared_ptr<SelectionModelInterface> selection,
                                 std::shared_ptr<ImageFileLoaderInterface> loader)
  : ExplorerView(std::make_unique<Serializer>("ImageMatrix"), selection)
  , d(std::make_unique<Impl>())
{
  d->container = new QWidget();
  d->container->setObjectName("imageMatrix");
  auto* layout = new QVBoxLayout(d->container);
  layout->setContentsMargins(0, 0, 0, 0);
  d->properties = std::make_shared<ImageMatrixViewProperties>();
  d->properties->zoom()->setValue(12);
  d->table = new ImageTableView(
    *d->container, std::move(pipeline), selection, std::move(loader), d->properties);
  layout->addWidget(d->table);

  using Matrix = ImageMatrixViewProperties;
  NamedValueTranslator<Matrix::RowColumnDimensionBy> axes;
  axes.add("Variable", Matrix::ByVariable);
  axes.add("Tag", Matrix::ByTag);
  NamedValueTranslator<Matrix::PageDimensionBy> pages;
  pages.add("None", Matrix::NoPages);
  pages.add("Tag", Matrix::PageByTag);
  pages.add("Variable", Matrix::PageByVariable);
  const auto variables = project->variables();
  const auto& p = d->properties;
  const std::set<std::string> knownTags(project->tags().begin(), project->tags().end());
  SerializerInterface& settings = serializer();
  settings.addSubElement(
    boost::make_shared<VariableInfoSerializer>("RowVariable", p->rowVar(), variables));
  settings.addSubElement(boost::make_shared<EnumSerializer<Matrix::RowColumnDimensionBy>>(
    "DimensionRowsBy", p->dimensionRowsBy(), axes));
  settings.addSubElement(
    boost::make_shared<VariableInfoSerializer>("ColumnVariable", p->columnVar(), variables));
  settings.addSubElement(boost::make_shared<EnumSerializer<Matrix::RowColumnDimensionBy>>(
    "DimensionColumnsBy", p->dimensionColumnsBy(), axes));
  settings.addSubElement(
    boost::make_shared<VariableInfoSerializer>("PageVariable", p->pageVar(), variables));
  settings.addSubElement(boost::make_shared<VariantTextSerializer>("PageValue", p->pageValue()));
  settings.addSubElement(boost::make_shared<EnumSerializer<Matrix::PageDimensionBy>>(
    "DimensionPagesBy", p->dimensionPagesBy(), pages));
  settings.addSubElement(
    boost::make_shared<GenericSerializer<bool>>("ShowLabels", p->showLabels()));
  settings.addSubElement(boost::make_shared<VariableListSerializer>(
    "VariablesInLabel", p->variablesInLabel(), variables));
  settings.addSubElement(boost::make_shared<TagGroupsToShowSerializer>(p->tagGroupsToShow()));
  settings.addSubElement(boost::make_shared<TagsToShowSerializer>(p->tagsToShow(), knownTags));
  settings.addSubElement(
    boost::make_shared<GenericSerializer<unsigned long long>>("Zoom", p->zoom()));
}

ImageMatrixView::~ImageMatrixView()
{
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
