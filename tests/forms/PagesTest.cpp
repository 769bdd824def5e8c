#include <QTest>

#include "forms/MainWindowFixture.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

struct PagesTest : MainWindowTest {
  void ShowWindow(int meterCount = 2) {
    Start(meterCount).ShowAtLaunch();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  }
  PageStrip& Strip() const { return Control<PageStrip>("elaScroller"); }
  /// Lets the slide that runs come to its end at once.
  void EndSlide() const {
    for (auto* slide : Strip().findChildren<QVariantAnimation*>()) {
      if (slide->state() == QVariantAnimation::Running) slide->setCurrentTime(slide->duration());
    }
  }
  /// Pages that the user can see and reach, from 1.
  std::vector<int> PagesInSight() const {
    std::vector<int> pages;
    for (int page = 1; page <= Strip().PageCount(); ++page) {
      const QWidget* widget = Strip().Pages()[static_cast<std::size_t>(page - 1)].widget;
      if (widget != nullptr && widget->isVisible()) pages.push_back(page);
    }
    return pages;
  }
  void ExpectPage(int page) const {
    EXPECT_EQ(Strip().CurrentPage(), page);
    for (int i = 0; i < 4; ++i) {
      const QString index = QString::number(i);
      EXPECT_EQ(Control<PageShape>("shpPage" + index).IsFilled(), i == page - 1) << i;
      EXPECT_EQ(Item("mnuView" + index).isChecked(), i == page - 1) << i;
    }
    EndSlide();
    EXPECT_THAT(PagesInSight(), ElementsAre(page));
    EXPECT_EQ(Strip().Pages()[static_cast<std::size_t>(page - 1)].widget->x(), 0);
  }
};

TEST_F(PagesTest, ButtonsStepAndStopAtBothEndsAndMenuAndKeysChoose) {
  ShowWindow();
  Click(*window, "elaNavigation0");
  ExpectPage(1);
  for (const int page : {2, 3, 4, 4}) {
    Click(*window, "elaNavigation1");
    ExpectPage(page);
  }
  Click(*window, "elaNavigation0");
  ExpectPage(3);
  for (int i = 0; i < 2; ++i) {
    Choose("mnuView1");
    ExpectPage(2);
  }
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  QTest::keyClick(window.get(), Qt::Key_PageDown, Qt::ControlModifier);
  ExpectPage(3);
  QTest::keyClick(window.get(), Qt::Key_Left, Qt::AltModifier);
  ExpectPage(2);
}

TEST_F(PagesTest, TheKeyboardReachesAllOfThePageShownAndNothingOfOthers) {
  ShowWindow();
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  using Row = std::pair<int, std::vector<std::string>>;
  // The second and the third page are made when they are shown.
  for (const auto& [page, controls] :
       {Row{1, {"elaCurrentUnit0", "picMeter", "elaCurrentInterval0"}},
        Row{3, {"elaTotalUnit0", "flxTotals", "elaReset"}},
        Row{2, {"elaRecentUnit0", "chtRecent", "elaRecentInterval0"}}}) {
    window->ShowPage(page);
    EndSlide();
    Control("tabKillAWatt").setFocus();
    for (const std::string& name :
         {controls[0], controls[1], controls[2], std::string("elaNavigation0"),
          std::string("elaNavigation1"), std::string("INFO"), std::string("COMM"),
          std::string("tabKillAWatt")}) {
      QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
      EXPECT_EQ(window->focusWidget()->objectName().toStdString(), name);
      EXPECT_FALSE(window->focusWidget()->accessibleName().isEmpty()) << name;
    }
  }
}

/// A name that markup, a terminal, a path or the direction of writing could take for more than
/// text.
struct HostileNames : MainWindowTest {
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

TEST_F(HostileNames, AreShownAsTextOnEveryPage) {
  const std::string name =
      "<b>x</b><img src='file:///etc/passwd'>&amp;&\x1B[2J\x07\r\n\xE2\x80\xAE/../../etc/passwd" +
      std::string(10000, 'W');
  PutMeter(name, 5);
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
  monitor->SetInfoText("Updated " + name);
  EXPECT_THAT(Control("INFO").toolTip().toStdString(), HasSubstr("x"));
  ExpectPlainWindow();
  monitor->Unload();
  EXPECT_EQ(Get("KillAWatts\\" + name, "XBeeAddress"), "5");
}

}  // namespace
}  // namespace wattlark
