#pragma once

namespace wattlark {

/// The name under which the program's desktop entry and icon are installed.
inline constexpr const char* DesktopID = "org.wattlark.Wattlark";

}  // namespace wattlark
