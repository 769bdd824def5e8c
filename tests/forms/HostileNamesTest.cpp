#include <QLabel>
#include <QMenu>
#include <QTabBar>

#include "forms/MainWindowFixture.h"

namespace wattlark {
namespace {

using testing::HasSubstr;

/// A name that markup, a terminal, a path or the direction of writing could take for more than
/// text.
struct HostileNames : MainWindowTest, testing::WithParamInterface<std::string> {
  std::string title;

  void ExpectPlain(const QString& text, const char* where) const {
    EXPECT_FALSE(Qt::mightBeRichText(text) && text.contains("<b>x")) << where << text.toStdString();
  }
  /// Looks at all that the window shows or says.
  void ExpectPlainWindow() const {
    const auto& tabs = Control<QTabBar>("tabKillAWatt");
    ASSERT_EQ(tabs.count(), 3);
    for (int i = 0; i < tabs.count(); ++i) ExpectPlain(tabs.tabToolTip(i), "tab ");
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
      ExpectPlain(widget->toolTip(), "tooltip ");
      ExpectPlain(widget->statusTip(), "status tip ");
      const auto* label = qobject_cast<const QLabel*>(widget);
      if (label == nullptr || !label->text().contains("<b>x")) continue;
      EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->objectName().toStdString();
    }
  }
};

TEST_P(HostileNames, AreShownAsTextOnEveryPage) {
  PutMeter(GetParam(), 5);
  PutMeter("Office", 6);
  Put("Settings", "DemoMode", "True");
  frmMain& main = Start();
  for (const char* view : {"mnuView0", "mnuView1", "mnuView2", "mnuView3"}) {
    Choose(view);
    Tick(2);
    ExpectPlainWindow();
  }
  EXPECT_LE(main.minimumSizeHint().width(), 800);
  EXPECT_LE(main.sizeHint().width(), 800);
  for (const QAction* action : main.TrayMenu().actions()) ExpectPlain(action->toolTip(), "menu ");
  monitor->SetInfoText("Updated " + GetParam());
  ExpectPlainWindow();
  monitor->Unload();
  EXPECT_THAT(Get("KillAWatts\\" + GetParam(), "XBeeAddress"), HasSubstr("5"));
}

INSTANTIATE_TEST_SUITE_P(Names, HostileNames,
                         testing::Values("<b>x</b><img src='file:///etc/passwd'>&amp;&",
                                         "<b>x\xE2\x80\xAEgnp.exe", "<b>x\x1B[2J\x07\r\n",
                                         "<b>x/../../etc/passwd",
                                         "<b>x" + std::string(10000, 'W')));

}  // namespace
}  // namespace wattlark
