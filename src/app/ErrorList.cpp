#include "app/ErrorList.h"

namespace wattlark {

namespace {

constexpr std::size_t kMostLines = 1000;  // a device that fails every second must not fill memory

}  // namespace

void ErrorList::Add(const std::string& text, DateTime moment) {
  if (lines_.size() == kMostLines) lines_.pop_front();
  lines_.push_back(FormatDateAndTime(regional_, moment) + ": " + text + "\r\n");
}

std::string ErrorList::Text() const {
  std::string text;
  for (const std::string& line : lines_) text += line;
  return text;
}

}  // namespace wattlark
