#include "config/ServiceEndpoints.h"

#include <algorithm>
#include <iterator>

#include "config/modRegistry.h"
#include "support/modText.h"

namespace wattlark {

namespace {

using E = ServiceEndpoints;

const ServiceEndpointInfo kTable[] = {
    {"ClientLoginURL", &E::ClientLoginURL},
    {"SpreadsheetsFeedURL", &E::SpreadsheetsFeedURL},
    {"TwitterUpdateURL", &E::TwitterUpdateURL},
    {"PowerMeterFeedsURL", &E::PowerMeterFeedsURL},
    {"VersionFileURL", &E::VersionFileURL},
    {"OnlineHelpURL", &E::OnlineHelpURL},
    {"WebSiteURL", &E::WebSiteURL},
};

bool IsBlankOrControl(char c) {
  return static_cast<unsigned char>(c) <= 0x20 || c == 0x7F;
}

}  // namespace

std::span<const ServiceEndpointInfo> ServiceEndpointsTable() {
  return kTable;
}

const ServiceEndpointInfo* FindServiceEndpoint(std::string_view name) {
  const std::string wanted = FoldCase(name);
  const auto found =
      std::find_if(std::begin(kTable), std::end(kTable),
                   [&](const ServiceEndpointInfo& row) { return FoldCase(row.name) == wanted; });
  return found == std::end(kTable) ? nullptr : found;
}

std::string ServiceEndpointProblem(std::string_view address) {
  if (address.empty()) return {};
  const std::size_t schemeEnd = address.find("://");
  const std::string scheme = FoldCase(address.substr(0, std::min(schemeEnd, address.size())));
  if (schemeEnd == std::string_view::npos || (scheme != "http" && scheme != "https")) {
    return "The address must begin with http:// or https://.";
  }
  if (std::any_of(address.begin(), address.end(), IsBlankOrControl)) {
    return "The address must not hold blanks or control characters.";
  }
  const std::string_view behind = address.substr(schemeEnd + 3);
  const std::string_view authority = behind.substr(0, behind.find_first_of("/?#"));
  if (authority.empty()) return "The address names no host.";
  if (authority.find('@') != std::string_view::npos) {
    return "The address must not hold a user name or password: they are settings of their own.";
  }
  return {};
}

std::vector<std::string> LoadServiceEndpoints(const modRegistry& store,
                                              ServiceEndpoints& endpoints) {
  std::vector<std::string> problems;
  for (const ServiceEndpointInfo& info : kTable) {
    std::string& field = endpoints.*info.field;
    const std::string stored =
        store.GetAppSetting("", ServiceEndpointsSection, info.name, ServiceEndpoints{}.*info.field);
    const std::string problem = ServiceEndpointProblem(stored);
    if (problem.empty()) {
      field = stored;
    } else {
      field = ServiceEndpoints{}.*info.field;
      problems.push_back(std::string("The stored address \"") + info.name +
                         "\" is not used: " + problem);
    }
  }
  return problems;
}

}  // namespace wattlark
