#pragma once

#include <string>

namespace wattlark {

/// Each of these answers why a service could not take the document, or an empty text. They read it
/// with a parser of XML that is not the program's.

/// The EEML document of a feed update.
std::string FeedProblem(const std::string& document);
/// The Atom entry of a spreadsheet's row.
std::string RowProblem(const std::string& document);
/// The Atom entry of a duration measurement.
std::string MeasurementProblem(const std::string& document);

}  // namespace wattlark
