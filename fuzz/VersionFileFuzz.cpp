// Version files of any form: what is taken of one is a version and web addresses. Any two texts
// compare the same way each time: never is each newer than the other, nor one newer than itself.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "config/ServiceEndpoints.h"
#include "update/ReleaseVersion.h"
#include "update/VersionFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace wattlark;
  const std::string_view input = TextOf(data, size);
  if (const auto release = ReadVersionFile(input)) {
    Require(IsVersionText(release->version));
    Require(!release->downloadAddress.empty());
    for (const std::string& address : {release->downloadAddress, release->notesAddress}) {
      Require(ServiceEndpointProblem(address).empty());
    }
  }
  const std::size_t lineEnd = input.find('\n');
  const std::string_view one = input.substr(0, lineEnd);
  const std::string_view other =
      lineEnd == std::string_view::npos ? std::string_view() : input.substr(lineEnd + 1);
  const bool isNewer = IsNewerVersion(one, other, false);
  Require(!isNewer || !IsNewerVersion(other, one, false));
  Require(!IsNewerVersion(one, one, false));
  Require(isNewer || !IsNewerVersion(one, other, true));
  return 0;
}
