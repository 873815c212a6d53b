#include "derived/DerivedVariableDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace explorer
{

DerivedVariableDialog::DerivedVariableDialog(QWidget* parent,
                                             const QString& title,
                                             const std::vector<std::string>& variables,
                                             Expression::NameLookup kindOf,
                                             const Series& series,
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
  if (!series.tags.empty())
    layout->addWidget(seriesChooser(series));
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
            expression->insert(
              QString::fromStdString(Expression::quoted(item->text().toStdString())));
            expression->setFocus();
          });
  check();
}

QWidget* DerivedVariableDialog::seriesChooser(const Series& series)
{
  auto* box = new QGroupBox("From each run's series");
  auto* tag = new QComboBox();
  for (const auto& name : series.tags)
    tag->addItem(QString::fromStdString(name));
  auto* figure = new QComboBox();
  const std::pair<const char*, SeriesFeature::Kind> figures[] = {
    { "final value of Y", SeriesFeature::Final },
    { "minimum of Y", SeriesFeature::Minimum },
    { "maximum of Y", SeriesFeature::Maximum },
    { "mean of Y", SeriesFeature::Mean },
    { "X at the maximum of Y", SeriesFeature::XAtMaximum },
    { "integral of Y over X", SeriesFeature::Integral },
    { "first X where Y crosses the value", SeriesFeature::FirstCrossing },
  };
  for (const auto& [label, kind] : figures)
    figure->addItem(label, int(kind));
  auto* x = new QComboBox();
  auto* y = new QComboBox();
  auto* value = new QLineEdit("0");
  auto* insert = new QPushButton("Insert");
  auto* form = new QFormLayout(box);
  form->addRow("Series:", tag);
  form->addRow("Figure:", figure);
  form->addRow("X:", x);
  form->addRow("Y:", y);
  form->addRow("Value:", value);
  form->addRow(insert);

  const auto fillColumns = [series, tag, x, y]
  {
    x->clear();
    y->clear();
    for (const auto& column : series.columnsOf(tag->currentText().toStdString()))
    {
      x->addItem(QString::fromStdString(column));
      y->addItem(QString::fromStdString(column));
    }
    // The first column is most often time or position, the second what changes along it.
    y->setCurrentIndex(y->count() > 1 ? 1 : 0);
  };
  const auto enableFields = [figure, x, value]
  {
    const auto kind = SeriesFeature::Kind(figure->currentData().toInt());
    x->setEnabled(SeriesFeature::takesX(kind));
    value->setEnabled(kind == SeriesFeature::FirstCrossing);
  };
  connect(tag, &QComboBox::currentTextChanged, this, fillColumns);
  connect(figure, qOverload<int>(&QComboBox::currentIndexChanged), this, enableFields);
  connect(insert,
          &QPushButton::clicked,
          this,
          [this, tag, figure, x, y, value]
          {
            SeriesFeature feature;
            feature.kind = SeriesFeature::Kind(figure->currentData().toInt());
            feature.tag = tag->currentText().toStdString();
            feature.x = x->currentText().toStdString();
            feature.y = y->currentText().toStdString();
            bool ok = false;
            feature.value = value->text().toDouble(&ok);
            if (feature.kind == SeriesFeature::FirstCrossing && !ok)
            {
              problem->setText("The value Y crosses must be a number.");
              return;
            }
            expression->insert(QString::fromStdString(feature.text()));
            expression->setFocus();
          });
  fillColumns();
  enableFields();
  return box;
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
