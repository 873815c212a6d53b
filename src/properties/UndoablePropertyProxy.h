#pragma once

#include "analyzer_common/DeleteSignaler.h"
#include "analyzer_common/GenericUndoCommand.h"
#include "analyzer_common/UndoStack.h"
#include "properties/PropertyAbstract.h"

#include <QString>
#include <boost/signals2/connection.hpp>

#include <memory>
#include <string>

namespace plexa
{

/// A property standing in front of another (the target) that turns every change made through it
/// into one entry on the application's undo stack, named "Change " + the name given. Changes
/// that reach the target from elsewhere are passed on to the proxy's listeners without being
/// recorded. The proxy holds no value of its own and shares the target's validator.
///
/// A change made through the proxy, and each undo or redo of it, reaches the proxy's listeners
/// twice in a row with the same value (once through the target, once from the proxy itself);
/// listeners must tolerate the repeat.
template<typename T>
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT UndoablePropertyProxy
  : public PropertyAbstract<T>
  , public DeleteSignaler
{
public:
  UndoablePropertyProxy(const std::string& name, boost::shared_ptr<PropertyAbstract<T>> target)
    : PropertyAbstract<T>(target->validator())
    , undoText(QString::fromStdString("Change " + name))
    , target(std::move(target))
  {
    targetConnection = this->target->connectSignalValueChanged(
      [this](const T& value) { this->emitValueChangedSignal(value); });
  }

  ~UndoablePropertyProxy() override { targetConnection.disconnect(); }

  /// The id given to the undo commands; commands with the same id (other than -1) merge into one
  /// entry. With -1, the default, every change is its own entry, inside a macro of its name.
  void setMergeId(int id) { mergeId = id; }
  int getMergeId() const { return mergeId; }
  /// The text of the undo entries.
  QString getUndoText() const { return undoText; }

protected:
  /// Records the change as an undo command and applies it to the target. The target changes
  /// before the command is pushed; the push runs the command's redo at once, which must not
  /// apply the value again: storeDepth tells applyValue that a store is under way.
  void storeValue(const T& newValue) override
  {
    StoreGuard guard(storeDepth);
    const T oldValue = target->value();
    std::unique_ptr<GenericUndoCommand> command(
      new GenericUndoCommand([this, newValue] { applyValue(newValue); },
                             [this, oldValue] { applyValue(oldValue); },
                             *this,
                             undoText,
                             mergeId,
                             nullptr));
    UndoStack stack;
    if (mergeId == -1)
    {
      UndoStack::Macro macro(undoText);
      target->setValue(newValue);
      stack.push(command.release());
    }
    else
    {
      target->setValue(newValue);
      stack.push(command.release());
    }
  }

  /// Applies a value without recording it: what undo and redo run.
  virtual void applyValue(const T& value)
  {
    if (storeDepth != 0 || value == target->value())
    {
      return;
    }
    UndoStack::SuspendUndoRecording suspend;
    target->setValue(value);
    this->emitValueChangedSignal(value);
  }

private:
  T retrieveValue() const override { return target->value(); }

  // Restores the depth also when the target refuses the value with an exception.
  class StoreGuard
  {
  public:
    explicit StoreGuard(unsigned long long& depth)
      : depth(depth)
    {
      ++depth;
    }
    ~StoreGuard() { --depth; }
    StoreGuard(const StoreGuard&) = delete;
    StoreGuard& operator=(const StoreGuard&) = delete;

  private:
    unsigned long long& depth;
  };

  unsigned long long storeDepth = 0;
  QString undoText;
  boost::shared_ptr<PropertyAbstract<T>> target;
  int mergeId = -1;
  boost::signals2::connection targetConnection;
};

} // namespace plexa
