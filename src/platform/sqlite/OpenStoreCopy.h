#pragma once

#include <string>

#include "platform/sqlite/OpenStore.h"

namespace wattlark {

/// Copies the store of a profile into memory, for reading beside a running program: the store is
/// neither created nor locked nor changed, and changes to the copy are lost with it.
///
/// - A missing store gives an empty copy, a damaged one whatever can still be read, with a message.
/// - A store in which a power cut left a half-made change is copied as it was before that change.
/// - There is no registry, and the message says why, when the store cannot be read, belongs to
///   another program or a newer version, or stays locked for `waitMilliseconds`.
StoreOpening OpenStoreCopy(const std::string& profileFolder, int waitMilliseconds = 2000);

}  // namespace wattlark
