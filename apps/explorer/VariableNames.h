#pragma once

#include "datamanagement/Variable.h"

#include <QString>

#include <string>

namespace explorer
{

/// A variable's name where the explorer writes cases out: "in:" or "out:" before the name of an
/// input or an output, as a table of runs gives roles, so that the file opens with them again.
std::string exportedName(const std::string& name, Variable::Role role);

/// A variable's name as a column header shows it: its role first ("in: Depth [ft]"), so that
/// inputs and outputs are told apart at a glance.
QString headerName(const std::string& name, Variable::Role role);

} // namespace explorer
