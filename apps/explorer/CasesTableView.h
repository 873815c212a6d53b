#pragma once

#include "Views.h"

#include <memory>

class DataPipelineManagerInterface;
class QTableView;
class SelectionModelInterface;

namespace explorer
{

/// The table of the shown cases (the pipeline's output): one row per case, one column per
/// variable. Selecting rows selects their cases.
class CasesTableView
  : public TableViewInterface
  , public ExplorerView
{
public:
  CasesTableView(const DataPipelineManagerInterface& pipeline,
                 boost::shared_ptr<SelectionModelInterface> selection);
  ~CasesTableView() override;

  QWidget* widget() const override;
  void accept(DataViewVisitorInterface& visitor) override;
  std::string shortName() const override { return "table"; }
  std::string selectionSummary() const override;
  void suspend() override;
  void resume() override;
  void refresh() override;

  QTableView& table() const;
  int selectedRows() const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
