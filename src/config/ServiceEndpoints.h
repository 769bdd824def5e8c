#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace wattlark {

class modRegistry;

/// The addresses of the services that the program talks to, with the published ones as defaults:
/// section "ServiceEndpoints" of the store, read at start, so that a user can name a compatible
/// server. All are http or https addresses; the last three may be empty, which means there is none.
struct ServiceEndpoints {
  std::string ClientLoginURL = "https://www.google.com/accounts/ClientLogin";
  std::string SpreadsheetsFeedURL =
      "http://spreadsheets.google.com/feeds/spreadsheets/private/full";
  std::string TwitterUpdateURL = "https://twitter.com/statuses/update.xml";
  std::string PowerMeterFeedsURL = "https://www.google.com/powermeter/feeds";
  std::string VersionFileURL = {};
  std::string OnlineHelpURL = {};
  std::string WebSiteURL = {};
};

inline constexpr const char* ServiceEndpointsSection = "ServiceEndpoints";

struct ServiceEndpointInfo {
  const char* name;
  std::string ServiceEndpoints::*field;
};

std::span<const ServiceEndpointInfo> ServiceEndpointsTable();
/// The row of that name, compared without case; null when there is none.
const ServiceEndpointInfo* FindServiceEndpoint(std::string_view name);

/// Why that text is no address of a service, or an empty text when it is one. An empty address
/// stands for the default.
std::string ServiceEndpointProblem(std::string_view address);

/// Fills every field. A stored text that is no address leaves the default in force and adds one
/// readable line to the result; the stored text stays.
std::vector<std::string> LoadServiceEndpoints(const modRegistry& store,
                                              ServiceEndpoints& endpoints);

}  // namespace wattlark
