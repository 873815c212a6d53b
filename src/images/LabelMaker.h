#pragma once

#include "datamanagement/Record.h"
#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <string>
#include <vector>

/// Builds captions: "name=value" for each variable, in order, joined by a separator.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT LabelMaker
{
public:
  LabelMaker() = default;
  LabelMaker(const LabelMaker&) = default;
  LabelMaker& operator=(const LabelMaker&) = default;
  virtual ~LabelMaker();

  /// Values are shown as variantDisplayText shows them; an empty list gives an empty text.
  std::string label(const std::vector<WeakPtr<Variable>>& variables,
                    const Record& record,
                    const std::string& separator) const;
};
