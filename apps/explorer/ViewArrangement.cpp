#include "ViewArrangement.h"

#include <QSplitter>
#include <QTabWidget>

#include <algorithm>

namespace explorer
{

namespace
{

QList<int> scaled(QList<int> stretches, int total)
{
  int sum = 0;
  for (int stretch : stretches)
    sum += stretch;
  for (int& stretch : stretches)
    stretch = total * stretch / std::max(sum, 1);
  return stretches;
}

} // namespace

QSplitter* arrangeViews(QSplitter& main,
                        const std::vector<ViewKind>& kinds,
                        const std::vector<boost::shared_ptr<ExplorerView>>& views)
{
  while (main.count() > 0)
    delete main.widget(0);
  auto* side = new QSplitter(Qt::Vertical);
  QTabWidget* tabs = nullptr;
  int tabsStretch = 0;
  QList<int> mainSizes;
  QList<int> sideSizes;
  for (std::size_t i = 0; i < kinds.size() && i < views.size(); ++i)
  {
    const ViewKind& kind = kinds[i];
    QWidget* widget = views[i]->widget();
    if (kind.area == ViewArea::Main)
    {
      main.addWidget(widget);
      mainSizes.append(kind.stretch);
    }
    else if (kind.area == ViewArea::Side)
    {
      side->addWidget(widget);
      sideSizes.append(kind.stretch);
    }
    else
    {
      if (!tabs)
      {
        tabs = new QTabWidget();
        tabs->setObjectName("viewTabs");
        side->addWidget(tabs);
      }
      tabs->addTab(widget, views[i]->title());
      tabsStretch = std::max(tabsStretch, kind.stretch);
    }
  }
  if (tabs)
    sideSizes.append(tabsStretch);
  main.addWidget(side);
  main.setSizes(scaled(mainSizes, 650) << 600);
  main.show();
  side->setSizes(scaled(sideSizes, 830));
  return side;
}

} // namespace explorer
