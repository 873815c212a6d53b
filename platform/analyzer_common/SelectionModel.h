#pragma once

#include "analyzer_common/SelectionModelInterface.h"

/// The master selection of the application: the case ids selected in any view. It signals only
/// when the selection really changes.
class QUEN_ANALYZER_COMMON_EXPORT SelectionModel : public virtual SelectionModelInterface
{
public:
  SelectionModel();
  ~SelectionModel() override;

  Selection getSelections() const override;
  void setSelection(const Selection& selection) override;

private:
  Selection selection;
};
