#pragma once

#include "ExplorerView.h"

#include <memory>

class ImageMatrixViewProperties;
class ImageTableView;

namespace explorer
{

/// The image matrix view: the shown cases' images in a grid of rows, columns and pages chosen by
/// variables or tags. Selecting cells selects their cases.
class ImageMatrixView : public ViewOfKind<ImageMatrixViewInterface>
{
public:
  explicit ImageMatrixView(const ViewContext& context);
  ~ImageMatrixView() override;

  QString title() const override { return "Image matrix"; }
  std::string shortName() const override { return "images"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;

  std::shared_ptr<ImageMatrixViewProperties> properties() const;
  ImageTableView& imageTable() const;

protected:
  void suspendParts() override;
  void resumeParts() override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
