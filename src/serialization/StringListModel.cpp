#include "serialization/StringListModel.h"

StringListModel::StringListModel(const std::set<std::string>& strings)
{
  for (const auto& s : strings)
  {
    push_back(s, s);
  }
}

StringListModel::~StringListModel() = default;
