#include "app/CaptureReader.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <optional>
#include <system_error>

namespace wattlark {

namespace {

constexpr std::size_t kLongestLine = std::size_t{16} << 20;
constexpr std::size_t kBlockSize = std::size_t{64} << 10;
constexpr std::size_t kLongestQuote = 40;

/// Part of a bad line as a message may show it: short, and without anything that moves a cursor.
std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text.substr(0, kLongestQuote)) {
    const auto byte = static_cast<unsigned char>(c);
    quoted += byte < 0x20 || byte >= 0x7F ? '?' : c;
  }
  return quoted + (text.size() > kLongestQuote ? "...\"" : "\"");
}

/// The text up to the next blank, which is taken off as well; nothing when there is no blank.
std::optional<std::string_view> TakeField(std::string_view& line) {
  const std::size_t end = line.find(' ');
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view field = line.substr(0, end);
  line.remove_prefix(end + 1);
  return field;
}

bool IsBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

std::optional<std::uint32_t> ReadTicks(std::string_view text) {
  std::uint32_t ticks = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, ticks);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return ticks;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string AppendHex(std::string_view digits, std::vector<std::uint8_t>& bytes) {
  if (digits.empty()) return "\"rx\" has no bytes";
  const auto bad = std::ranges::find_if(digits, [](char c) { return HexDigit(c) < 0; });
  if (bad != digits.end()) return Quoted({bad, digits.end()}) + " is not a hexadecimal digit";
  if (digits.size() % 2 != 0) return "\"rx\" has an odd number of hexadecimal digits";
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(HexDigit(digits[i]) << 4 | HexDigit(digits[i + 1])));
  }
  return {};
}

/// Hands out the lines of a stream without their line ends.
class LineReader {
 public:
  enum class Result { Line, End, TooLong, Failed };

  explicit LineReader(std::istream& input) : input_(input), block_(kBlockSize) {}

  /// `line` is valid until the next call.
  Result Next(std::string_view& line) {
    line_.clear();
    for (;;) {
      const std::string_view rest = Rest();
      const std::size_t end = rest.find('\n');
      line_ += rest.substr(0, end);
      if (line_.size() > kLongestLine) return Result::TooLong;
      if (end != std::string_view::npos) {
        position_ += end + 1;
        break;
      }
      if (!Refill()) {
        if (input_.bad()) return Result::Failed;
        if (line_.empty()) return Result::End;
        break;
      }
    }
    if (line_.ends_with('\r')) line_.pop_back();
    line = line_;
    return Result::Line;
  }

 private:
  std::string_view Rest() const { return {block_.data() + position_, size_ - position_}; }

  bool Refill() {
    position_ = 0;
    input_.read(block_.data(), static_cast<std::streamsize>(block_.size()));
    size_ = static_cast<std::size_t>(input_.gcount());
    return size_ != 0;
  }

  std::istream& input_;
  std::vector<char> block_;
  std::string line_;
  std::size_t position_ = 0;
  std::size_t size_ = 0;
};

}  // namespace

std::string ParseCaptureLine(std::string_view line, Capture& capture) {
  if (IsBlank(line) || line.starts_with('#')) return {};
  const auto timeText = TakeField(line);
  if (!timeText) return "a line is a date-time, a tick count and \"rx HEX\" or \"tick\"";
  const auto time = DateTime::FromIso(*timeText);
  if (!time) {
    return Quoted(*timeText) +
           " is not a date-time of the form YYYY-MM-DDTHH:MM:SS or "
           "YYYY-MM-DDTHH:MM:SS.mmm";
  }
  const auto ticksText = TakeField(line);
  if (!ticksText) return "the event behind the tick count is missing";
  const auto ticks = ReadTicks(*ticksText);
  if (!ticks) return Quoted(*ticksText) + " is not a tick count from 0 to 4294967295";

  CaptureEvent event{*time, *ticks, 0};
  if (line != "tick") {
    const auto kind = TakeField(line);
    if (kind == "tick") return "there is text behind \"tick\"";
    if (line == "rx") return "the bytes behind \"rx\" are missing";
    if (kind != "rx") return Quoted(kind.value_or(line)) + " is not \"rx HEX\" or \"tick\"";
    if (const std::string problem = AppendHex(line, capture.bytes); !problem.empty()) {
      return problem;
    }
    event.byteCount = static_cast<std::uint32_t>(line.size() / 2);
  }
  capture.events.push_back(event);
  return {};
}

std::string ReadCapture(std::istream& input, const std::string& name, Capture& capture) {
  LineReader reader(input);
  for (std::size_t number = 1;; ++number) {
    std::string_view line;
    std::string problem;
    switch (reader.Next(line)) {
      case LineReader::Result::End:
        return {};
      case LineReader::Result::Line:
        problem = ParseCaptureLine(line, capture);
        break;
      case LineReader::Result::TooLong:
        problem = "the line is too long";
        break;
      case LineReader::Result::Failed:
        problem = "the file cannot be read";
        break;
    }
    if (!problem.empty()) return name + ":" + std::to_string(number) + ": " + problem;
  }
}

}  // namespace wattlark
