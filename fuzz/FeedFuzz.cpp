// Feeds of any form: what is found is part of the feed and lies within one entry; what is quoted of
// one is bounded, and no line end or control character is made of it. The input is the name sought,
// a line feed, and the feed.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "publish/GoogleFeeds.h"
#include "publish/GoogleRow.h"
#include "publish/WebText.h"

namespace {

void CheckLink(const std::string& link, std::string_view feed) {
  if (link.empty()) return;
  Require(link.find('\'') == std::string::npos);
  Require(link.find("</entry>") == std::string::npos);
  Require(feed.find("href='" + link + "'") != std::string_view::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace wattlark;
  const std::string_view input = TextOf(data, size);
  const std::size_t lineEnd = input.find('\n');
  const std::string_view name = input.substr(0, lineEnd);
  const std::string_view feed =
      lineEnd == std::string_view::npos ? std::string_view() : input.substr(lineEnd + 1);

  CheckLink(FindWorksheetsFeed(feed, name), feed);
  CheckLink(FindListFeed(feed, name), feed);

  const std::string quote = QuoteResponse(feed, {std::string(name)});
  Require(quote.size() <= 64UL * 1024);
  for (const char c : quote) {
    Require(static_cast<unsigned char>(c) >= 0x20 || c == '\r' || c == '\n');
  }

  const std::string column = GoogleColumn(name);
  Require(column.find_first_of(" <>&'\"/:=\t\r\n") == std::string::npos);
  Require(EscapeXml(name).find_first_of("<>'\"") == std::string::npos);
  return 0;
}
