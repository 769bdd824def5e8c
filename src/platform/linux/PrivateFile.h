#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace wattlark {

/// A new file for its user alone (mode 0600) that stands under its name only when it is whole and
/// on the disk: until then it has no name, or a temporary one in the same folder where the file
/// system knows no files without. Operations answer an empty text, or in words why they failed.
class PrivateFile {
 public:
  /// A link is followed to the file that it names.
  explicit PrivateFile(std::string file);
  /// Removes what has not been kept.
  ~PrivateFile();
  PrivateFile(const PrivateFile&) = delete;
  PrivateFile& operator=(const PrivateFile&) = delete;

  /// Why the file could not be kept, as far as that can be told by now.
  std::string Problem(bool replaces) const;
  std::string Create();
  /// Appends.
  std::string Write(std::string_view bytes);
  /// Gives the file its name. Without `replaces`, one that is there already stays, and this fails.
  std::string Keep(bool replaces);

 private:
  std::string CannotWrite() const;
  bool Name();
  bool Rename(bool replaces) const;

  std::string file_;
  std::string temporary_;
  int descriptor_ = -1;
};

}  // namespace wattlark
