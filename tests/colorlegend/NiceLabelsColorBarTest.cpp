#include "colorlegend/NiceLabelsColorBarWidget.h"
#include "colorlegend/NiceLabelsColorLegendActor.h"
#include "support/RenderedView.h"

#include <gtest/gtest.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActorInternal.h>
#include <vtkTextActor.h>

#include <string>
#include <vector>

namespace
{

// The actor, with its label texts readable.
class InspectableActor : public NiceLabelsColorLegendActor
{
public:
  static InspectableActor* New();
  vtkTypeMacro(InspectableActor, NiceLabelsColorLegendActor);

  std::vector<std::string> labels() const
  {
    std::vector<std::string> texts;
    for (int i = 0; i < this->NumberOfLabelsBuilt; ++i)
      texts.emplace_back(this->P->TextActors[i]->GetInput());
    return texts;
  }
};
vtkStandardNewMacro(InspectableActor);

std::vector<std::string> renderedLabels(double min, double max, int count, bool indexed)
{
  testsupport::keepGraphicsDriverLoaded();
  vtkNew<vtkLookupTable> table;
  table->SetRange(min, max);
  table->SetIndexedLookup(indexed);
  table->Build();
  vtkNew<InspectableActor> actor;
  actor->SetLookupTable(table);
  actor->SetNumberOfLabels(count);
  actor->SetLabelFormat("%G");
  vtkNew<vtkRenderer> renderer;
  renderer->AddActor2D(actor);
  vtkNew<vtkRenderWindow> window;
  window->SetSize(300, 400);
  window->AddRenderer(renderer);
  window->Render();
  return actor->labels();
}

} // namespace

TEST(NiceLabelsColorLegendActor, RendersTheLabelsOnNiceNumbers)
{
  const struct
  {
    double min, max;
    int count;
    bool indexed;
    std::vector<std::string> labels;
  } cases[] = {
    { -1, 1, 3, false, { "-1", "0", "1" } },
    { -0.3,
      0.6,
      10,
      false,
      { "-0.3", "-0.2", "-0.1", "0", "0.1", "0.2", "0.3", "0.4", "0.5", "0.6" } },
    { 2, 6, 1, false, { "4" } },
    { 0, 0, 1, false, { "0" } },
    { 0, 100, 11, false, { "0", "10", "20", "30", "40", "50", "60", "70", "80", "90", "100" } },
    { -1, 1, 3, true, {} },
  };
  for (const auto& c : cases)
  {
    EXPECT_EQ(renderedLabels(c.min, c.max, c.count, c.indexed), c.labels)
      << c.min << ".." << c.max << " with " << c.count << (c.indexed ? " (indexed)" : "");
  }
}
