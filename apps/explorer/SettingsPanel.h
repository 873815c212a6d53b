#pragma once

#include <QWidget>

#include <functional>
#include <memory>

class DataPipelineManager;
class Project;

namespace explorer
{

class ImageMatrixView;
class ScatterPlotView;

/// The side panel: editors bound to the views' settings (their properties) and to the range
/// filters of the pipeline. Edits go through the properties, so they are validated and undoable;
/// a refused value is reported through `report` and the editor shows the setting again.
class SettingsPanel : public QWidget
{
  Q_OBJECT

public:
  using Report = std::function<void(const QString&)>;

  SettingsPanel(std::shared_ptr<const Project> project,
                DataPipelineManager& pipeline,
                ScatterPlotView& scatter,
                ImageMatrixView& images,
                Report report,
                QWidget* parent = nullptr);
  ~SettingsPanel() override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
