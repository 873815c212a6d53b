#pragma once

#include <utility>

/// Runs a function when the scope ends, however it ends (return or exception): the other half
/// of a begin/end pair written next to its beginning.
template<typename F>
class ScopeExit
{
public:
  explicit ScopeExit(F onExit)
    : onExit(std::move(onExit))
  {
  }
  ~ScopeExit() { onExit(); }
  ScopeExit(const ScopeExit&) = delete;
  ScopeExit& operator=(const ScopeExit&) = delete;

private:
  F onExit;
};

/// Sets a variable for the length of a scope and gives it back its previous value at the end, so
/// that nested guards of one re-entrancy flag restore each other rather than clear it.
template<typename T>
class ScopedValue
{
public:
  ScopedValue(T& variable, T value)
    : variable(variable)
    , previous(std::exchange(variable, std::move(value)))
  {
  }
  ~ScopedValue() { variable = std::move(previous); }
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;

private:
  T& variable;
  T previous;
};
