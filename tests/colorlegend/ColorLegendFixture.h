#pragma once

#include "analyzer_common/UndoStack.h"
#include "colorlegend/ColorLegend.h"
#include "colorlegend/NiceLabelsColorBarWidget.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "support/RenderedView.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>

/// A colour legend over a real lookup table, scalar bar widget, interactor and pipeline, for a
/// study with the variables "range" (0 to 100) and "speed" (0 to 1). The colour variable is an
/// undoable setting, as in a view.
class ColorLegendFixture : public ::testing::Test
{
protected:
  ColorLegendFixture()
  {
    testsupport::keepGraphicsDriverLoaded();
    ProjectBuilder builder;
    builder.setCaseIds({ 1, 2, 3 });
    builder.addNumericVariable("range", { 0, 55, 100 });
    builder.addNumericVariable("speed", { 0, 0.4, 1 });
    project = builder.build();
    pipeline = std::make_unique<DataPipelineManager>(project);
    UndoStack().clear();

    window->SetSize(400, 400);
    window->AddRenderer(renderer);
    interactor->SetRenderWindow(window);
    colorVariable = boost::make_shared<plexa::UndoablePropertyProxy<WeakPtr<Variable>>>(
      "Color Variable",
      boost::make_shared<plexa::Property<WeakPtr<Variable>>>(project->variable("range")));
    legend = std::make_unique<ColorLegend>(
      colorVariable, viewVisible, *pipeline, lookupTable, *interactor, widget.Get());
  }

  ~ColorLegendFixture() override { UndoStack().clear(); }

  std::pair<double, double> tableRange() const
  {
    const double* r = lookupTable->GetRange();
    return { r[0], r[1] };
  }
  int labels() const { return widget->GetScalarBarActor()->GetNumberOfLabels(); }

  std::shared_ptr<const Project> project;
  std::unique_ptr<DataPipelineManager> pipeline;
  vtkNew<vtkRenderer> renderer;
  vtkNew<vtkRenderWindow> window;
  vtkNew<vtkRenderWindowInteractor> interactor;
  vtkNew<vtkLookupTable> lookupTable;
  vtkNew<NiceLabelsColorBarWidget> widget;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> colorVariable;
  boost::shared_ptr<plexa::Property<bool>> viewVisible =
    boost::make_shared<plexa::Property<bool>>(true);
  std::unique_ptr<ColorLegend> legend;
  UndoStack stack;
};
