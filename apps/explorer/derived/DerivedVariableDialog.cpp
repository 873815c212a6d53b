#include "derived/DerivedVariableDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>

namespace explorer
{

DerivedVariableDialog::DerivedVariableDialog(QWidget* parent,
                                             const QString& title,
                                             const std::vector<std::string>& variables,
                                             Expression::NameLookup kindOf,
                                             const DerivedVariable& initial,
                                             std::function<QString(const DerivedVariable&)> make)
  : QDialog(parent)
  , kindOf(std::move(kindOf))
  , make(std::move(make))
{
  setWindowTitle(title);
  setMinimumWidth(520);
  name = new QLineEdit(QString::fromStdString(initial.name));
  expression = new QLineEdit(QString::fromStdString(initial.expression));
  expression->setPlaceholderText("range / speed ^ 2");
  list = new QListWidget();
  for (const auto& variable : variables)
    list->addItem(QString::fromStdString(variable));
  problem = new QLabel();
  problem->setWordWrap(true);
  auto* help = new QLabel("+ - * / ^, ( ), < <= > >= == !=, and or not, if(c, a, b), abs sqrt "
                          "exp log log10 sin cos tan floor ceil pow min max, pi, e. Names with "
                          "spaces or symbols go in backquotes: `in:Depth [ft]`.");
  help->setWordWrap(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);

  auto* form = new QFormLayout();
  form->addRow("Name:", name);
  form->addRow("Expression:", expression);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(help);
  layout->addWidget(new QLabel("Variables (double-click to insert):"));
  layout->addWidget(list);
  layout->addWidget(problem);
  layout->addWidget(buttons);

  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(expression, &QLineEdit::textChanged, this, [this] { check(); });
  connect(name, &QLineEdit::textChanged, this, [this] { check(); });
  connect(list,
          &QListWidget::itemDoubleClicked,
          this,
          [this](QListWidgetItem* item)
          {
            expression->insert(quoted(item->text().toStdString()));
            expression->setFocus();
          });
  check();
}

QString DerivedVariableDialog::quoted(const std::string& name)
{
  static const QRegularExpression plain("^[A-Za-z_][A-Za-z0-9_]*$");
  const QString text = QString::fromStdString(name);
  return plain.match(text).hasMatch() ? text : "`" + text + "`";
}

void DerivedVariableDialog::check()
{
  QString why;
  if (name->text().trimmed().isEmpty())
    why = "A derived variable needs a name.";
  else
  {
    try
    {
      Expression::parse(expression->text().toStdString(), kindOf);
    }
    catch (const ExpressionError& e)
    {
      why = QString::fromStdString(e.what());
    }
  }
  problem->setText(why);
  findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->setEnabled(why.isEmpty());
}

void DerivedVariableDialog::accept()
{
  const QString why =
    make({ name->text().trimmed().toStdString(), expression->text().toStdString() });
  if (!why.isEmpty())
  {
    problem->setText(why);
    return;
  }
  QDialog::accept();
}

} // namespace explorer
