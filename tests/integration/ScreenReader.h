#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <algorithm>
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
      for (const QString& text :
           {node.name, Ask(node, "org.a11y.atspi.Text", "GetText", {0, kToTheEnd}).toString()}) {
        if (!text.isEmpty()) lines += text + "\n";
      }
    }
    return lines.toStdString();
  }
  /// Presses the button, or chooses the item, of this name; false when none is on the screen.
  bool Choose(const std::string& name) {
    return std::ranges::any_of(Showing(), [&](const Node& node) {
      return node.name.toStdString() == name &&
             Ask(node, "org.a11y.atspi.Action", "DoAction", {0}).isValid();
    });
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
  void Collect(Node node, bool isProgram, std::vector<Node>& found) {
    if (!isProgram) {
      const auto states = qdbus_cast<QList<uint>>(Ask(node, kAccessible, "GetState"));
      if ((states.value(0) >> kShowing & 1U) == 0) return;
      node.name = Ask(node, "org.freedesktop.DBus.Properties", "Get",
                      {QString(kAccessible), QString("Name")})
                      .value<QDBusVariant>()
                      .variant()
                      .toString();
      found.push_back(node);
    }
    for (const Node& child : Children(node)) Collect(child, false, found);
  }
  // What it answers first; nothing of what does not answer: programs and controls come and go.
  QVariant Ask(const Node& node, const QString& interface, const QString& method,
               const QVariantList& arguments = {}) {
    QDBusMessage call = QDBusMessage::createMethodCall(node.service, node.path, interface, method);
    call.setArguments(arguments);
    const QDBusMessage answer = bus_.call(call, QDBus::Block, kMilliseconds);
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0) : QVariant();
  }
  std::vector<Node> Children(const Node& node) {
    std::vector<Node> children;
    const QVariant answer = Ask(node, kAccessible, "GetChildren");
    if (!answer.isValid()) return children;
    const auto list = answer.value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
      QDBusObjectPath path;
      Node& child = children.emplace_back();
      list.beginStructure();
      list >> child.service >> path;
      list.endStructure();
      child.path = path.path();
    }
    list.endArray();
    return children;
  }

  QDBusConnection bus_ = AccessibilityBus();
};

}  // namespace wattlark
