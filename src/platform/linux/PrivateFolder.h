#pragma once

#include <string>

namespace wattlark {

/// Makes sure that the folder is there; it and the missing ones above it are created for the user
/// alone (mode 0700). Empty on success, else why it cannot be had, in words.
std::string CreatePrivateFolder(const std::string& folder);

}  // namespace wattlark
