#include "images/ImageViewProperties.h"
#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "signals/SignalConnectionCollection.h"

#include <boost/make_shared.hpp>

#include <climits>
#include <set>

namespace
{

using TagGroups = std::vector<WeakPtr<TagGroup>>;

/// The tag groups to show, kept without repeats: a group chosen twice is stored once, at its
/// first place.
class TagGroupsToShowProperty : public plexa::Property<TagGroups>
{
public:
  explicit TagGroupsToShowProperty(const TagGroups& initial)
    : Property(withoutRepeats(initial))
  {
  }

protected:
  void storeValue(const TagGroups& groups) override
  {
    Property::storeValue(withoutRepeats(groups));
  }

private:
  static TagGroups withoutRepeats(const TagGroups& groups)
  {
    TagGroups unique;
    std::set<unsigned long long> seen;
    for (const auto& group : groups)
    {
      if (seen.insert(group.id()).second)
        unique.push_back(group);
    }
    return unique;
  }
};

template<typename T>
boost::shared_ptr<plexa::UndoablePropertyProxy<T>> undoable(
  const std::string& name,
  boost::shared_ptr<plexa::PropertyAbstract<T>> target)
{
  return boost::make_shared<plexa::UndoablePropertyProxy<T>>(name, std::move(target));
}

std::vector<WeakPtr<Variable>> discreteVariables(const Project& project, std::size_t most)
{
  std::vector<WeakPtr<Variable>> chosen;
  for (const auto& variable : project.variables())
  {
    if (chosen.size() < most && variable.lock().nature() == Variable::Discrete)
      chosen.push_back(variable);
  }
  return chosen;
}

} // namespace

struct ImageViewProperties::Impl
{
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> showLabels;
  boost::shared_ptr<plexa::UndoablePropertyProxy<std::vector<WeakPtr<Variable>>>> variablesInLabel;
  boost::shared_ptr<plexa::UndoablePropertyProxy<TagGroups>> tagGroupsToShow;
  boost::shared_ptr<plexa::UndoablePropertyProxy<std::vector<std::string>>> tagsToShow;
  boost::shared_ptr<plexa::UndoablePropertyProxy<unsigned long long>> zoom;
  boost::shared_ptr<plexa::Property<std::vector<std::string>>> allTagsToShow;
  SignalConnectionCollection connections;

  void updateAllTagsToShow()
  {
    std::vector<std::string> tags;
    std::set<std::string> seen;
    for (const auto& handle : tagGroupsToShow->value())
    {
      for (const auto& tag : handle.lock().tags())
      {
        if (seen.insert(tag).second)
          tags.push_back(tag);
      }
    }
    for (const auto& tag : tagsToShow->value())
    {
      if (seen.insert(tag).second)
        tags.push_back(tag);
    }
    allTagsToShow->setValue(tags);
  }
};

ImageViewProperties::ImageViewProperties()
  : d(std::make_unique<Impl>())
{
  using plexa::Property;
  const auto project = Project::project();
  d->showLabels = undoable<bool>("Show Labels", boost::make_shared<Property<bool>>(false));
  // Captions are off at first; when switched on they show the inputs the study varied.
  d->variablesInLabel = undoable<std::vector<WeakPtr<Variable>>>(
    "Variables In Label",
    boost::make_shared<Property<std::vector<WeakPtr<Variable>>>>(discreteVariables(*project, 3)));
  // Every tag group is of interest at first, so tag-dimensioned axes show every image kind.
  d->tagGroupsToShow = undoable<TagGroups>(
    "Tag Groups to Show", boost::make_shared<TagGroupsToShowProperty>(project->tagGroups()));
  d->tagsToShow = undoable<std::vector<std::string>>(
    "Tags to Show", boost::make_shared<Property<std::vector<std::string>>>());
  d->zoom =
    undoable<unsigned long long>("Zoom", boost::make_shared<Property<unsigned long long>>(25ULL));
  d->zoom->setMergeId(UndoStack().nextUndoID());
  d->allTagsToShow = boost::make_shared<Property<std::vector<std::string>>>();
  d->updateAllTagsToShow();

  Impl* impl = d.get();
  d->connections.add(d->tagGroupsToShow->connectSignalValueChanged(
    [impl](const TagGroups&) { impl->updateAllTagsToShow(); }));
  d->connections.add(d->tagsToShow->connectSignalValueChanged(
    [impl](const std::vector<std::string>&) { impl->updateAllTagsToShow(); }));
}

ImageViewProperties::~ImageViewProperties()
{
  d->connections.clear();
}

void ImageViewProperties::suspend()
{
  d->connections.block();
}

void ImageViewProperties::resume()
{
  d->connections.unblock();
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> ImageViewProperties::showLabels() const
{
  return d->showLabels;
}

boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>>
ImageViewProperties::variablesInLabel() const
{
  return d->variablesInLabel;
}

boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<TagGroup>>>>
ImageViewProperties::tagGroupsToShow() const
{
  return d->tagGroupsToShow;
}

boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>>
ImageViewProperties::tagsToShow() const
{
  return d->tagsToShow;
}

boost::shared_ptr<plexa::PropertyAbstract<unsigned long long>> ImageViewProperties::zoom() const
{
  return d->zoom;
}

boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>>
ImageViewProperties::allTagsToShow() const
{
  return d->allTagsToShow;
}

QSize zoomLevelToImageSize(unsigned long long zoom)
{
  const double side = static_cast<double>(zoom) / 100.0 * 750.0 + 50.0;
  const int s = side >= static_cast<double>(INT_MAX) ? INT_MAX : static_cast<int>(side);
  return QSize(s, s);
}
