#pragma once

#include "Views.h"

#include <memory>

class DataPipelineManagerInterface;
class ImageFileLoaderInterface;
class ImageMatrixViewProperties;
class ImageTableView;
class Project;
class SelectionModelInterface;

namespace explorer
{

/// The image matrix view: the shown cases' images in a grid of rows, columns and pages chosen by
/// variables or tags. Selecting cells selects their cases.
class ImageMatrixView
  : public ImageMatrixViewInterface
  , public ExplorerView
{
public:
  ImageMatrixView(std::shared_ptr<const Project> project,
                  std::shared_ptr<const DataPipelineManagerInterface> pipeline,
                  boost::shared_ptr<SelectionModelInterface> selection,
                  std::shared_ptr<ImageFileLoaderInterface> loader);
  ~ImageMatrixView() override;

  QWidget* widget() const override;
  void accept(DataViewVisitorInterface& visitor) override;
  std::string shortName() const override { return "images"; }
  std::string selectionSummary() const override;
  void suspend() override;
  void resume() override;
  void refresh() override;

  std::shared_ptr<ImageMatrixViewProperties> properties() const;
  ImageTableView& imageTable() const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
