#include "config/RegistryTextReader.h"

#include <array>
#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "config/RegistryLines.h"
#include "config/RegistryTextWriter.h"
#include "config/RegistryTokens.h"
#include "config/RegistryUtf16.h"
#include "platform/RegistryPath.h"
#include "support/DisplayText.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr std::size_t kLongestQuote = 40;

std::string Quoted(std::u16string_view text) {
  return "\"" + CutToWidth(PrintableText(RegistryBytes(text)), kLongestQuote) + "\"";
}

/// Gives the value the type of that number and the form in which the store has such values.
void SetType(RegistryTextEntry& entry, std::uint32_t number) {
  std::vector<std::uint8_t>& data = entry.value.data;
  switch (const auto type = static_cast<RegistryType>(number)) {
    case RegistryType::String:
    case RegistryType::ExpandString:
    case RegistryType::MultiString: {
      entry.value.type = type;
      std::u16string text;
      for (std::size_t i = 0; i + 1 < data.size(); i += 2) {
        text += static_cast<char16_t>(data[i] | data[i + 1] << 8);
      }
      if (data.size() % 2 != 0) entry.problem = "the last character of the text is cut off";
      const std::string bytes = RegistryBytes(text);
      data.assign(bytes.begin(), bytes.end());
      return;
    }
    case RegistryType::Binary:
    case RegistryType::DWord:
    case RegistryType::DWordBigEndian:
      entry.value.type = type;
      return;
  }
  std::array<char, 8> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), number, 16).ptr;
  entry.problem =
      "values of the type hex(" + std::string(digits.begin(), end) + ") cannot be stored";
}

class RegistryTextReader {
 public:
  RegistryTextReader(std::istream& input, const std::function<void(RegistryTextEntry)>& take)
      : lines_(input), take_(take) {}

  /// False at the first bad line.
  bool Read() {
    if (!NextLine()) return problem_.empty() && Fail("the file is empty");
    if (!ReadHeader()) return false;
    while (NextLine()) {
      if (!ReadLine(line_)) return false;
    }
    return problem_.empty();
  }

  std::string Problem() const { return std::to_string(problemLine_) + ": " + problem_; }

 private:
  bool Fail(std::string problem) {
    problem_ = std::move(problem);
    problemLine_ = lines_.Number();
    return false;
  }

  bool NextLine() {
    const RegistryLines::Result result = lines_.Next(line_);
    return result == RegistryLines::Result::Line ||
           (result == RegistryLines::Result::Bad && Fail(lines_.Problem()));
  }

  bool ReadHeader() {
    const std::string header = RegistryBytes(Stripped(line_));
    if (FoldCase(header) == FoldCase(RegistryTextHeader)) return true;
    if (header == "REGEDIT4") {
      return Fail("this is the format of older systems: export the registry again in version 5.00");
    }
    return Fail("the first line is not \"" + std::string(RegistryTextHeader) + "\"");
  }

  bool ReadLine(std::u16string_view line) {
    if (IsNothing(line)) return true;
    entry_ = {};
    entry_.line = lines_.Number();
    SkipBlanks(line);
    if (line.front() == u'[') return ReadKey(Stripped(line));
    if (line.front() == u'"' || line.front() == u'@') return ReadEntry(line);
    return Fail(Quoted(line) + " is no key, value or comment");
  }

  bool ReadKey(std::u16string_view line) {
    if (!line.ends_with(u']')) return Fail("the \"]\" at the end of the key is missing");
    line = line.substr(1, line.size() - 2);
    if (Take(line, u"-")) entry_.kind = RegistryTextEntry::Kind::KeyDeletion;
    const std::u16string_view root = line.substr(0, line.find(u'\\'));
    const std::string hive = FoldCase(RegistryBytes(root));
    if (!hive.starts_with("hkey_")) {
      return Fail(Quoted(line) +
                  " is no key: it does not begin with HKEY_CURRENT_USER or another "
                  "root of the registry");
    }
    if (hive == "hkey_current_user") entry_.hive = Hive::CurrentUser;
    if (hive == "hkey_local_machine") entry_.hive = Hive::LocalMachine;
    entry_.path = NormalRegistryPath(RegistryBytes(line.substr(root.size())));
    key_.reset();
    if (entry_.kind == RegistryTextEntry::Kind::Key) key_ = entry_;
    take_(entry_);
    return true;
  }

  /// `line` is part of `line_` up to the end of the name, which may lie in a later line.
  bool ReadEntry(std::u16string_view line) {
    if (!key_) return Fail("the value stands under no key");
    entry_.hive = key_->hive;
    entry_.path = key_->path;
    entry_.kind = RegistryTextEntry::Kind::Value;
    if (!Take(line, u"@")) {
      if (!TakeQuoted(line)) return false;
      entry_.name = RegistryBytes(text_);
    }
    SkipBlanks(line);
    if (!Take(line, u"=")) return Fail("the \"=\" behind the name is missing");
    SkipBlanks(line);
    if (!ReadData(line)) return false;
    take_(std::move(entry_));
    return true;
  }

  bool ReadData(std::u16string_view line) {
    if (line.starts_with(u'"')) {
      if (!TakeQuoted(line)) return false;
      const std::string text = RegistryBytes(text_);
      entry_.value = {RegistryType::String, {text.begin(), text.end()}};
      entry_.value.data.push_back(0);
      return IsNothing(line) || FailBehind(line);
    }
    if (Take(line, u"-")) {
      entry_.kind = RegistryTextEntry::Kind::ValueDeletion;
      return IsNothing(line) || FailBehind(line);
    }
    if (TakeWord(line, u"dword:")) {
      SkipBlanks(line);
      const auto number = TakeHex(line, 8);
      if (!number) return Fail("\"dword:\" is followed by up to eight hexadecimal digits");
      entry_.value.type = RegistryType::DWord;
      for (int shift = 0; shift < 32; shift += 8) {
        entry_.value.data.push_back(static_cast<std::uint8_t>(*number >> shift));
      }
      return IsNothing(line) || FailBehind(line);
    }
    if (!TakeWord(line, u"hex")) {
      return Fail(Quoted(line) + " is no value: \"text\", dword:, hex: or -");
    }
    std::optional<std::uint32_t> type = static_cast<std::uint32_t>(RegistryType::Binary);
    if (Take(line, u"(")) {
      type = TakeHex(line, 8);
      if (!type || !Take(line, u")")) return Fail("the type in \"hex(...)\" is no number");
    }
    if (!Take(line, u":")) return Fail("the \":\" behind \"hex\" is missing");
    if (!ReadHexList(line)) return false;
    SetType(entry_, *type);
    return true;
  }

  bool FailBehind(std::u16string_view rest) {
    SkipBlanks(rest);
    return Fail(Quoted(rest) + " behind the value has no meaning");
  }

  /// Takes a text in quotes into `text_`. Where it goes on in later lines, `line` becomes the rest
  /// of the last one.
  bool TakeQuoted(std::u16string_view& line) {
    const std::size_t firstLine = lines_.Number();
    text_.clear();
    line.remove_prefix(1);
    for (;;) {
      const std::size_t end = line.find_first_of(u"\"\\");
      text_ += line.substr(0, end);
      if (text_.size() > RegistryLines::kLongest) return Fail("the text is too long");
      if (end == std::u16string_view::npos) {
        text_ += lines_.LineEnd();
        if (!NextLine()) {
          if (!problem_.empty()) return false;
          Fail("the quotation mark at the end of the text is missing");
          problemLine_ = firstLine;
          return false;
        }
        line = line_;
        continue;
      }
      const bool isEnd = line[end] == u'"';
      line.remove_prefix(end + 1);
      if (isEnd) return true;
      if (line.empty() || (line.front() != u'"' && line.front() != u'\\')) {
        entry_.problem = R"(a backslash within quotation marks is written \\)";
        text_ += u'\\';
        continue;
      }
      text_ += line.front();
      line.remove_prefix(1);
    }
  }

  bool ReadHexList(std::u16string_view line) {
    std::vector<std::uint8_t>& data = entry_.value.data;
    bool wantsByte = false;
    for (;;) {
      SkipBlanks(line);
      if (line.starts_with(u'\\') && IsNothing(line.substr(1))) {
        if (!NextLine()) return !problem_.empty() ? false : Fail("the value goes on in no line");
        line = line_;
        continue;
      }
      if (IsNothing(line)) return !wantsByte || Fail("the byte behind the last \",\" is missing");
      if (!data.empty() && !wantsByte) {
        if (!Take(line, u",")) return FailBehind(line);
        wantsByte = true;
        continue;
      }
      const auto byte = TakeHex(line, 2);
      if (!byte) return Fail(Quoted(line) + " is no byte of two hexadecimal digits");
      if (data.size() > RegistryLines::kLongest) return Fail("the value is too long");
      data.push_back(static_cast<std::uint8_t>(*byte));
      wantsByte = false;
    }
  }

  RegistryLines lines_;
  const std::function<void(RegistryTextEntry)>& take_;
  std::u16string line_;
  std::u16string text_;
  std::optional<RegistryTextEntry> key_;
  RegistryTextEntry entry_;
  std::string problem_;
  std::size_t problemLine_ = 0;
};

}  // namespace

std::string ReadRegistryText(std::istream& input, const std::string& name,
                             const std::function<void(RegistryTextEntry)>& take) {
  RegistryTextReader reader(input, take);
  return reader.Read() ? std::string() : name + ":" + reader.Problem();
}

}  // namespace wattlark
