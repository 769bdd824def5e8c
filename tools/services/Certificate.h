#pragma once

#include <string>

namespace wattlark {

/// A certificate for the address 127.0.0.1 that nobody has signed but itself, and its key, made for
/// one test and thrown away with the folder.
struct Certificate {
  /// Throws std::runtime_error with what openssl says when it could not be made.
  explicit Certificate(const std::string& folder);

  std::string file;
  std::string keyFile;
};

}  // namespace wattlark
