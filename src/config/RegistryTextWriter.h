#pragma once

#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

namespace wattlark {

/// The first line of a registry text.
inline constexpr std::string_view RegistryTextHeader = "Windows Registry Editor Version 5.00";

/// Writes keys and values in the text format of the registry editor, version 5.00: UTF-16LE with a
/// byte order mark, CR LF. The same keys and values always give the same bytes.
///
/// A text that the quoted form cannot hold (a line end, a NUL within, no NUL at its end, bytes that
/// are no UTF-8) goes out as its UTF-16 bytes, "hex(1)". In names such bytes are written as
/// `RegistryUtf16` does.
class RegistryTextWriter {
 public:
  /// Writes byte order mark, header and a line for each comment. `output` must outlive this object;
  /// its state tells whether all has been written.
  explicit RegistryTextWriter(std::ostream& output,
                              std::initializer_list<std::string_view> comments = {});

  /// The key and its values, in the order given.
  void WriteKey(Hive hive, const std::string& path, const std::vector<NamedRegistryValue>& values);

 private:
  void WriteLine(std::u16string line);

  std::ostream& output_;
};

}  // namespace wattlark
