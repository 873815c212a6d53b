#pragma once

#include "datamanagement/Variable.h"

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

class Project;
class SerializerInterface;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// Whether each variable is an input of the runs or an output: as the study said (an "in:" or
/// "out:" column), or as the user says in the table's header menu, which overrides it. The
/// tables mark the role in their headers and exports write it, so that it comes back.
///
/// What the user says is a setting of the study: undoable, and saved with the view settings (the
/// element "VariableRoles").
class VariableRoles
{
public:
  explicit VariableRoles(std::shared_ptr<const Project> project);
  ~VariableRoles();
  VariableRoles(const VariableRoles&) = delete;
  VariableRoles& operator=(const VariableRoles&) = delete;

  /// The role of a variable of the study; Unknown for a name the study does not have.
  Variable::Role role(const std::string& variable) const;
  /// Says the role of a variable; one undo step. Throws std::invalid_argument for a name the
  /// study does not have.
  void setRole(const std::string& variable, Variable::Role role);

  /// The roles the user said, as a variable's name and its role's name ("input", "output",
  /// "unknown"), alternately; the tables follow its changes (an edit, an undo, loaded settings).
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> said() const;

  /// Writes and reads the element "VariableRoles"; a role for a variable the study does not
  /// have, or a role without a name the explorer knows, is refused with its place.
  boost::shared_ptr<SerializerInterface> serializer() const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
