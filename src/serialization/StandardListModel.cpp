#include "serialization/StandardListModel.h"

#include <stdexcept>

namespace
{

const std::string& entry(const std::vector<std::string>& strings, unsigned long long index)
{
  if (index >= strings.size())
  {
    throw std::out_of_range("invalid vector subscript");
  }
  return strings[index];
}

} // namespace

StandardListModel<std::string>::StandardListModel() = default;

StandardListModel<std::string>::~StandardListModel() = default;

unsigned long long StandardListModel<std::string>::size() const
{
  return dataStrings.size();
}

std::string StandardListModel<std::string>::data(unsigned long long index) const
{
  return entry(dataStrings, index);
}

std::string StandardListModel<std::string>::displayString(unsigned long long index) const
{
  return entry(displayStrings, index);
}

std::pair<bool, unsigned long long> StandardListModel<std::string>::find(
  const std::string& value) const
{
  for (std::size_t i = 0; i < dataStrings.size(); ++i)
  {
    if (dataStrings[i] == value)
    {
      return { true, i };
    }
  }
  return { false, 0 };
}

void StandardListModel<std::string>::clear()
{
  displayStrings.clear();
  dataStrings.clear();
  emitSignalModelChanged();
}

void StandardListModel<std::string>::push_back(const std::string& displayString,
                                               const std::string& data)
{
  displayStrings.push_back(displayString);
  dataStrings.push_back(data);
  emitSignalModelChanged();
}

void StandardListModel<std::string>::setDisplayName(unsigned long long index,
                                                    const std::string& displayString)
{
  displayStrings.at(index) = displayString;
}

void StandardListModel<std::string>::setData(unsigned long long index, const std::string& data)
{
  dataStrings.at(index) = data;
}

void StandardListModel<std::string>::copy(const ListModelInterface<std::string>& other)
{
  std::vector<std::string> newDisplay;
  std::vector<std::string> newData;
  const unsigned long long count = other.size();
  newDisplay.reserve(count);
  newData.reserve(count);
  for (unsigned long long i = 0; i < count; ++i)
  {
    newDisplay.push_back(other.displayString(i));
    newData.push_back(other.data(i));
  }
  displayStrings = std::move(newDisplay);
  dataStrings = std::move(newData);
  emitSignalModelChanged();
}
