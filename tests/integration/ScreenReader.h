#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <stdexcept>
#include <string>
#include <vector>

namespace wattlark {

/// Reads the windows of all running programs as a screen reader does: over the accessibility bus of
/// the session.
class ScreenReader {
 public:
  ScreenReader() = default;
  ~ScreenReader() { QDBusConnection::disconnectFromBus(kBusName); }
  ScreenReader(const ScreenReader&) = delete;
  ScreenReader& operator=(const ScreenReader&) = delete;

  /// The names and texts of everything that is on the screen, each on a line.
  std::string Screen() {
    QString lines;
    for (const Node& node : Showing()) {
      if (!node.name.isEmpty()) lines += node.name + "\n";
      const QDBusMessage text = Call(node, "org.a11y.atspi.Text", "GetText", {0, kToTheEnd});
      if (text.type() == QDBusMessage::ReplyMessage) {
        lines += text.arguments().at(0).toString() + "\n";
      }
    }
    return lines.toStdString();
  }
  /// Presses the button, or chooses the item, of this name; false when none is on the screen.
  bool Choose(const std::string& name) {
    for (const Node& node : Showing()) {
      if (node.name.toStdString() != name) continue;
      const QDBusMessage answer = Call(node, "org.a11y.atspi.Action", "DoAction", {0});
      if (answer.type() == QDBusMessage::ReplyMessage) return true;
    }
    return false;
  }

 private:
  struct Node {
    QString service;
    QString path;
    QString name;
  };
  static constexpr const char* kBusName = "wattlark-screen-reader";
  static constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
  static constexpr unsigned kShowing = 25;  // of the states in the AT-SPI protocol
  static constexpr int kToTheEnd = -1;      // of a text
  static constexpr int kMilliseconds = 2000;

  static QDBusConnection AccessibilityBus() {
    const QDBusMessage answer = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus",
                                       "GetAddress"),
        QDBus::Block, 10000);
    if (answer.type() != QDBusMessage::ReplyMessage) {
      throw std::runtime_error("no accessibility bus: " + answer.errorMessage().toStdString());
    }
    return QDBusConnection::connectToBus(answer.arguments().at(0).toString(), kBusName);
  }

  std::vector<Node> Showing() {
    std::vector<Node> found;
    const Node root{"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root", {}};
    for (const Node& program : Children(root)) Collect(program, true, found);
    return found;
  }
  // A program has no state of its own, and what is below a hidden control is hidden too.
  void Collect(const Node& node, bool isProgram, std::vector<Node>& found) {
    if (!isProgram) {
      if (!IsShowing(node)) return;
      found.push_back({node.service, node.path, NameOf(node)});
    }
    for (const Node& child : Children(node)) Collect(child, false, found);
  }
  QDBusMessage Call(const Node& node, const QString& interface, const QString& method,
                    const QVariantList& arguments = {}) {
    QDBusMessage call = QDBusMessage::createMethodCall(node.service, node.path, interface, method);
    call.setArguments(arguments);
    return bus_.call(call, QDBus::Block, kMilliseconds);
  }
  // Programs and controls come and go meanwhile: what does not answer is not there.
  std::vector<Node> Children(const Node& node) {
    std::vector<Node> children;
    const QDBusMessage answer = Call(node, kAccessible, "GetChildren");
    if (answer.type() != QDBusMessage::ReplyMessage) return children;
    const auto list = answer.arguments().at(0).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
      Node child;
      QDBusObjectPath path;
      list.beginStructure();
      list >> child.service >> path;
      list.endStructure();
      child.path = path.path();
      children.push_back(child);
    }
    list.endArray();
    return children;
  }
  QString NameOf(const Node& node) {
    const QDBusMessage answer = Call(node, "org.freedesktop.DBus.Properties", "Get",
                                     {QString(kAccessible), QString("Name")});
    if (answer.type() != QDBusMessage::ReplyMessage) return {};
    return answer.arguments().at(0).value<QDBusVariant>().variant().toString();
  }
  bool IsShowing(const Node& node) {
    const QDBusMessage answer = Call(node, kAccessible, "GetState");
    if (answer.type() != QDBusMessage::ReplyMessage) return false;
    const auto states = answer.arguments().at(0).value<QDBusArgument>();
    uint word = 0;
    bool isShowing = false;
    states.beginArray();
    for (unsigned base = 0; !states.atEnd(); base += 32) {
      states >> word;
      if (base <= kShowing && kShowing < base + 32)
        isShowing = (word >> (kShowing - base) & 1U) != 0;
    }
    states.endArray();
    return isShowing;
  }

  QDBusConnection bus_ = AccessibilityBus();
};

}  // namespace wattlark
