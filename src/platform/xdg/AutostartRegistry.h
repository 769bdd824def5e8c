#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Registry.h"

namespace wattlark {

/// The folder of the user's autostart entries: "autostart" in $XDG_CONFIG_HOME, or in ~/.config
/// when that is not set to an absolute path.
std::string AutostartFolder();

/// The text of an autostart entry. `command` is the path of a program in double quotes, or without
/// any.
std::string AutostartEntry(const std::string& name, const std::string& command);

/// A registry whose values of `RunAtLogOnKey` do what they do on Windows: each of them is an
/// autostart entry of the user's desktop too, "name.desktop" in small letters. All else is the
/// inner registry's. Within a transaction the entries change once it is committed; an entry that
/// cannot be written or removed then fails no other change.
class AutostartRegistry final : public Registry {
 public:
  /// `inner` must outlive this object. `folder` is created when it is first needed.
  AutostartRegistry(Registry& inner, std::string folder)
      : inner_(inner), folder_(std::move(folder)) {}

  bool KeyExists(Hive hive, const std::string& path) override {
    return inner_.KeyExists(hive, path);
  }
  bool CreateKey(Hive hive, const std::string& path) override {
    return inner_.CreateKey(hive, path);
  }
  bool DeleteKey(Hive hive, const std::string& path) override {
    return inner_.DeleteKey(hive, path);
  }
  std::vector<std::string> SubKeys(Hive hive, const std::string& path) override {
    return inner_.SubKeys(hive, path);
  }
  std::optional<RegistryValue> Read(Hive hive, const std::string& path,
                                    const std::string& name) override {
    return inner_.Read(hive, path, name);
  }
  bool Write(Hive hive, const std::string& path, const std::string& name,
             const RegistryValue& value) override;
  bool DeleteValue(Hive hive, const std::string& path, const std::string& name) override;
  std::vector<NamedRegistryValue> Values(Hive hive, const std::string& path) override {
    return inner_.Values(hive, path);
  }
  bool Begin() override;
  void MarkProgress() override { inner_.MarkProgress(); }
  bool Commit() override;
  void Rollback() override;
  std::string ErrorText() const override { return inner_.ErrorText(); }

 private:
  bool Change(const std::string& name, const std::optional<std::string>& command);
  bool ChangeEntry(const std::string& name, const std::optional<std::string>& command) const;

  Registry& inner_;
  const std::string folder_;
  bool isTransaction_ = false;
  std::map<std::string, std::optional<std::string>> waiting_;  ///< commands by name; none removes
};

}  // namespace wattlark
