#pragma once

#include "CaseKeys.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "signals/SignalConnectionCollection.h"

#include <boost/shared_ptr.hpp>

#include <memory>

namespace explorer
{

class MasterSelection;

/// The master selection seen in case keys: what a plot whose rows carry keys (see CaseKeys)
/// reads and sets. Setting keys sets their cases in the master; every change of the master is
/// relayed as the keys of its cases. The master stays the one selection of the program.
class KeyedSelectionModel : public virtual SelectionModelInterface
{
public:
  KeyedSelectionModel(boost::shared_ptr<MasterSelection> master,
                      std::shared_ptr<const CaseKeys> keys);
  ~KeyedSelectionModel() override;

  /// The keys of the master's cases.
  Selection getSelections() const override;
  /// The master's selection becomes the cases of these keys.
  void setSelection(const Selection& keys) override;

private:
  boost::shared_ptr<MasterSelection> master;
  std::shared_ptr<const CaseKeys> keys;
  SignalConnectionCollection connections;
};

} // namespace explorer
