#pragma once

#include "derived/DerivedVariables.h"
#include "derived/Expression.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;

namespace explorer
{

/// Asks for a derived variable's name and expression. The study's variables are listed beside
/// (a double-click puts one into the expression, in backquotes when its name needs them), and
/// what is wrong with the expression shows as it is typed. OK hands the variable to `make`,
/// which answers an empty text when it was made, or the problem, shown while the dialog stays.
class DerivedVariableDialog : public QDialog
{
public:
  DerivedVariableDialog(QWidget* parent,
                        const QString& title,
                        const std::vector<std::string>& variables,
                        Expression::NameLookup kindOf,
                        const DerivedVariable& initial,
                        std::function<QString(const DerivedVariable&)> make);

  void accept() override;

  /// How a variable is written in an expression: as it is, or in backquotes.
  static QString quoted(const std::string& name);

private:
  void check();

  QLineEdit* name = nullptr;
  QLineEdit* expression = nullptr;
  QListWidget* list = nullptr;
  QLabel* problem = nullptr;
  Expression::NameLookup kindOf;
  std::function<QString(const DerivedVariable&)> make;
};

} // namespace explorer
