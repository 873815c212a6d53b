#pragma once

#include "serialization/ListModelInterface.h"

#include <vector>

template<typename T>
class StandardListModel;

/// A list model kept in two vectors of equal length: entry i is (display string i, data string
/// i).
template<>
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT StandardListModel<std::string>
  : public ListModelInterface<std::string>
{
public:
  StandardListModel();
  ~StandardListModel() override;

  unsigned long long size() const override;
  std::string data(unsigned long long index) const override;
  std::string displayString(unsigned long long index) const override;
  std::pair<bool, unsigned long long> find(const std::string& value) const override;
  void clear() override;

  /// Appends an entry, then signals the change of the model.
  void push_back(const std::string& displayString, const std::string& data);
  /// Replaces the display string of an existing entry, telling nobody: a caller changing entries
  /// this way signals what its listeners need.
  void setDisplayName(unsigned long long index, const std::string& displayString);
  /// Replaces the whole content with the other model's entries, then signals the change once.
  void copy(const ListModelInterface<std::string>& other);

protected:
  /// Replaces the data string of an existing entry, telling nobody.
  void setData(unsigned long long index, const std::string& data);

private:
  std::vector<std::string> displayStrings;
  std::vector<std::string> dataStrings;
};
