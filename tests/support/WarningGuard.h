#pragma once

#include <string>
#include <vector>

/// Unexpected warnings fail tests: the test main routes Qt's messages and VTK's output window
/// here, and every warning or error that no ExpectWarnings in scope claims becomes a test
/// failure carrying its text.
namespace testsupport
{

void installWarningHandlers();

/// Hands a warning to the innermost ExpectWarnings whose fragment it contains; false when none.
bool claimWarning(const std::string& text);

/// Claims the warnings whose text contains `fragment` while it lives, and records them.
class ExpectWarnings
{
public:
  explicit ExpectWarnings(std::string fragment);
  ~ExpectWarnings();
  ExpectWarnings(const ExpectWarnings&) = delete;
  ExpectWarnings& operator=(const ExpectWarnings&) = delete;

  /// The claimed warnings, in order.
  const std::vector<std::string>& seen() const { return messages; }

private:
  friend bool claimWarning(const std::string& text);
  std::string fragment;
  std::vector<std::string> messages;
};

} // namespace testsupport
