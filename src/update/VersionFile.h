#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wattlark {

/// What the maker's version file says of a release.
struct ReleaseInfo {
  std::string version;  ///< "2.1"; `IsVersionText` holds
  std::string date;     ///< as the file has it
  std::string downloadAddress;
  std::string notesAddress;  ///< of the release notes' text; empty for none

  friend bool operator==(const ReleaseInfo&, const ReleaseInfo&) = default;
};

/// Reads a version file: the lines version, date, address of the download, and perhaps address of
/// the release notes. Lines end with CR LF or LF; a byte order mark is skipped. Nothing for an
/// error page, for a file that lacks a line, for a version that is none, and for a download from
/// another address than an http or https one; an address of notes that is none counts as missing.
std::optional<ReleaseInfo> ReadVersionFile(std::string_view file);

/// Whether a web server's text says that there is nothing at that address.
bool SaysNotFound(std::string_view text);

}  // namespace wattlark
