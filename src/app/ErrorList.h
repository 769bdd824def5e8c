#pragma once

#include <cstddef>
#include <deque>
#include <string>

#include "support/RegionalSettings.h"

namespace wattlark {

/// The failures of background work since the user last looked, oldest first. Holds the newest
/// 1,000, and of long ones the newest 1 MiB.
class ErrorList {
 public:
  /// `regional` must outlive this object.
  explicit ErrorList(const RegionalSettings& regional) : regional_(regional) {}

  void Add(const std::string& text, DateTime moment);
  void Clear();
  bool IsEmpty() const { return lines_.empty(); }
  /// One line for every error: short date, blank, long time, ": ", the text, CR LF.
  std::string Text() const;

 private:
  const RegionalSettings& regional_;
  std::deque<std::string> lines_;
  std::size_t bytes_ = 0;
};

}  // namespace wattlark
