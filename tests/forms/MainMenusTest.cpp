#include <QDialog>
#include <QMenuBar>

#include "MainWindowFixture.h"
#include "app/WebPublishers.h"
#include "twins/ScriptedHttp.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// "-" is a separator; the first text is the menu's own.
std::vector<std::string> Captions(const QMenu& menu) {
  std::vector<std::string> captions{menu.title().toStdString()};
  for (const QAction* action : menu.actions()) {
    captions.push_back(action->isSeparator() ? "-" : action->text().toStdString());
  }
  return captions;
}

TEST_F(MainWindowTest, MenusHaveTheirCaptions) {
  Start();
  std::vector<std::vector<std::string>> bar;
  for (const QAction* action : window->menuBar()->actions())
    bar.push_back(Captions(*action->menu()));
  EXPECT_THAT(
      bar,
      ElementsAre(
          ElementsAre(
              "&File", "Write Current Loads to the CSV Log File", "Post Current Loads to Pachube",
              "Post Current Loads to GoogleDoc Spreadsheet", "Post Total Load to Google PowerMeter",
              "Tweet My Current Stats", "-", "&Close", "E&xit"),
          ElementsAre("&Edit", "Cu&t", "&Copy", "&Paste"),
          ElementsAre("&View", "&Current Conditions", "&Graph of Recent Values", "&Total Usage",
                      "&Last Kill-A-Watt Packet", "-", "&Always on Top"),
          ElementsAre("&Tools", "&Add a Kill-A-Watt Meter...", "&Edit Kill-A-Watt Properties...",
                      "&Remove Selected Kill-A-Watt...", "-", "Reset Selected Kill-A-Watt &Data...",
                      "-", "&Calibrate Selected Kill-A-Watt...",
                      "Reset Kill-A-Watt Calibration to De&fault...", "-", "&Options..."),
          ElementsAre("&Help", "Wattlark Help (online)...", "Fennick Labs Website...", "-",
                      "Check for Wattlark Updates...", "-", "About Wattlark...")));
  EXPECT_THAT(
      Captions(window->TrayMenu()),
      ElementsAre("SysTray", "&Show Main Window...", "&Options...", "-",
                  "Write Current Loads to the CSV Log File", "Post Current Loads to Pachube",
                  "Post Current Loads to GoogleDoc Spreadsheet",
                  "Post Total Load to Google PowerMeter", "Tweet My Current Stats", "-",
                  "Wattlark Help (online)...", "About Wattlark...", "-", "E&xit"));
}

struct EnabledCase {
  const char* name;
  bool portOpens;
  int meters;
  int tab;
  bool flows;
  bool addMeter;
  bool meter;
};

struct MenuEnabling : MainWindowTest, testing::WithParamInterface<EnabledCase> {};

TEST_P(MenuEnabling, FollowsTheState) {
  const EnabledCase& state = GetParam();
  port.opens = state.portOpens;
  for (const auto feature :
       {&MenuActions::postToPachube, &MenuActions::postToGoogleDocs, &MenuActions::postToPowerMeter,
        &MenuActions::postToTwitter, &MenuActions::calibrate, &MenuActions::showOptions,
        &MenuActions::checkForUpdates}) {
    options.features.*feature = [](bool) {};
  }
  Start(state.meters);
  Control<QTabBar>("tabKillAWatt").setCurrentIndex(state.tab);
  for (const char* menu : {"mnuFile", "mnuEdit", "mnuView", "mnuTools", "mnuHelp"}) {
    emit Control<QMenu>(menu).aboutToShow();
  }
  emit window->TrayMenu().aboutToShow();
  const struct {
    const char* menu;
    std::vector<int> items;
    bool enabled;
  } groups[] = {{"mnuFile", {0, 1, 2, 3, 4}, state.flows},
                {"mnuFile", {6, 7}, true},
                {"mnuEdit", {0, 1, 2}, true},
                {"mnuView", {0, 1, 2, 3}, state.flows},
                {"mnuView", {5}, true},
                {"mnuTools", {0}, state.addMeter},
                {"mnuTools", {1, 2, 4, 6, 7}, state.meter},
                {"mnuTools", {9}, true},
                {"mnuHelp", {0, 1, 3, 5}, true},
                {"mnuSysTray", {3, 4, 5, 6, 7}, state.flows},
                {"mnuSysTray", {0, 1, 9, 10, 12}, true}};
  for (const auto& group : groups) {
    for (const int item : group.items) {
      const QString name = group.menu + QString::number(item);
      EXPECT_EQ(Item(name).isEnabled(), group.enabled) << name.toStdString();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(States, MenuEnabling,
                         testing::Values(EnabledCase{"NoPort", false, 2, 1, false, false, false},
                                         EnabledCase{"NoMeters", true, 0, 0, false, true, false},
                                         EnabledCase{"Total", true, 2, 0, true, true, false},
                                         EnabledCase{"Meter", true, 2, 1, true, true, true}),
                         [](const auto& state) { return state.param.name; });

TEST_F(MainWindowTest, AnItemWithoutItsFeatureOrNoLongerAllowedDoesNothing) {
  Start(1);
  for (const char* name : {"mnuFile1", "mnuFile2", "mnuFile3", "mnuFile4", "mnuTools6", "mnuTools9",
                           "mnuHelp3", "mnuSysTray1", "mnuSysTray4", "mnuSysTray7"}) {
    EXPECT_FALSE(Item(name).isEnabled()) << name;
  }
  // A port can be lost while a menu is open.
  port.Close();
  Choose("mnuTools1");
  EXPECT_THAT(edited, IsEmpty());
  EXPECT_FALSE(Item("mnuTools1").isEnabled());
}

struct PublishingMenus : MainWindowTest {
  PublishingMenus() {
    web = &ports;
    Put("Settings", "PachubeFeedURL", "http://feed");
  }

  ScriptedHttp pachube;
  ScriptedHttp google;
  ScriptedHttp twitter;
  ScriptedHttp versionAlert;
  ScriptedPump pump{{&pachube, &google, &twitter}};
  WebPorts ports{pachube,      google, twitter,
                 versionAlert, pump,   [](DateTime local) { return local; }};
};

TEST_F(PublishingMenus, ReachTheirDestinations) {
  Put("Settings", "PowerMeterAuthInfo", "token=t&path=/p");
  for (const std::string service : {"Google", "Twitter"}) {
    Put("Settings", service + "Username", "me");
    Put("Settings", service + "Password", "pass");
  }
  Start(1);
  monitor->Profile().Total().Statistics().SetDemandRecent(Hour, std::vector<double>(60, 5));
  const std::pair<ScriptedHttp*, const char*> destinations[] = {
      {&pachube, "Pachube: Error Returned >> "},
      {&google, "Google: Invalid response >> "},
      {&google, "Google: Error Returned - "},
      {&twitter, "Twitter: Invalid or no response"}};
  int item = 0;
  for (const auto& [client, error] : destinations) {
    ++item;
    prompts.asked.clear();
    client->requests.clear();
    Choose("mnuFile" + QString::number(item));
    // The main window tells of an error in a box, the notification area opens none.
    ASSERT_EQ(prompts.asked.size(), 1U) << item;
    EXPECT_EQ(prompts.asked[0].text, error);
    Choose("mnuSysTray" + QString::number(item + 3));
    EXPECT_EQ(prompts.asked.size(), 1U) << item;
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
