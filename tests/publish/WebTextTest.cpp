#include <gtest/gtest.h>

#include "publish/WebText.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

TEST(QuoteResponse, ShowsControlCharactersAsBlanks) {
  using std::string_literals::operator""s;
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"line 1\r\nline 2\n", "line 1\r\nline 2\n"},
      {"a\tb\0c\x1B[2Jd\x7F"s, "a b c [2Jd "},
      {"\xC2\x85\xC2\x9F\xC2\xA0|", "  \xC2\xA0|"},  // C1 controls, and a no-break space
      {"Zürich €", "Zürich €"},
      {"\xC2", "\xC2"}};
  for (const auto& [response, quote] : cases) EXPECT_EQ(QuoteResponse(response), quote);
}

TEST(QuoteResponse, CutsAboveTheBoundAtAWholeCharacter) {
  const std::string full(65536, 'x');
  EXPECT_EQ(QuoteResponse(full), full);
  EXPECT_EQ(QuoteResponse(full + "more"), full);
  EXPECT_EQ(QuoteResponse(full.substr(1) + "é"), full.substr(1));
  EXPECT_EQ(QuoteResponse(full.substr(3) + "€|").size(), 65536U);
  EXPECT_EQ(QuoteResponse(full.substr(2) + "€|"), full.substr(2));
  EXPECT_EQ(QuoteResponse(std::string(70000, '\x80')).size(), 65533U);
}

TEST(QuoteResponse, MasksSecrets) {
  EXPECT_EQ(QuoteResponse("key=secret&again=secret.", {"secret"}), "key=****&again=****.");
  EXPECT_EQ(QuoteResponse("token and key", {"key", "", "token"}), "**** and ****");
  EXPECT_EQ(QuoteResponse("5%25 or 5%", {"%"}), "5**** or 5****") << "the longer form first";
  EXPECT_EQ(QuoteResponse("a&b é, a&amp;b é, a%26b%20%C3%A9, a%26b+%c3%a9", {"a&b é"}),
            "****, ****, ****, ****");
  // Also one that the bound would cut in two.
  const std::string filler(65533, 'x');
  EXPECT_EQ(QuoteResponse(filler + "secret", {"secret"}), filler + "***");
}

TEST(EscapeXml, LeavesTheDocumentWhole) {
  EXPECT_EQ(EscapeXml("11/16/2026 8:10:00 PM"), "11/16/2026 8:10:00 PM");
  EXPECT_EQ(EscapeXml("<a href='x' b=\"y\">&"),
            "&lt;a href=&apos;x&apos; b=&quot;y&quot;&gt;&amp;");
  EXPECT_EQ(EscapeXml("\x01\tü\x7F"), " \tü ");
}

TEST(PlainNumberText, HasFifteenDigitsAtMost) {
  const RegionalSettings us = RegionalSettings::UnitedStates();
  const std::pair<double, const char*> cases[] = {{0, "0"},
                                                  {-12.25, "-12.25"},
                                                  {0.1 + 0.2, "0.3"},
                                                  {200.0 / 3, "66.6666666666667"},
                                                  {1234567, "1234567"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(PlainNumberText(us, value), text);
  EXPECT_EQ(PlainNumberText(Germany(), 1234567.5), "1234567,5");
}

}  // namespace
}  // namespace wattlark
