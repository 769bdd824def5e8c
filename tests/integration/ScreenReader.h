#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <optional>
#include <string>
#include <vector>

namespace wattlark {

/// Reads the windows of all running programs as a screen reader does: over the accessibility bus of
/// the session.
class ScreenReader {
 public:
  ScreenReader();
  ~ScreenReader();
  ScreenReader(const ScreenReader&) = delete;
  ScreenReader& operator=(const ScreenReader&) = delete;

  /// The names and texts of everything that is on the screen, each on a line.
  std::string Screen();
  /// Presses the button, or chooses the item, of this name; false when none is on the screen.
  bool Choose(const std::string& name);

 private:
  struct Node {
    QString service;
    QString path;
    QString name;
  };

  QDBusMessage Call(const Node& node, const QString& interface, const QString& method,
                    const QVariantList& arguments = {});
  std::vector<Node> Children(const Node& node);
  QString NameOf(const Node& node);
  bool IsShowing(const Node& node);
  /// Adds what is on the screen below `node`.
  void Collect(const Node& node, bool isProgram, std::vector<Node>& found);
  std::vector<Node> Showing();

  QDBusConnection bus_;
};

}  // namespace wattlark
