#include "app/ErrorList.h"

namespace wattlark {

namespace {

// Neither a device that fails every second nor a server that answers at length may fill memory.
constexpr std::size_t kMostLines = 1000;
constexpr std::size_t kMostBytes = 1024 * 1024;

}  // namespace

void ErrorList::Add(const std::string& text, DateTime moment) {
  lines_.push_back(FormatDateAndTime(regional_, moment) + ": " + text + "\r\n");
  bytes_ += lines_.back().size();
  while (lines_.size() > 1 && (lines_.size() > kMostLines || bytes_ > kMostBytes)) {
    bytes_ -= lines_.front().size();
    lines_.pop_front();
  }
}

void ErrorList::Clear() {
  lines_.clear();
  bytes_ = 0;
}

std::string ErrorList::Text() const {
  std::string text;
  for (const std::string& line : lines_) text += line;
  return text;
}

}  // namespace wattlark
