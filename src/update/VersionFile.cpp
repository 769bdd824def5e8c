#include "update/VersionFile.h"

#include <vector>

#include "config/ServiceEndpoints.h"
#include "support/modText.h"
#include "update/ReleaseVersion.h"

namespace wattlark {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool IsErrorPage(std::string_view text) {
  return SaysNotFound(text) || Contains(text, "404") || Contains(text, "403");
}

// Nothing that a file from the web names is fetched or opened otherwise than as a web page.
bool IsWebAddress(const std::string& address) {
  return !address.empty() && ServiceEndpointProblem(address).empty();
}

std::string_view WithoutCR(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

bool SaysNotFound(std::string_view text) {
  return Contains(text, "Not Found");
}

std::optional<ReleaseInfo> ReadVersionFile(std::string_view file) {
  if (file.starts_with(kByteOrderMark)) file.remove_prefix(kByteOrderMark.size());
  if (IsErrorPage(file)) return std::nullopt;
  const std::vector<std::string_view> lines = Split(file, '\n');
  if (lines.size() < 3) return std::nullopt;
  ReleaseInfo release;
  release.version = Trim(lines[0]);
  release.date = Trim(lines[1]);
  release.downloadAddress = Trim(lines[2]);
  if (!IsVersionText(release.version) || !IsWebAddress(release.downloadAddress)) {
    return std::nullopt;
  }
  if (lines.size() > 3) release.notesAddress = WithoutCR(lines[3]);
  if (!IsWebAddress(release.notesAddress)) release.notesAddress.clear();
  return release;
}

}  // namespace wattlark
