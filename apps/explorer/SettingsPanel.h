#pragma once

#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class DataPipelineManager;
class Project;

namespace explorer
{

class ExplorerView;

/// The side panel: the settings sections of every view, in order, and the range filters of the
/// pipeline. Edits go through the properties and the pipeline, so they are validated (and the
/// properties' edits undoable); a refused value is reported through `report` and the editor
/// shows the setting again.
class SettingsPanel : public QWidget
{
  Q_OBJECT

public:
  using Report = std::function<void(const QString&)>;

  SettingsPanel(std::shared_ptr<const Project> project,
                DataPipelineManager& pipeline,
                const std::vector<ExplorerView*>& views,
                Report report,
                QWidget* parent = nullptr);
  ~SettingsPanel() override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
