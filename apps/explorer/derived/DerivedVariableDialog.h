#pragma once

#include "derived/DerivedVariables.h"
#include "derived/Expression.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;

namespace explorer
{

/// Asks for a derived variable's name and expression. The study's variables are listed beside
/// (a double-click puts one into the expression, in backquotes when its name needs them), and
/// what is wrong with the expression shows as it is typed. When the runs carry series, a figure
/// of each run's series (its final value, maximum, integral...) can be put in too. OK hands the
/// variable to `make`, which answers an empty text when it was made, or the problem, shown while
/// the dialog stays.
class DerivedVariableDialog : public QDialog
{
public:
  /// The runs' series: their tags, and the columns of a tag's series.
  struct Series
  {
    std::vector<std::string> tags;
    std::function<std::vector<std::string>(const std::string& tag)> columnsOf;
  };

  DerivedVariableDialog(QWidget* parent,
                        const QString& title,
                        const std::vector<std::string>& variables,
                        Expression::NameLookup kindOf,
                        const Series& series,
                        const DerivedVariable& initial,
                        std::function<QString(const DerivedVariable&)> make);

  void accept() override;

private:
  void check();
  QWidget* seriesChooser(const Series& series);

  QLineEdit* name = nullptr;
  QLineEdit* expression = nullptr;
  QListWidget* list = nullptr;
  QLabel* problem = nullptr;
  Expression::NameLookup kindOf;
  std::function<QString(const DerivedVariable&)> make;
};

} // namespace explorer
