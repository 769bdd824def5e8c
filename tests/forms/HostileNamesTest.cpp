#include "forms/MainWindowFixture.h"

namespace wattlark {
namespace {

/// A name that markup, a terminal, a path or the direction of writing could take for more than
/// text.
struct HostileNames : MainWindowTest, testing::WithParamInterface<std::string> {
  static void ExpectPlain(const QString& text) {
    EXPECT_FALSE(Qt::mightBeRichText(text) && text.contains("<b>x")) << text.toStdString();
  }
  /// Looks at all that the window shows or says.
  void ExpectPlainWindow() const {
    const auto& tabs = Control<QTabBar>("tabKillAWatt");
    ASSERT_EQ(tabs.count(), 3);
    for (int i = 0; i < tabs.count(); ++i) ExpectPlain(tabs.tabToolTip(i));
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
      ExpectPlain(widget->toolTip());
      ExpectPlain(widget->statusTip());
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
  Start();
  for (const char* view : {"mnuView0", "mnuView1", "mnuView2", "mnuView3"}) {
    Choose(view);
    Tick(2);
    ExpectPlainWindow();
  }
  EXPECT_LE(window->minimumSizeHint().width(), 800);
  EXPECT_LE(window->sizeHint().width(), 800);
  for (const QAction* action : window->TrayMenu().actions()) ExpectPlain(action->toolTip());
  monitor->SetInfoText("Updated " + GetParam());
  EXPECT_THAT(Control("INFO").toolTip().toStdString(), testing::HasSubstr("x"));
  ExpectPlainWindow();
  monitor->Unload();
  EXPECT_EQ(Get("KillAWatts\\" + GetParam(), "XBeeAddress"), "5");
}

INSTANTIATE_TEST_SUITE_P(Names, HostileNames,
                         testing::Values("<b>x</b><img src='file:///etc/passwd'>&amp;&",
                                         "<b>x\xE2\x80\xAEgnp.exe", "<b>x\x1B[2J\x07\r\n",
                                         "<b>x/../../etc/passwd",
                                         "<b>x" + std::string(10000, 'W')));

}  // namespace
}  // namespace wattlark
