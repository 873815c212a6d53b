#pragma once

#include "ExplorerView.h"

#include <QImage>

#include <memory>

namespace explorer
{

/// Two runs' images side by side with their difference: the first two selected cases, or a
/// pinned reference case and the first other selected case. The images compared are those with
/// the same tag (the first image of the first case by default; Up and Down pick another). The
/// difference is drawn black where the images agree, through red and yellow to white where they
/// differ most, with its scale; a missing or unreadable image is named instead.
class ImageDiffView : public ViewOfKind<ImageDiffViewInterface>
{
public:
  explicit ImageDiffView(const ViewContext& context);
  ~ImageDiffView() override;

  QString title() const override { return "Image difference"; }
  std::string shortName() const override { return "image-difference"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;

  /// Keeps the first selected case as the reference until unpinned; saved with the settings.
  void pinReference(bool pinned);
  /// The two cases compared (none when fewer than two can be had) and what the view says.
  std::vector<unsigned long long> comparedCases() const;
  QString message() const;
  /// The largest difference found, 0 to 255.
  int largestDifference() const;

  /// The per-pixel difference of two images as grey levels: for each pixel the largest absolute
  /// difference of its red, green and blue. Images of any format (grey, indexed, 16 bits per
  /// channel) are compared as 8-bit RGB; the second is scaled to the first one's size when they
  /// differ. `largest` receives the largest difference.
  static QImage absoluteDifference(const QImage& first, const QImage& second, int& largest);
  /// A grey-level difference in colour: 0 black, then red, yellow, and `largest` white.
  static QImage heatMap(const QImage& difference, int largest);

protected:
  void suspendParts() override;
  void resumeParts() override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
