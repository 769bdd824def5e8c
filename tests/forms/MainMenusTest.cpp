#include <QDialog>
#include <QMenuBar>

#include "MainWindowFixture.h"

namespace wattlark {
namespace {

using testing::IsEmpty;

// "-" is a separator; the first text is the menu's own.
QString Captions(const QMenu& menu) {
  QStringList captions{menu.title()};
  for (const QAction* action : menu.actions()) {
    captions += action->isSeparator() ? "-" : action->text();
  }
  return captions.join("|");
}

TEST_F(MainWindowTest, MenusHaveTheirCaptions) {
  Start();
  QStringList menus;
  for (const QAction* action : window->menuBar()->actions()) menus += Captions(*action->menu());
  EXPECT_EQ(menus.join("\n").toStdString(),
            "&File|Write Current Loads to the CSV Log File|Post Current Loads to Pachube|"
            "Post Current Loads to GoogleDoc Spreadsheet|Post Total Load to Google PowerMeter|"
            "Tweet My Current Stats|-|&Close|E&xit\n"
            "&Edit|Cu&t|&Copy|&Paste\n"
            "&View|&Current Conditions|&Graph of Recent Values|&Total Usage|"
            "&Last Kill-A-Watt Packet|-|&Always on Top\n"
            "&Tools|&Add a Kill-A-Watt Meter...|&Edit Kill-A-Watt Properties...|"
            "&Remove Selected Kill-A-Watt...|-|Reset Selected Kill-A-Watt &Data...|-|"
            "&Calibrate Selected Kill-A-Watt...|Reset Kill-A-Watt Calibration to De&fault...|-|"
            "&Options...\n"
            "&Help|Wattlark Help (online)...|Fennick Labs Website...|-|"
            "Check for Wattlark Updates...|-|About Wattlark...");
  EXPECT_EQ(Captions(window->TrayMenu()).toStdString(),
            "SysTray|&Show Main Window...|&Options...|-|Write Current Loads to the CSV Log File|"
            "Post Current Loads to Pachube|Post Current Loads to GoogleDoc Spreadsheet|"
            "Post Total Load to Google PowerMeter|Tweet My Current Stats|-|"
            "Wattlark Help (online)...|About Wattlark...|-|E&xit");
}

TEST_F(MainWindowTest, MenusAreEnabledByTheState) {
  for (const auto feature :
       {&MenuActions::postToPachube, &MenuActions::postToGoogleDocs, &MenuActions::postToPowerMeter,
        &MenuActions::postToTwitter, &MenuActions::calibrate, &MenuActions::showOptions,
        &MenuActions::checkForUpdates}) {
    options.features.*feature = [](bool) {};
  }
  const auto expect = [this](bool flows, bool addMeter, bool meter) {
    for (const char* menu : {"mnuFile", "mnuEdit", "mnuView", "mnuTools", "mnuHelp"}) {
      emit Control<QMenu>(menu).aboutToShow();
    }
    emit window->TrayMenu().aboutToShow();
    using Row = std::tuple<const char*, std::vector<int>, bool>;
    for (const auto& [menu, items, isEnabled] :
         {Row{"mnuFile", {0, 1, 2, 3, 4}, flows}, Row{"mnuFile", {6, 7}, true},
          Row{"mnuEdit", {0, 1, 2}, true}, Row{"mnuView", {0, 1, 2, 3}, flows},
          Row{"mnuView", {5}, true}, Row{"mnuTools", {0}, addMeter},
          Row{"mnuTools", {1, 2, 4, 6, 7}, meter}, Row{"mnuTools", {9}, true},
          Row{"mnuHelp", {0, 1, 3, 5}, true}, Row{"mnuSysTray", {3, 4, 5, 6, 7}, flows},
          Row{"mnuSysTray", {0, 1, 9, 10, 12}, true}}) {
      for (const int item : items) {
        const QString name = menu + QString::number(item);
        EXPECT_EQ(Item(name).isEnabled(), isEnabled) << name.toStdString();
      }
    }
  };
  Start();
  expect(false, true, false);
  TearDown();
  Start(2);
  expect(true, true, false);
  Control<QTabBar>("tabKillAWatt").setCurrentIndex(1);
  expect(true, true, true);
  port.Close();
  expect(false, false, false);
}

TEST_F(MainWindowTest, AnItemWithoutItsFeatureOrNoLongerAllowedDoesNothing) {
  Start(1);
  for (const char* name : {"mnuFile1", "mnuTools6", "mnuTools9", "mnuHelp3", "mnuSysTray4"}) {
    EXPECT_FALSE(Item(name).isEnabled()) << name;
  }
  port.Close();  // while a menu is open
  Choose("mnuTools1");
  EXPECT_THAT(edited, IsEmpty());
  EXPECT_FALSE(Item("mnuTools1").isEnabled());
}

struct PublishingMenus : MainWindowTest {
  PublishingMenus() {
    web = &webPorts;
    Put("Settings", "PachubeFeedURL", "http://feed");
  }
};

TEST_F(PublishingMenus, ReachTheirDestinations) {
  Put("Settings", "PowerMeterAuthInfo", "token=t&path=/p");
  for (const char* name :
       {"GoogleUsername", "GooglePassword", "TwitterUsername", "TwitterPassword"}) {
    Put("Settings", name, "me");
  }
  Start(1);
  monitor->Profile().Total().Statistics().SetDemandRecent(Hour, std::vector<double>(60, 5));
  using Row = std::tuple<int, ScriptedHttp*, const char*>;
  for (const auto& [item, client, error] : {Row{1, &pachube, "Pachube: Error Returned >> "},
                                            Row{2, &google, "Google: Invalid response >> "},
                                            Row{3, &google, "Google: Error Returned - "},
                                            Row{4, &twitter, "Twitter: Invalid or no response"}}) {
    prompts.asked.clear();
    client->requests.clear();
    Choose("mnuFile" + QString::number(item));
    Choose("mnuSysTray" + QString::number(item + 3));
    // The main window tells of an error in a box, the notification area opens none.
    ASSERT_EQ(prompts.asked.size(), 1U) << item;
    EXPECT_EQ(prompts.asked[0].text, error);
    ASSERT_EQ(client->requests.size(), 2U) << item;
    EXPECT_EQ(client->requests[0].url, client->requests[1].url);
  }
}

// The wait could not end before the window that is open above it.
TEST_F(PublishingMenus, OpenNoWindowWhileAServerIsWaitedFor) {
  Start(1);
  pump.onRound = [this](int round) {
    if (round != 1) return;
    Choose("mnuTools0");
    Choose("mnuFile1");
    EXPECT_THAT(edited, IsEmpty());
    EXPECT_THAT(prompts.asked, IsEmpty());
    EXPECT_FALSE(monitor->Errors().IsEmpty());
  };
  Choose("mnuSysTray4");
  EXPECT_GT(pump.rounds, 0);
  QCoreApplication::processEvents();
  EXPECT_THAT(edited, testing::SizeIs(1));
  EXPECT_THAT(prompts.asked, IsEmpty());
}

// A desktop that shows the menu bar in its panel leaves it in reach.
TEST_F(MainWindowTest, WhileADialogWaitsTheMenusOpenNothing) {
  Start(1);
  QDialog dialog;
  dialog.setModal(true);
  dialog.show();
  for (const char* name : {"mnuTools1", "mnuTools2", "mnuSysTray10", "mnuSysTray12"}) Choose(name);
  EXPECT_THAT(edited, IsEmpty());
  EXPECT_THAT(prompts.asked, IsEmpty());
  EXPECT_EQ(ends, 0);
  dialog.close();
  Choose("mnuTools1");
  EXPECT_THAT(edited, testing::SizeIs(1));
}

}  // namespace
}  // namespace wattlark
