#pragma once

#include "ExplorerView.h"

#include <memory>

namespace explorer
{

/// The images of the selected cases at their own size: one case, or up to four side by side,
/// each with a caption of its values. Previous and Next (or Left and Right) step through the
/// selected cases, Up and Down through each case's images; one zoom applies to every pane and
/// they scroll together. Images come through the window's shared cache; a case without the image
/// or with an unreadable one shows the reason instead.
class SelectedImageView : public ViewOfKind<SelectedImageViewInterface>
{
public:
  explicit SelectedImageView(const ViewContext& context);
  ~SelectedImageView() override;

  QString title() const override { return "Selected image"; }
  std::string shortName() const override { return "selected-image"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;

  /// Cases shown side by side, 1 to 4; the zoom in percent, 10 to 400.
  boost::shared_ptr<plexa::PropertyAbstract<short>> sideBySide() const;
  boost::shared_ptr<plexa::PropertyAbstract<short>> zoom() const;
  /// Steps through the selected cases (by the number shown side by side) and through the images
  /// of each case; both wrap around.
  void stepCases(int step);
  void stepImages(int step);
  /// The case ids shown, left to right, and the captions under them.
  std::vector<unsigned long long> shownCases() const;
  std::vector<QString> captions() const;

protected:
  void suspendParts() override;
  void resumeParts() override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
