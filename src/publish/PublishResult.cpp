#include "publish/PublishResult.h"

namespace wattlark {

PublishResult RunPublisher(const std::string& source, const std::function<std::string()>& run) {
  try {
    return {true, run()};
  } catch (const PublishStopped&) {
    return {};
  } catch (const PublishError& error) {
    return {false, error.what()};
  } catch (const std::exception& error) {
    return {false, source + ": " + error.what()};
  }
}

}  // namespace wattlark
