#include "platform/RegistryPath.h"

namespace wattlark {

std::string NormalRegistryPath(std::string_view path) {
  std::string normal;
  normal.reserve(path.size());
  for (const char c : path) {
    if (c == '\\' && (normal.empty() || normal.back() == '\\')) continue;
    normal += c;
  }
  if (!normal.empty() && normal.back() == '\\') normal.pop_back();
  return normal;
}

std::string_view ParentRegistryPath(std::string_view path) {
  const std::size_t separator = path.rfind('\\');
  return separator == std::string_view::npos ? std::string_view() : path.substr(0, separator);
}

std::string_view RegistryKeyName(std::string_view path) {
  const std::size_t separator = path.rfind('\\');
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

}  // namespace wattlark
