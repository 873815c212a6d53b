#include "ExplorerView.h"

#include "SettingsError.h"

#include "datamanagement/Project.h"
#include "serialization/VariableInfoSerializer.h"
#include "serialize/SerializerInterface.h"

#include <QDomElement>
#include <QItemSelectionModel>
#include <QTableView>
#include <QTimer>
#include <QWidget>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

namespace explorer
{

namespace
{

// Passes everything to the setting it wraps; a value refused while reading is reported with the
// setting's path and, for a single value, the value itself.
class NamedSetting : public SerializerInterface
{
public:
  NamedSetting(std::string view,
               boost::shared_ptr<SerializerInterface> setting,
               std::string expected)
    : view(std::move(view))
    , setting(std::move(setting))
    , expected(std::move(expected))
  {
  }

  QDomElement serialize(QDomDocument& document) override { return setting->serialize(document); }
  void deserialize(QDomElement& element) const override
  {
    const std::string path = view + "/" + setting->name();
    const bool single = element.firstChildElement().isNull() && !element.text().isEmpty();
    const std::string value = "'" + element.text().toStdString() + "'";
    try
    {
      setting->deserialize(element);
    }
    catch (const boost::bad_lexical_cast&)
    {
      throw SettingsError(path + ": " + (single ? value : "a value") + " is not " + expected);
    }
    catch (const SettingsError&)
    {
      throw;
    }
    catch (const std::exception& e)
    {
      throw SettingsError(path + ": " + (single ? value + ": " : "") + e.what());
    }
  }
  std::string name() const override { return setting->name(); }
  void addSubElement(boost::shared_ptr<SerializerInterface> sub) override
  {
    setting->addSubElement(std::move(sub));
  }
  void replaceSubElement(boost::shared_ptr<SerializerInterface> sub) override
  {
    setting->replaceSubElement(std::move(sub));
  }
  void addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> sub) override
  {
    setting->addDeserializeOnlySubElement(std::move(sub));
  }

private:
  std::string view;
  boost::shared_ptr<SerializerInterface> setting;
  std::string expected;
};

} // namespace

void scrollToSelectionLater(QTableView& table, std::function<int()> firstRow)
{
  QTimer::singleShot(0,
                     &table,
                     [view = &table, firstRow = std::move(firstRow)]
                     {
                       if (view->hasFocus() || !view->selectionModel())
                         return;
                       if (firstRow)
                       {
                         if (const int row = firstRow(); row >= 0)
                           view->scrollTo(view->model()->index(row, 0));
                         return;
                       }
                       const QItemSelection selection = view->selectionModel()->selection();
                       if (!selection.isEmpty())
                         view->scrollTo(selection.first().topLeft());
                     });
}

void QueuedDraw::attach(QWidget& target, std::function<void()> drawing)
{
  widget = &target;
  draw = std::move(drawing);
}

void QueuedDraw::now()
{
  pending = false;
  if (widget && draw)
    draw();
}

void QueuedDraw::later()
{
  if (pending || !widget)
    return;
  pending = true;
  // A draw made meanwhile has shown the change already and cleared the flag.
  QTimer::singleShot(0,
                     widget,
                     [this]
                     {
                       if (pending)
                         now();
                     });
}

ExplorerView::~ExplorerView()
{
  viewConnections.clear();
  delete ownWidget;
}

QWidget* ExplorerView::widget() const
{
  return ownWidget;
}

void ExplorerView::setWidget(QWidget* widget)
{
  ownWidget = widget;
}

void ExplorerView::suspend()
{
  viewConnections.block();
  suspendParts();
}

void ExplorerView::resume()
{
  viewConnections.unblock();
  resumeParts();
}

void ExplorerView::saveSetting(boost::shared_ptr<SerializerInterface> setting,
                               const std::string& expected)
{
  serializer().addSubElement(
    boost::make_shared<NamedSetting>(domName(), std::move(setting), expected));
}

void ExplorerView::saveVariableSetting(
  const std::string& element,
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> property,
  const Project& project)
{
  saveSetting(
    boost::make_shared<VariableInfoSerializer>(element, std::move(property), project.variables()));
  variableElementNames.push_back(element);
}

} // namespace explorer
