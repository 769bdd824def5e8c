#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

#include "platform/Registry.h"

namespace wattlark {

/// One change that a registry text asks for.
struct RegistryTextEntry {
  enum class Kind {
    Key,            ///< the key is there
    KeyDeletion,    ///< the key goes, with all below it
    Value,          ///< the value is written
    ValueDeletion,  ///< the value goes
  };

  Kind kind = Kind::Key;
  std::size_t line = 0;      ///< where it begins, from 1
  std::optional<Hive> hive;  ///< nothing for one that the store does not have
  std::string path;          ///< below the hive
  std::string name;          ///< of a value; empty for the key's unnamed one
  RegistryValue value;       ///< of a value, texts as the store has them
  /// Why the value cannot be stored, although the line is well formed; empty otherwise.
  std::string problem;
};

/// Reads a text in the format of the registry editor, version 5.00, and hands on what it says,
/// entry by entry: UTF-16LE or UTF-8 with or without a byte order mark, lines with CR LF or LF.
///
/// - `[KEY]`, `[-KEY]`, `"name"="text"`, `"name"=dword:`, `"name"=hex:` and `hex(n):` over any
///   number of lines, `"name"=-`, `@` for the unnamed value, and comments, which begin with ";".
/// - A text in quotes may hold line ends, as the editor writes them.
/// - A plain text is stored as UTF-8 with a NUL behind it; the types that hold text (1, 2 and 7)
///   are turned from UTF-16 to what `RegistryBytes` makes of it, every other type keeps its bytes.
///
/// Answers an empty text, or "NAME:LINE: what is wrong" at the first line that is; `name` stands
/// for the stream. What has been handed on by then should not be used.
std::string ReadRegistryText(std::istream& input, const std::string& name,
                             const std::function<void(RegistryTextEntry)>& take);

}  // namespace wattlark
