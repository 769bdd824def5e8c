#include "config/RegistryLines.h"

#include <algorithm>
#include <istream>

#include "config/RegistryUtf16.h"
#include "support/Utf8.h"

namespace wattlark {

namespace {

constexpr std::size_t kBlockSize = std::size_t{64} << 10;

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!TakeUtf8Character(text).isValid) return false;
  }
  return true;
}

}  // namespace

RegistryLines::RegistryLines(std::istream& input) : input_(input) {
  DetectEncoding();
}

void RegistryLines::DetectEncoding() {
  Fill(3);
  const std::string_view start(block_.data(), std::min<std::size_t>(block_.size(), 3));
  using namespace std::string_view_literals;
  if (start.starts_with("\xFF\xFE"sv)) {
    isUtf16_ = true;
    position_ = 2;
  } else if (start == "\xEF\xBB\xBF"sv) {
    position_ = 3;
  } else if (start.starts_with("\xFE\xFF"sv)) {
    problem_ = "the text is UTF-16 with the bytes in the wrong order: save it as UTF-16LE or UTF-8";
  } else {
    isUtf16_ = start.size() > 1 && start[0] != '\0' && start[1] == '\0';
  }
}

/// Makes at least `wanted` bytes wait, if there are as many.
bool RegistryLines::Fill(std::size_t wanted) {
  const std::size_t waiting = block_.size() - position_;
  if (waiting >= wanted) return true;
  block_.erase(block_.begin(), block_.begin() + static_cast<std::ptrdiff_t>(position_));
  position_ = 0;
  block_.resize(waiting + kBlockSize);
  input_.read(block_.data() + waiting, static_cast<std::streamsize>(kBlockSize));
  block_.resize(waiting + static_cast<std::size_t>(input_.gcount()));
  return block_.size() >= wanted;
}

bool RegistryLines::ReadBytes(std::string& line) {
  while (line.size() <= kLongest && Fill(1)) {
    const std::string_view waiting(block_.data() + position_, block_.size() - position_);
    const std::size_t end = waiting.find('\n');
    line += waiting.substr(0, end);
    position_ += std::min(end, waiting.size() - 1) + 1;
    if (end != std::string_view::npos) return true;
  }
  return false;
}

bool RegistryLines::ReadUnits(std::u16string& line) {
  while (line.size() <= kLongest && Fill(2)) {
    const auto low = static_cast<unsigned char>(block_[position_]);
    const auto high = static_cast<unsigned char>(block_[position_ + 1]);
    position_ += 2;
    const auto unit = static_cast<char16_t>(high << 8 | low);
    if (unit == u'\n') return true;
    line += unit;
  }
  return false;
}

RegistryLines::Result RegistryLines::Refuse(const char* problem) {
  problem_ = problem;
  return Result::Bad;
}

RegistryLines::Result RegistryLines::Next(std::u16string& line) {
  ++number_;
  if (!problem_.empty()) return Result::Bad;
  line.clear();
  std::string bytes;
  const bool hasEnd = isUtf16_ ? ReadUnits(line) : ReadBytes(bytes);
  if (input_.bad()) return Refuse("the file cannot be read");
  if (std::max(line.size(), bytes.size()) > kLongest) return Refuse("the line is too long");
  if (!hasEnd && position_ != block_.size()) return Refuse("the last character is cut off");
  if (!hasEnd && line.empty() && bytes.empty()) return Result::End;
  if (!isUtf16_) {
    if (!IsUtf8(bytes)) return Refuse("the line is neither UTF-8 nor UTF-16LE text");
    line = RegistryUtf16(bytes);
  }
  lineEnd_ = hasEnd ? u"\n" : u"";
  if (hasEnd && line.ends_with(u'\r')) {
    line.pop_back();
    lineEnd_ = u"\r\n";
  }
  return Result::Line;
}

}  // namespace wattlark
