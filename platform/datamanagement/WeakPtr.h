#pragma once

#include <memory>

/// A weak reference to a study object (Variable, Record, AuxFile, TagGroup) together with the
/// object's 64-bit id. Handles compare by id only, so a handle keeps its place in ordered
/// containers after its object is gone; lock() then yields an empty handle. The default handle
/// has id 0, which no object carries.
template<typename T, typename Id = unsigned long long>
class WeakPtr
{
public:
  WeakPtr() = default;
  WeakPtr(const T& object)
    : data(object.sharedData())
    , objectId(object.isNull() ? Id(0) : Id(object.id()))
  {
  }

  /// The object, or an empty handle when it no longer exists (or never did).
  T lock() const { return T(data.lock()); }
  Id id() const { return objectId; }
  bool expired() const { return data.expired(); }

  friend bool operator==(const WeakPtr& a, const WeakPtr& b) { return a.objectId == b.objectId; }
  friend bool operator!=(const WeakPtr& a, const WeakPtr& b) { return a.objectId != b.objectId; }
  friend bool operator<(const WeakPtr& a, const WeakPtr& b) { return a.objectId < b.objectId; }

private:
  std::weak_ptr<const typename T::Data> data;
  Id objectId = Id(0);
};
