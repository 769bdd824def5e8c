#include "platform/xdg/AutostartRegistry.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <string_view>
#include <utility>

#include "config/modRegistry.h"
#include "platform/RegistryPath.h"
#include "platform/linux/PrivateFolder.h"
#include "platform/xdg/DesktopID.h"
#include "support/modText.h"

namespace wattlark {

namespace {

bool IsRunKey(Hive hive, const std::string& path) {
  return hive == Hive::LocalMachine &&
         FoldCase(NormalRegistryPath(path)) == FoldCase(RunAtLogOnKey);
}

std::string TextOf(const RegistryValue& value) {
  return {value.data.begin(), std::ranges::find(value.data, std::uint8_t{0})};
}

std::string_view WithoutQuotes(std::string_view command) {
  if (command.size() < 2 || command.front() != '"' || command.back() != '"') return command;
  return command.substr(1, command.size() - 2);
}

// As one argument of a command line: in quotes, "%" doubled so that it is no field code.
std::string Quoted(std::string_view argument) {
  std::string quoted = "\"";
  for (const char c : argument) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
    if (c == '%') quoted += '%';
    quoted += c;
  }
  return quoted + '"';
}

// As the value of a key. Quoting comes first and is undone last.
std::string Escaped(std::string_view value) {
  std::string escaped;
  for (const char c : value) {
    switch (c) {
      case '\\':
        escaped += "\\\\";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\t':
        escaped += "\\t";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace

std::string AutostartFolder() {
  const QByteArray config = qgetenv("XDG_CONFIG_HOME");
  const QByteArray folder =
      config.startsWith('/') ? config : QFile::encodeName(QDir::homePath()) + "/.config";
  return folder.toStdString() + "/autostart";
}

std::string AutostartEntry(const std::string& name, const std::string& command) {
  return "[Desktop Entry]\nType=Application\nName=" + Escaped(name) +
         "\nExec=" + Escaped(Quoted(WithoutQuotes(command))) + "\nIcon=" + DesktopID +
         "\nTerminal=false\n";
}

bool AutostartRegistry::Write(Hive hive, const std::string& path, const std::string& name,
                              const RegistryValue& value) {
  if (!inner_.Write(hive, path, name, value)) return false;
  return !IsRunKey(hive, path) || Change(name, TextOf(value));
}

bool AutostartRegistry::DeleteValue(Hive hive, const std::string& path, const std::string& name) {
  const bool deleted = inner_.DeleteValue(hive, path, name);
  // An entry can be there without a value: another profile's, or one made by hand.
  return (IsRunKey(hive, path) && Change(name, std::nullopt)) || deleted;
}

bool AutostartRegistry::Begin() {
  const bool begun = inner_.Begin();
  isTransaction_ = isTransaction_ || begun;
  return begun;
}

bool AutostartRegistry::Commit() {
  const bool committed = inner_.Commit();
  const auto changes = std::exchange(waiting_, {});
  isTransaction_ = false;
  if (!committed) return false;
  for (const auto& [name, command] : changes) ChangeEntry(name, command);
  return true;
}

void AutostartRegistry::Rollback() {
  waiting_.clear();
  isTransaction_ = false;
  inner_.Rollback();
}

bool AutostartRegistry::Change(const std::string& name, const std::optional<std::string>& command) {
  if (!isTransaction_) return ChangeEntry(name, command);
  waiting_[name] = command;
  return true;
}

bool AutostartRegistry::ChangeEntry(const std::string& name,
                                    const std::optional<std::string>& command) const {
  if (name.empty() || name.find_first_of(std::string_view("/\0", 2)) != std::string::npos) {
    return false;
  }
  const QString file = QFile::decodeName((folder_ + "/" + FoldCase(name) + ".desktop").c_str());
  if (!command) return QFile::remove(file);
  if (!CreatePrivateFolder(folder_).empty()) return false;
  const std::string text = AutostartEntry(name, *command);
  QSaveFile output(file);
  return output.open(QIODevice::WriteOnly) &&
         output.write(text.data(), std::ssize(text)) == std::ssize(text) && output.commit();
}

}  // namespace wattlark
