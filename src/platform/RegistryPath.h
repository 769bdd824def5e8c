#pragma once

#include <string>
#include <string_view>

namespace wattlark {

/// `path` without empty parts (a leading, trailing or doubled "\"), as every adapter of the
/// `Registry` port takes it; empty when nothing is left.
std::string NormalRegistryPath(std::string_view path);
/// The path of the key above; empty for a top-level key. `path` is a normal one.
std::string_view ParentRegistryPath(std::string_view path);
/// The key's own name, the last part of its path. `path` is a normal one.
std::string_view RegistryKeyName(std::string_view path);

}  // namespace wattlark
