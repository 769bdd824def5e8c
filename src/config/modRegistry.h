#pragma once

#include <string>
#include <vector>

#include "platform/Registry.h"

namespace wattlark {

inline constexpr const char* ApplicationTitle = "Wattlark";
inline constexpr const char* CompanyName = "Fennick Labs";
/// Where, below the title, older releases kept their sections.
inline constexpr const char* OlderSettingsKey = "Software\\VB and VBA Program Settings\\";
/// Where, for the local machine, a value of the program's name makes the program start when the
/// user logs on; it holds the program's file in double quotes.
inline constexpr const char* RunAtLogOnKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";

/// The settings operations over the `Registry` port, for the current user's application keys.
///
/// An empty application name means `ApplicationTitle`. A section may contain backslashes to address
/// a nested key ("KillAWatts\Kitchen"). The value name "*" addresses a key's unnamed value in the
/// get, save and delete operations. Every operation answers true on success and false otherwise;
/// none throws.
class modRegistry {
 public:
  /// `registry` must outlive this object.
  explicit modRegistry(Registry& registry) : registry_(registry) {}

  /// "Software\Fennick Labs\" + application name, + "\" + section when that is not empty.
  static std::string AppKeyPath(const std::string& applicationName, const std::string& section);

  /// The stored text cut at its first NUL, or `defaultText` when the key or value is missing, of a
  /// type that is not text, or empty.
  std::string GetAppSetting(const std::string& applicationName, const std::string& section,
                            const std::string& valueName, const std::string& defaultText) const;
  /// Writes text followed by one NUL, creating the key path as needed.
  bool SaveAppSetting(const std::string& applicationName, const std::string& section,
                      const std::string& valueName, const std::string& text);
  bool DeleteAppSetting(const std::string& applicationName, const std::string& section,
                        const std::string& valueName);
  /// Deletes the section's key and up to three levels of subkeys below it.
  bool DeleteAppSection(const std::string& applicationName, const std::string& section);
  bool AppSectionExists(const std::string& applicationName, const std::string& section) const;

  bool KeyExists(Hive hive, const std::string& path) const;
  /// Replaces `names` by the direct subkeys in order of creation; true when there is at least one.
  bool EnumSubKeys(Hive hive, const std::string& path, std::vector<std::string>& names) const;
  /// Appends names and texts of all plain string values, in order of creation; true when the key
  /// exists.
  bool EnumStringValues(Hive hive, const std::string& path, std::vector<std::string>& names,
                        std::vector<std::string>& texts) const;
  /// Typed read; false when the key or value is missing. Text types lose their terminating NUL.
  bool QueryValue(Hive hive, const std::string& path, const std::string& valueName,
                  RegistryValue& value) const;
  /// Writes a string whose stored length excludes the NUL, creating the key as needed.
  bool SetStringValue(Hive hive, const std::string& path, const std::string& valueName,
                      const std::string& text);
  bool DeleteValue(Hive hive, const std::string& path, const std::string& valueName);
  bool DeleteKey(Hive hive, const std::string& path);
  /// Whether the system is of the Windows NT family; its registry layout is the one used
  /// everywhere.
  static bool IsWindowsNT() { return true; }

  /// Copies the sections of the older storage location, once: nothing happens when the application
  /// key exists and `overwrite` is false, or when the old key has no sections. The old key stays.
  void MigrateLegacySettings(const std::string& applicationName, bool overwrite);

 private:
  Registry& registry_;
};

}  // namespace wattlark
