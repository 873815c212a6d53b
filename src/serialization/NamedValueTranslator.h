#pragma once

#include <boost/bimap.hpp>

#include <string>

/// A two-way map between the values of an enumeration and the names they are saved under.
/// Looking up a name or value the translator does not know throws std::out_of_range
/// ("bimap<>: invalid key").
template<typename T>
class NamedValueTranslator
{
public:
  void add(const std::string& name, T value)
  {
    names.insert(typename Map::value_type(name, value));
  }
  std::string name(T value) const { return names.right.at(value); }
  T value(const std::string& name) const { return names.left.at(name); }

private:
  using Map = boost::bimap<std::string, T>;
  Map names;
};
