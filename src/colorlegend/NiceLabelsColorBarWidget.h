#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <vtkScalarBarWidget.h>

/// A scalar bar widget that always draws a NiceLabelsColorLegendActor (created by the widget,
/// with a vertical title separation of 3 pixels).
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT NiceLabelsColorBarWidget : public vtkScalarBarWidget
{
public:
  static NiceLabelsColorBarWidget* New();
  vtkTypeMacro(NiceLabelsColorBarWidget, vtkScalarBarWidget);
  void PrintSelf(ostream& os, vtkIndent indent) override;

protected:
  NiceLabelsColorBarWidget();
  ~NiceLabelsColorBarWidget() override;

private:
  NiceLabelsColorBarWidget(const NiceLabelsColorBarWidget&) = delete;
  void operator=(const NiceLabelsColorBarWidget&) = delete;
};
