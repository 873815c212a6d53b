#include "images/LabelMaker.h"
#include "analyzer_common/VariantDisplayText.h"
#include "datamanagement/Record.h"

LabelMaker::~LabelMaker() = default;

std::string LabelMaker::label(const std::vector<WeakPtr<Variable>>& variables,
                              const Record& record,
                              const std::string& separator) const
{
  std::string text;
  for (std::size_t i = 0; i < variables.size(); ++i)
  {
    if (i > 0)
      text += separator;
    text += variables[i].lock().name() + "=" + variantDisplayText(record.data(variables[i]));
  }
  return text;
}
