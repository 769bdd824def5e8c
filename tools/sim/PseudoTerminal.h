#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace wattlark {

/// A serial device that exists in software only: what is written here can be read from the device
/// DevicePath() names, in raw mode, as from a port with a receiver on it.
///
/// Readers may come and go. Bytes that nobody reads are lost, as those of a radio are; writing
/// never blocks. What readers write is thrown away.
class PseudoTerminal {
 public:
  /// A reader that leaves bytes unread for so long counts as gone.
  static constexpr std::int64_t kGoneMilliseconds = 1000;

  /// Creates the device and, unless `link` is empty, a symbolic link to it. A link that already
  /// points to a pseudo-terminal is replaced (a killed run left it); anything else in that place
  /// stays. Throws std::runtime_error with a readable text when something cannot be created.
  explicit PseudoTerminal(const std::filesystem::path& link);
  /// Removes the device and, if it still points to it, the link.
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  const std::filesystem::path& DevicePath() const { return devicePath_; }
  /// The link, or the device itself when there is none.
  const std::filesystem::path& PublicPath() const;
  /// Readable when a reader has written something; owned by this object.
  int Descriptor() const { return master_; }

  /// Hands on as many of `bytes` as the reader's buffer takes. Without a reader only these bytes
  /// wait for one, so that it does not begin with old readings. `nowMilliseconds` is any clock that
  /// does not go backwards.
  void Write(const std::vector<std::uint8_t>& bytes, std::int64_t nowMilliseconds);
  /// Looks whether readers came or went; true when one has come, that is, has read what waited.
  bool CheckForReader(std::int64_t nowMilliseconds);
  bool HasReader() const { return hasReader_; }
  /// Throws away what readers have written.
  void DiscardInput();

 private:
  void OpenDevice();
  void CreateLink();
  void CloseDevice();
  void MakeRaw();

  std::filesystem::path devicePath_;
  std::filesystem::path link_;
  int master_ = -1;
  int keeper_ = -1;  // an open end on the reader's side: its closing must not end the device
  std::int64_t lastWrite_ = 0;
  std::int64_t lastEmpty_ = 0;
  bool hasWritten_ = false;
  bool hasReader_ = false;
};

}  // namespace wattlark
