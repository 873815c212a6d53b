#pragma once

#include "analyzer_common/SuspendableInterface.h"
#include "datamanagement/TagGroup.h"
#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <QSize>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// The settings every image view shares, each undoable and named for the property editors:
/// "Show Labels" (captions under the images), "Variables In Label", "Tag Groups to Show", "Tags
/// to Show" and "Zoom"; plus allTagsToShow, the tag list that tag-dimensioned axes use, kept
/// current by the object itself.
///
/// A new object starts without captions, with the current project's discrete variables (the
/// inputs the study varied, at most three) ready as caption variables, every tag group of the
/// project to show, no single tags, and zoom 25. allTagsToShow is the tags of the tag groups to
/// show, group by group in the project's sorted order, followed by the tags to show that are
/// not among them, without repeats.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageViewProperties : public SuspendableInterface
{
public:
  ImageViewProperties();
  ~ImageViewProperties() override;
  ImageViewProperties(const ImageViewProperties&) = delete;
  ImageViewProperties& operator=(const ImageViewProperties&) = delete;

  /// While suspended, changes of the tag settings do not reach allTagsToShow; resume() does not
  /// catch up.
  void suspend() override;
  void resume() override;

  virtual boost::shared_ptr<plexa::PropertyAbstract<bool>> showLabels() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>>
  variablesInLabel() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<TagGroup>>>>
  tagGroupsToShow() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> tagsToShow() const;
  /// A percentage-like level; see zoomLevelToImageSize. Successive changes merge into one undo
  /// entry.
  virtual boost::shared_ptr<plexa::PropertyAbstract<unsigned long long>> zoom() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> allTagsToShow()
    const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

/// The square image size for a zoom level: level / 100 * 750 + 50 pixels a side, truncated
/// (0 gives 50, 25 gives 237, 100 gives 800). Levels past 100 are not clamped; a side too large
/// for an int is clamped to the largest int.
QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT QSize zoomLevelToImageSize(unsigned long long zoom);
