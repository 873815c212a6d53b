#pragma once

#include "CaseKeys.h"

#include "analyzer_common/SelectionModelInterface.h"

#include <boost/shared_ptr.hpp>

#include <memory>

namespace explorer
{

class MasterSelection;

/// The master selection seen in case keys: what a plot whose rows carry keys (see CaseKeys)
/// reads and sets. Setting keys sets their cases in the master, which stays the one selection of
/// the program.
///
/// Changes of the master are not relayed as keys: a view shows the master's list over its rows
/// itself (a set of a million keys, made at every change, cost more than drawing them).
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
};

} // namespace explorer
