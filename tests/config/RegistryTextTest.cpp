#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "config/RegistryTextReader.h"
#include "config/RegistryTextWriter.h"
#include "support/RegistryValues.h"

namespace wattlark {
namespace {

using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;
using Kind = RegistryTextEntry::Kind;

constexpr Hive kUser = Hive::CurrentUser;
const std::string kHeader = "Windows Registry Editor Version 5.00\n";

/// ASCII text as UTF-16LE.
std::string Wide(const std::string& text) {
  std::string wide;
  for (const char c : text) wide += {c, '\0'};
  return wide;
}

struct Outcome {
  std::vector<RegistryTextEntry> entries;
  std::string problem;
};

Outcome Read(const std::string& text) {
  Outcome outcome;
  std::istringstream input(text);
  outcome.problem = ReadRegistryText(
      input, "FILE", [&](RegistryTextEntry entry) { outcome.entries.push_back(std::move(entry)); });
  return outcome;
}

/// The one value of a key, written by its lines.
RegistryTextEntry ReadValue(const std::string& lines) {
  const Outcome outcome = Read(kHeader + "[HKEY_CURRENT_USER\\K]\n" + lines);
  EXPECT_EQ(outcome.problem, "") << lines;
  EXPECT_EQ(outcome.entries.size(), 2u) << lines;
  return outcome.entries.size() == 2 ? outcome.entries[1] : RegistryTextEntry();
}

std::string Write(const NamedRegistryValue& value) {
  std::ostringstream output;
  RegistryTextWriter(output).WriteKey(kUser, "K", {value});
  return output.str();
}

TEST(RegistryText, EveryFormIsWrittenSoAndReadBack) {
  const std::pair<NamedRegistryValue, std::string> cases[] = {
      // Values, and the lines as which they are written.
      {{"a", TextValue("b\0"s)}, "\"a\"=\"b\""},
      {{"a", TextValue("\0"s)}, "\"a\"=\"\""},
      {{"", TextValue("b\0"s)}, "@=\"b\""},
      {{"@", TextValue("b\0"s)}, "\"@\"=\"b\""},
      {{R"(\"=)", TextValue("C:\\\"x\";\0"s)}, R"("\\\"="="C:\\\"x\";")"},
      {{" a\t", TextValue(" ] \t\0"s)}, "\" a\t\"=\" ] \t\""},
      {{"a", TextValue("x\ny\0"s)}, "\"a\"=hex(1):78,00,0a,00,79,00,00,00"},
      {{"a", TextValue("x")}, "\"a\"=hex(1):78,00"},
      {{"a", TextValue("")}, "\"a\"=hex(1):"},
      {{"a", TextValue("x\0y\0"s)}, "\"a\"=hex(1):78,00,00,00,79,00,00,00"},
      {{"a", TextValue("\xFFx\0"s)}, "\"a\"=hex(1):ff,dc,78,00,00,00"},
      {{"a", TextValue("\xE2\x82\n\xC3\xBC")}, "\"a\"=hex(1):e2,dc,82,dc,0a,00,fc,00"},
      {{"a", {RegistryType::ExpandString, {0xF0, 0x9F, 0x94, 0x8C}}}, "\"a\"=hex(2):3d,d8,0c,dd"},
      {{"a", {RegistryType::MultiString, {'x', 0, 'y', 0, 0}}},
       "\"a\"=hex(7):78,00,00,00,79,00,00,00,00,00"},
      {{"a", {RegistryType::DWord, {0xEF, 0xCD, 0xAB, 0x01}}}, "\"a\"=dword:01abcdef"},
      {{"a", {RegistryType::DWord, {1, 2}}}, "\"a\"=hex(4):01,02"},
      {{"a", {RegistryType::DWordBigEndian, {1, 2, 3, 4}}}, "\"a\"=hex(5):01,02,03,04"},
      {{"a", {RegistryType::Binary, {0, 0xFF}}}, "\"a\"=hex:00,ff"},
      {{"a", {RegistryType::Binary, {}}}, "\"a\"=hex:"},
      // 77 characters and the "\" fill a line: 8 for name and "hex:", 23 bytes of 3.
      {{"a", {RegistryType::Binary, Bytes(24, 7)}},
       "\"a\"=hex:07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,07,\\\r\n"
       "  07"}};
  for (const auto& [value, lines] : cases) {
    SCOPED_TRACE(lines);
    const std::string text =
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n" + lines +
        "\r\n\r\n";
    EXPECT_EQ(Write(value), "\xFF\xFE" + Wide(text));
    for (const std::string& read : {"\xFF\xFE" + Wide(text), "\xEF\xBB\xBF" + text, text}) {
      const Outcome outcome = Read(read);
      EXPECT_EQ(outcome.problem, "");
      ASSERT_EQ(outcome.entries.size(), 2u);
      EXPECT_EQ(outcome.entries[0].path, "K");
      EXPECT_EQ(outcome.entries[1].name, value.name);
      EXPECT_EQ(outcome.entries[1].value, value.value);
    }
  }
}

TEST(RegistryText, ReadsWhatOthersWriteAndSaysWhatCannotBeStored) {
  const std::tuple<const char*, RegistryType, std::string> cases[] = {
      {"  \"n\" = \"x\" ; remark \n", RegistryType::String, "x\0"s},
      {"\"n\"=\"one \r\ntwo\nthree\"\r\n", RegistryType::String, "one \r\ntwo\nthree\0"s},
      {"\"n\"=\"Küche\"", RegistryType::String, "Küche\0"s},
      {"\"n\"=DWORD:A", RegistryType::DWord, "\x0A\0\0\0"s},
      {"\"n\"=hex:1, 2 ,\\ \n  0A,\\\n\tFf\n", RegistryType::Binary, "\x01\x02\x0A\xFF"},
      {"\"n\"=hex:\\\n01", RegistryType::Binary, "\x01"},
      {"\"n\"=hex(3):01", RegistryType::Binary, "\x01"},
      {"\"n\"=hex(00000004):01,00,00,00", RegistryType::DWord, "\1\0\0\0"s},
      // A high surrogate alone is kept as the three bytes of its number.
      {"\"n\"=hex(1):00,d8,41,00", RegistryType::String, "\xED\xA0\x80\x41"},
  };
  for (const auto& [lines, type, bytes] : cases) {
    const RegistryTextEntry entry = ReadValue(lines);
    EXPECT_EQ(entry.name, "n");
    EXPECT_EQ(entry.problem, "");
    EXPECT_EQ(entry.value, (RegistryValue{type, Bytes(bytes.begin(), bytes.end())})) << lines;
  }
  EXPECT_EQ(ReadValue("\"n\"=hex(b):01").problem, "values of the type hex(b) cannot be stored");
  EXPECT_EQ(ReadValue("\"n\"=hex(1):78").problem, "the last character of the text is cut off");
  EXPECT_NE(ReadValue(R"("n"="C:\temp")").problem, "");
}

TEST(RegistryText, KeysAndDeletions) {
  const Outcome outcome = Read(
      "Windows Registry Editor Version 5.00\r\n\r\n; a remark\r\n"
      "[HKEY_CURRENT_USER\\A\\b]c]\r\n\"x\"=-\r\n@=-\r\n\r\n"
      "[-hkey_local_machine\\Gone]  \r\n[HKEY_CLASSES_ROOT\\.x]");
  EXPECT_EQ(outcome.problem, "");
  using Seen = std::tuple<Kind, std::optional<Hive>, std::string, std::string, std::size_t>;
  std::vector<Seen> seen;
  for (const RegistryTextEntry& e : outcome.entries) {
    seen.emplace_back(e.kind, e.hive, e.path, e.name, e.line);
  }
  EXPECT_EQ(seen, (std::vector<Seen>{{Kind::Key, kUser, "A\\b]c", "", 4},
                                     {Kind::ValueDeletion, kUser, "A\\b]c", "x", 5},
                                     {Kind::ValueDeletion, kUser, "A\\b]c", "", 6},
                                     {Kind::KeyDeletion, Hive::LocalMachine, "Gone", "", 8},
                                     {Kind::Key, std::nullopt, ".x", "", 9}}));
}

TEST(RegistryText, MalformedLinesAreToldWithTheirNumber) {
  const std::string start = kHeader + "[HKEY_CURRENT_USER\\K]\n";
  const std::pair<std::string, std::string> cases[] = {
      {"", "FILE:1: the file is empty"},
      {"REGEDIT4\n",
       "FILE:1: this is the format of older systems: export the registry again in "
       "version 5.00"},
      {"\n" + kHeader, "FILE:1: the first line is not \"Windows Registry Editor Version 5.00\""},
      {"\xFE\xFF\0W"s,
       "FILE:1: the text is UTF-16 with the bytes in the wrong order: save it as UTF-16LE or "
       "UTF-8"},
      {"\xFF\xFE" + Wide(kHeader) + "x", "FILE:2: the last character is cut off"},
      {kHeader + "\"a\"=\"b\"", "FILE:2: the value stands under no key"},
      {kHeader + "[HKEY_CURRENT_USER\\K", "FILE:2: the \"]\" at the end of the key is missing"},
      {kHeader + "[]",
       "FILE:2: \"\" is no key: it does not begin with HKEY_CURRENT_USER or another root of the "
       "registry"},
      {start + "\xFF", "FILE:3: the line is neither UTF-8 nor UTF-16LE text"},
      {start + "\n# x", "FILE:4: \"# x\" is no key, value or comment"},
      {start + "\"a\"\n", "FILE:3: the \"=\" behind the name is missing"},
      {start + "\"a\"=\n", "FILE:3: \"\" is no value: \"text\", dword:, hex: or -"},
      {start + "\"a\"=\"b\n\n", "FILE:3: the quotation mark at the end of the text is missing"},
      {start + "\"a\"=dword:", "FILE:3: \"dword:\" is followed by up to eight hexadecimal digits"},
      {start + "\"a\"=hex(x):", "FILE:3: the type in \"hex(...)\" is no number"},
      {start + "\"a\"=hex:,00", "FILE:3: \",00\" is no byte of two hexadecimal digits"},
      {start + "\"a\"=hex:00,", "FILE:3: the byte behind the last \",\" is missing"},
      {start + "\"a\"=hex:00,\\", "FILE:4: the value goes on in no line"},
  };
  for (const auto& [text, problem] : cases) EXPECT_EQ(Read(text).problem, problem) << text;
}

}  // namespace
}  // namespace wattlark
