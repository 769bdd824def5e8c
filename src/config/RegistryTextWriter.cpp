#include "config/RegistryTextWriter.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <utility>

#include "config/RegistryUtf16.h"
#include "support/Utf8.h"

namespace wattlark {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kLongestHexLine = 77;

void AppendAscii(std::u16string& line, std::string_view text) {
  line.append(text.begin(), text.end());
}

constexpr bool EndsLines(char c) {
  return c == '\0' || c == '\r' || c == '\n';
}

/// What may stand in a line, with the bytes that would end it as surrogates.
std::u16string InLine(std::string_view bytes) {
  std::u16string utf16 = RegistryUtf16(bytes);
  for (char16_t& unit : utf16) {
    if (unit < 0x80 && EndsLines(static_cast<char>(unit))) {
      unit = EscapedByte(static_cast<char>(unit));
    }
  }
  return utf16;
}

std::u16string Quoted(std::u16string_view text) {
  std::u16string quoted = u"\"";
  for (const char16_t unit : text) {
    if (unit == u'"' || unit == u'\\') quoted += u'\\';
    quoted += unit;
  }
  return quoted + u"\"";
}

std::string_view TextOf(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The text of a plain string that the quoted form gives back byte for byte.
std::optional<std::string_view> QuotableText(Bytes bytes) {
  if (bytes.empty() || bytes.back() != 0) return std::nullopt;
  const std::string_view text = TextOf(bytes.first(bytes.size() - 1));
  for (std::string_view rest = text; !rest.empty();) {
    const Utf8Character character = TakeUtf8Character(rest);
    if (!character.isValid || EndsLines(character.bytes.front())) return std::nullopt;
  }
  return text;
}

std::string Hexadecimal(std::uint32_t number, std::size_t digits) {
  std::array<char, 8> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, 16).ptr;
  std::string text(buffer.data(), end);
  return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

void AppendHex(std::u16string& line, RegistryType type, Bytes bytes) {
  std::size_t start = 0;  // of the present line
  AppendAscii(line, type == RegistryType::Binary
                        ? std::string("hex:")
                        : "hex(" + Hexadecimal(static_cast<std::uint32_t>(type), 1) + "):");
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    AppendAscii(line, Hexadecimal(bytes[i], 2));
    if (i + 1 == bytes.size()) break;
    line += u',';
    if (line.size() - start + 3 <= kLongestHexLine) continue;
    line += u"\\\r\n";
    start = line.size();
    line += u"  ";
  }
}

std::vector<std::uint8_t> LittleEndian(std::u16string_view utf16) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(2 * utf16.size());
  for (const char16_t unit : utf16) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

void AppendValue(std::u16string& line, const RegistryValue& value) {
  const Bytes data = value.data;
  switch (value.type) {
    case RegistryType::String:
      if (const auto text = QuotableText(data)) {
        line += Quoted(RegistryUtf16(*text));
        return;
      }
      [[fallthrough]];
    case RegistryType::ExpandString:
    case RegistryType::MultiString:
      AppendHex(line, value.type, LittleEndian(RegistryUtf16(TextOf(data))));
      return;
    case RegistryType::DWord:
      if (data.size() == 4) {
        const std::uint32_t number = data[0] | std::uint32_t{data[1]} << 8 |
                                     std::uint32_t{data[2]} << 16 | std::uint32_t{data[3]} << 24;
        AppendAscii(line, "dword:" + Hexadecimal(number, 8));
        return;
      }
      break;
    case RegistryType::Binary:
    case RegistryType::DWordBigEndian:
      break;
  }
  AppendHex(line, value.type, data);
}

}  // namespace

RegistryTextWriter::RegistryTextWriter(std::ostream& output,
                                       std::initializer_list<std::string_view> comments)
    : output_(output) {
  output_ << "\xFF\xFE";
  WriteLine(InLine(RegistryTextHeader));
  WriteLine({});
  for (const std::string_view comment : comments) WriteLine(u"; " + InLine(comment));
  if (comments.size() != 0) WriteLine({});
}

void RegistryTextWriter::WriteKey(Hive hive, const std::string& path,
                                  const std::vector<NamedRegistryValue>& values) {
  std::u16string key = hive == Hive::CurrentUser ? u"[HKEY_CURRENT_USER" : u"[HKEY_LOCAL_MACHINE";
  if (!path.empty()) key += u'\\';
  WriteLine(key + InLine(path) + u"]");
  for (const NamedRegistryValue& entry : values) {
    std::u16string line = entry.name.empty() ? u"@" : Quoted(InLine(entry.name));
    line += u'=';
    AppendValue(line, entry.value);
    WriteLine(std::move(line));
  }
  WriteLine({});
}

void RegistryTextWriter::WriteLine(std::u16string line) {
  line += u"\r\n";
  const std::vector<std::uint8_t> bytes = LittleEndian(line);
  output_.write(reinterpret_cast<const char*>(bytes.data()),
                static_cast<std::streamsize>(bytes.size()));
}

}  // namespace wattlark
