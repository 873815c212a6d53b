#pragma once

#include "serialization/StandardListModel.h"

#include <set>

/// A list model of strings that are both display and data string, in ascending order.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT StringListModel : public StandardListModel<std::string>
{
public:
  /// Appends each string of the set in ascending order, signalling after each one.
  explicit StringListModel(const std::set<std::string>& strings);
  ~StringListModel() override;
};
