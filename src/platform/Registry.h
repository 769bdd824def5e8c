#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace wattlark {

enum class Hive { CurrentUser = 0, LocalMachine = 1 };

/// The value types that the store knows; the numbers are those of the Windows registry.
enum class RegistryType : std::uint32_t {
  String = 1,
  ExpandString = 2,
  Binary = 3,
  DWord = 4,
  DWordBigEndian = 5,
  MultiString = 7,
};

struct RegistryValue {
  RegistryType type = RegistryType::String;
  std::vector<std::uint8_t> data;  ///< exactly the stored bytes; text is UTF-8
  bool operator==(const RegistryValue&) const = default;
};

struct NamedRegistryValue {
  std::string name;  ///< empty for the key's unnamed value
  RegistryValue value;
};

/// Hierarchical, typed key-value storage. Paths are key names joined by "\", without a leading or
/// trailing one. Keys and value names compare without case and enumerate in order of creation
/// (rewriting a value keeps its place). Every operation answers whether it worked; none throws.
class Registry {
 public:
  virtual ~Registry() = default;

  virtual bool KeyExists(Hive hive, const std::string& path) = 0;
  /// Creates the key and every missing key above it; true as well when it is there already.
  virtual bool CreateKey(Hive hive, const std::string& path) = 0;
  /// Deletes the key and its values; false when it is missing or has subkeys.
  virtual bool DeleteKey(Hive hive, const std::string& path) = 0;
  /// Names of the direct subkeys; empty when there are none or the key is missing.
  virtual std::vector<std::string> SubKeys(Hive hive, const std::string& path) = 0;

  virtual std::optional<RegistryValue> Read(Hive hive, const std::string& path,
                                            const std::string& name) = 0;
  /// Creates the key path as needed; false leaves the stored value as it was.
  virtual bool Write(Hive hive, const std::string& path, const std::string& name,
                     const RegistryValue& value) = 0;
  /// False when the key or the value is missing.
  virtual bool DeleteValue(Hive hive, const std::string& path, const std::string& name) = 0;
  virtual std::vector<NamedRegistryValue> Values(Hive hive, const std::string& path) = 0;

  /// All changes from `Begin` to `Commit` take effect together or not at all. Not nested: `Begin`
  /// inside a transaction fails. `Commit` answers false, and nothing has changed, when the changes
  /// or any write among them could not be stored.
  virtual bool Begin() = 0;
  /// What is written from here to the end of the transaction comes again every few minutes and
  /// mostly differs a little: a store may keep the changes in a shorter form, of which the file
  /// shows traces after they have been replaced. Not for secrets.
  virtual void MarkProgress() {}
  virtual bool Commit() = 0;
  virtual void Rollback() = 0;
  /// What went wrong with the last operation that failed, in words; empty when none did since the
  /// last `Begin` that worked. That a key or value is missing is an answer and no failure.
  virtual std::string ErrorText() const = 0;
};

}  // namespace wattlark
