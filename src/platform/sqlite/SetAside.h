#pragma once

#include <string>

namespace wattlark {

/// A name beside a store that neither it nor its journal would take from another file:
/// "FILE.REASON-N".
std::string FreeNameAside(const std::string& file, const std::string& reason);
/// Renames what belongs to the store beside its file, which would otherwise be played back into the
/// next one. False, with the reason in errno, when that fails.
bool SetJournalAside(const std::string& file, const std::string& target);
/// Undoes that, as far as it was done, and leaves errno alone: parted from its journal, a store
/// that a power cut has interrupted would be damaged for good.
void PutJournalBack(const std::string& file, const std::string& target);
/// Renames the store and what belongs to it to a free name, which is the result; empty, with the
/// reason in errno, when that fails.
std::string SetAside(const std::string& file, const std::string& reason);

}  // namespace wattlark
