#include "publish/GoogleFeeds.h"

#include "support/modText.h"

namespace wattlark {

namespace {

// The name is looked for in the whole text of the feed, its link in the rest of that entry.
std::string FindLink(std::string_view feed, std::string_view name, std::string_view relation) {
  const std::size_t entry = feed.find(name);
  if (entry == std::string_view::npos) return {};
  const std::size_t entryEnd = feed.find("</entry>", entry);
  const std::size_t link = feed.find(relation, entry);
  if (entryEnd == std::string_view::npos || link == std::string_view::npos || link > entryEnd) {
    return {};
  }
  return GetTextBetween(feed, "href='", "'", link, false, entryEnd);
}

}  // namespace

std::string FindWorksheetsFeed(std::string_view spreadsheetsFeed, std::string_view documentName) {
  return FindLink(spreadsheetsFeed, documentName, "worksheetsfeed");
}

std::string FindListFeed(std::string_view worksheetsFeed, std::string_view worksheetName) {
  return FindLink(worksheetsFeed, worksheetName, "listfeed");
}

}  // namespace wattlark
