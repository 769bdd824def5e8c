#pragma once

#include <string>

#include "platform/Desktop.h"
#include "platform/Prompts.h"

namespace wattlark {

/// The program's legal notice.
inline constexpr const char* LegalNotice =
    "Copyright (C) Fennick Labs. Free software under the GNU General Public License, version 3 or "
    "later (GPL-3.0-or-later). It comes with no warranty.";

/// Shows title, version ("2.0") and legal notice.
void ShowAbout(const std::string& version, Prompts& prompts);
/// Opens a web address; tells the user when there is none, or it cannot be opened, and answers
/// false.
bool OpenURL(const std::string& address, Desktop& desktop, Prompts& prompts);

}  // namespace wattlark
