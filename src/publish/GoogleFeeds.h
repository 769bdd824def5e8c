#pragma once

#include <string>
#include <string_view>

namespace wattlark {

/// The worksheets feed's address of the first spreadsheet in a spreadsheets feed whose entry holds
/// `documentName`; empty when there is none.
std::string FindWorksheetsFeed(std::string_view spreadsheetsFeed, std::string_view documentName);
/// The list feed's address of the first worksheet in a worksheets feed whose entry holds
/// `worksheetName`; empty when there is none.
std::string FindListFeed(std::string_view worksheetsFeed, std::string_view worksheetName);

}  // namespace wattlark
