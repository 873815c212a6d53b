#pragma once

#include <memory>

/// Common base of the study handles (Variable, Record, AuxFile, TagGroup): a light, copyable
/// reference to data owned by a Project. An empty handle is valid; its accessors answer neutral
/// values (an empty name, no tags, an empty value).
template<typename DataT>
class StudyObjectHandle
{
public:
  using Data = DataT;

  StudyObjectHandle() = default;
  explicit StudyObjectHandle(std::shared_ptr<const Data> data)
    : d(std::move(data))
  {
  }

  bool isNull() const { return d == nullptr; }
  explicit operator bool() const { return d != nullptr; }
  /// The shared data; used by WeakPtr to keep a weak reference.
  const std::shared_ptr<const Data>& sharedData() const { return d; }

  friend bool operator==(const StudyObjectHandle& a, const StudyObjectHandle& b)
  {
    return a.d == b.d;
  }
  friend bool operator!=(const StudyObjectHandle& a, const StudyObjectHandle& b)
  {
    return a.d != b.d;
  }

protected:
  std::shared_ptr<const Data> d;
};
