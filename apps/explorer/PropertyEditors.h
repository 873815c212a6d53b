#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "properties/PropertyAbstract.h"
#include "signals/SignalConnectionCollection.h"

#include <QComboBox>
#include <QSignalBlocker>
#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class AxisDetailsInterface;
class ColorLegend;
class Project;
class QCheckBox;
class QLineEdit;
class QListWidget;
class QWidget;

namespace explorer
{

/// The shortest text that reads back as the same double; empty for NaN.
QString numberText(double value);
/// Reads a number typed by the user (surrounding blanks allowed); false when it is none.
bool parseNumber(const QString& text, double& value);

/// Makes editor widgets bound to properties. Each editor shows its property's value and follows
/// its changes; an edit goes through the property, so it is validated and undoable. A refused
/// value is reported through `report` and the editor shows the property's value again.
///
/// The connections to the properties are owned here: the editors must not outlive this object's
/// clear() or destruction, and the properties must outlive both.
class PropertyEditors
{
public:
  using Report = std::function<void(const QString&)>;
  using VariableProperty = plexa::PropertyAbstract<WeakPtr<Variable>>;

  PropertyEditors(std::shared_ptr<const Project> project, Report report);
  ~PropertyEditors();
  PropertyEditors(const PropertyEditors&) = delete;
  PropertyEditors& operator=(const PropertyEditors&) = delete;

  const Project& project() const { return *studyProject; }
  void reportProblem(const QString& message) const { report(message); }
  /// Disconnects every editor from its property.
  void clear() { connections.clear(); }

  /// A choice among the study's variables (numeric ones only, or all), and of none of them
  /// under the name `none` ("(none)", say) unless it is empty.
  QComboBox* variableChooser(boost::shared_ptr<VariableProperty> property,
                             bool numericOnly,
                             const QString& none);
  /// A choice among the study's tags, image tags first, and of none under the name `none`.
  QComboBox* tagChooser(boost::shared_ptr<plexa::PropertyAbstract<std::string>> property,
                        const QString& none);
  QLineEdit* numberEditor(boost::shared_ptr<plexa::PropertyAbstract<double>> property);
  QCheckBox* checkBox(const QString& text,
                      boost::shared_ptr<plexa::PropertyAbstract<bool>> property);
  /// A choice among named values of an enumeration.
  template<typename E>
  QComboBox* enumChooser(boost::shared_ptr<plexa::PropertyAbstract<E>> property,
                         const std::vector<std::pair<QString, E>>& choices);
  /// A list of check boxes; `apply` receives the checked entries, in the list's order, after
  /// every change. A reorderable list's entries can be dragged to another place. With a
  /// `followed` property, the checks are read again from `isChecked` whenever it changes (an
  /// undo, loaded settings).
  QListWidget* checkList(const std::vector<std::string>& entries,
                         std::function<bool(const std::string&)> isChecked,
                         std::function<void(const std::vector<std::string>&)> apply,
                         bool reorderable = false,
                         const plexa::PropertyItemInterface* followed = nullptr);
  /// Check boxes of the study's variables bound to a list of them. A reorderable list shows the
  /// chosen ones first, in their order, and gives them the order they are dragged into.
  QListWidget* variableList(
    boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>> property,
    bool reorderable);
  /// Minimum, maximum and custom grid spacing of a chart axis.
  QWidget* axisEditor(const QString& title, AxisDetailsInterface& axis);
  /// Visibility, range and number of labels of a colour legend.
  QWidget* colorLegendEditor(ColorLegend& legend);

  /// Runs an edit; a refused value is reported and the editor is brought back by `restore`.
  void edit(const std::function<void()>& change, const std::function<void()>& restore) const;
  /// After each accepted edit made with `editor` (one made by this object), runs `followUp` in
  /// the same undo step, named `step`: a change that settles what the edit left unsettled.
  void followEdits(QWidget* editor, const QString& step, std::function<void()> followUp);
  /// Keeps `show` called whenever the property changes.
  void follow(const plexa::PropertyItemInterface& property, const std::function<void()>& show);

private:
  // Runs an edit made with `editor`, and its follow-up when it has one.
  void editWith(QWidget* editor,
                const std::function<void()>& change,
                const std::function<void()>& restore) const;

  struct FollowUp
  {
    QString step;
    std::function<void()> run;
  };
  std::map<const QWidget*, FollowUp> followUps;
  std::shared_ptr<const Project> studyProject;
  Report report;
  SignalConnectionCollection connections;
};

template<typename E>
QComboBox* PropertyEditors::enumChooser(boost::shared_ptr<plexa::PropertyAbstract<E>> property,
                                        const std::vector<std::pair<QString, E>>& choices)
{
  auto* combo = new QComboBox();
  for (const auto& choice : choices)
    combo->addItem(choice.first);
  const auto show = [combo, choices, property]
  {
    const QSignalBlocker blocker(combo);
    for (std::size_t i = 0; i < choices.size(); ++i)
      if (choices[i].second == property->value())
        combo->setCurrentIndex(static_cast<int>(i));
  };
  show();
  follow(*property, show);
  QObject::connect(
    combo,
    QOverload<int>::of(&QComboBox::activated),
    [this, combo, choices, property, show](int i)
    {
      editWith(
        combo, [&] { property->setValue(choices[static_cast<std::size_t>(i)].second); }, show);
    });
  return combo;
}

} // namespace explorer
