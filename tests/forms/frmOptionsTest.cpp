#include <gmock/gmock.h>

#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <memory>

#include "config/forms/frmOptions.h"
#include "config/modRegistry.h"
#include "forms/FormChecks.h"
#include "twins/MemoryRegistry.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {
namespace {

struct frmOptionsTest : testing::Test {
  frmOptionsTest() {
    LoadAppSettings(store, text, "/logs/wattlark.csv", settings);
    settings.PortNum = 5;
    settings.ServiceState = 4;
    settings.Mils = 0.2;
    settings.GooglePassword = "geheim";
    settings.TwitterPassword = "secret";
  }

  void Open() {
    const auto list = [this] { return connected; };
    form = std::make_unique<frmOptions>(frmOptions::Context{
        {settings, registry, text, regional, prompts, &devices, "/opt/wattlark", [] {}},
        PortDeviceList::Ports{
            devices, list,
            [](const std::string& path) { return path == "/dev/busy" ? "In use" : ""; }},
        [] {}});
    form->show();
    QApplication::setActiveWindow(form.get());
  }
  template <typename Control = QLineEdit>
  Control& Get(const QString& name) {
    return Find<Control>(*form, name);
  }
  QString Note(const QString& field) {
    const auto& note = Get<QLabel>(field + "Note");
    EXPECT_EQ(note.text(), Get<QWidget>(field).accessibleDescription());
    return note.isHidden() ? "" : note.text();
  }

  RegionalSettings regional = RegionalSettings::UnitedStates();
  StoreText text{regional};
  AppSettings settings;
  MemoryRegistry registry;
  modRegistry store{registry};
  std::vector<SerialDevice> connected{{"/dev/serial/by-id/usb-A", "/dev/ttyUSB0", "FT232R"}};
  PortDevices devices{store, [this] { return connected; }};
  ScriptedPrompts prompts;
  std::unique_ptr<frmOptions> form;
};

TEST_F(frmOptionsTest, EveryControlEditsItsSetting) {
  Open();
  for (const char* box : {"chkShowAtLaunch", "chkRunAtStartup", "chkAutoUpdate", "chkDemoMode",
                          "chkLogToCSV", "chkLogToPachube", "chkLogToGoogle", "chkLogToPowerMeter",
                          "chkLogToTwitter", "chkAlarmsToTwitter"}) {
    Get<QCheckBox>(box).toggle();
  }
  using Row = std::pair<const char*, const char*>;
  for (const auto& [list, entry] :
       {Row{"cboPortNum", "COM11:"}, Row{"cboBaudRate", "115200"}, Row{"cboParity", " E"},
        Row{"cboDataBits", " 7"}, Row{"cboStopBits", "1.5"}, Row{"cboServiceState", "WY"},
        Row{"cboCSVInterval", "1 minute"}, Row{"cboPachubeInterval", "10 minutes"},
        Row{"cboGoogleInterval", "1 hour"}, Row{"cboPowerMeterInterval", "15 minutes"},
        Row{"cboTwitterInterval", "6 hours"}}) {
    ChooseEntry(*form, list, entry);
  }
  Get("txtMils").setText("$0.3");
  Get("txtCO2").setText("1.25");
  const char* boxes[] = {"txtPachubeFeedURL",  "txtPachubeAPIKey",       "txtGoogleDocName",
                         "txtGoogleUsername",  "txtGoogleWorksheetName", "txtGooglePassword",
                         "txtTwitterMessage",  "txtPowerMeterAuthToken", "txtTwitterAlarmMessage",
                         "txtTwitterUsername", "txtTwitterPassword"};
  for (const char* box : boxes) Get(box).setText(QString(" ") + box);
  Click(*form, "cmdOK");
  EXPECT_FALSE(form->isVisible());
  const AppSettings& s = settings;
  EXPECT_TRUE(s.RunAtStartup && s.DemoMode && s.LogToPachube && s.LogToGoogle &&
              s.LogToPowerMeter && s.LogToTwitter && s.AlarmsToTwitter);
  EXPECT_FALSE(s.ShowAtLaunch || s.AutoUpdate || s.LogToCSV);
  EXPECT_THAT((std::vector<int>{s.PortNum, s.ServiceState, s.CSVInterval, s.PachubeInterval,
                                s.GoogleInterval, s.PowerMeterInterval, s.TwitterInterval}),
              testing::ElementsAre(11, 50, 60, 600, 3600, 900, 6));
  EXPECT_EQ(s.BaudRate + s.Parity + s.DataBits + s.StopBits, "115200E71.5");
  EXPECT_EQ(s.Mils, 0.3);
  EXPECT_EQ(s.CO2perKWh, 1.25);
  EXPECT_EQ(s.PachubeFeedURL + s.PachubeAPIKey, " txtPachubeFeedURL txtPachubeAPIKey");
  EXPECT_EQ(s.GoogleDocName + s.GoogleWorksheetName, " txtGoogleDocName txtGoogleWorksheetName");
  EXPECT_EQ(s.GoogleUsername + s.GooglePassword, " txtGoogleUsername txtGooglePassword");
  EXPECT_EQ(s.PowerMeterAuthInfo, " txtPowerMeterAuthToken");
  EXPECT_EQ(s.TwitterMessage + s.TwitterAlarmMessage, " txtTwitterMessage txtTwitterAlarmMessage");
  EXPECT_EQ(s.TwitterUsername + s.TwitterPassword, " txtTwitterUsername txtTwitterPassword");
  Open();
  EXPECT_EQ(Get<QComboBox>("cboStopBits").currentText(), "1.5");
  EXPECT_EQ(Get("txtMils").text(), "$0.3000");
}

TEST_F(frmOptionsTest, AStateFillsTheElectricityFieldsOnceItIsChosen) {
  Open();
  EXPECT_EQ(Get<QComboBox>("cboServiceState").currentText(), "CA");
  EXPECT_EQ(Get("txtMils").text(), "$0.2000");
  ChooseEntry(*form, "cboServiceState", "CA");
  EXPECT_EQ(Get("txtMils").text(), "$0.7000");
  EXPECT_EQ(Get("txtCO2").text(), "0.1251");
  Click(*form, "cmdCancel");
  EXPECT_EQ(settings.Mils, 0.2);
  EXPECT_FALSE(store.AppSectionExists("", "Settings"));
}

TEST_F(frmOptionsTest, PointsOutWhatIsNotTaken) {
  settings.CSVInterval = 120;
  settings.GoogleDocName = settings.TwitterAlarmMessage = "a\xFF\nb";
  Open();
  EXPECT_EQ(Note("cboCSVInterval"), "The present setting is not in this list: choose an entry.");
  ChooseEntry(*form, "cboCSVInterval", "1 hour");
  EXPECT_EQ(Note("cboCSVInterval"), "");
  Get("txtMils").setText("cheap");
  EXPECT_EQ(Note("txtMils"), "This is no number: $0.2000 stays.");
  Get("txtTwitterMessage").clear();
  EXPECT_NE(Note("txtTwitterMessage"), "");
  Click(*form, "cmdOK");
  EXPECT_FALSE(form->isVisible());
  EXPECT_THAT(prompts.asked, testing::IsEmpty());
  EXPECT_EQ(settings.GoogleDocName + settings.TwitterAlarmMessage, "a\xFF\nba\xFF\nb")
      << "nobody touched them";
}

TEST_F(frmOptionsTest, TheDeviceOfEachPortIsChosen) {
  Open();
  auto& list = Get<QComboBox>("cboPortDevice");
  EXPECT_EQ(list.currentText(), "/dev/serial/by-id/usb-A");
  EXPECT_EQ(list.itemText(0), QString("FT232R \u2013 /dev/serial/by-id/usb-A"));
  list.setEditText("busy");
  EXPECT_NE(Note("cboPortDevice"), "");
  ChooseEntry(*form, "cboPortNum", "COM1:");
  EXPECT_EQ(list.currentText(), "/dev/ttyS0");
  EXPECT_EQ(Note("cboPortDevice"), "");
  list.setFocus();
  list.lineEdit()->setText("/dev/busy");
  QTest::keyClick(&list, Qt::Key_Tab);
  EXPECT_EQ(Note("cboPortDevice"), "In use");
  connected.push_back({"", "/dev/ttyACM0", ""});
  list.showPopup();
  EXPECT_EQ(list.count(), 2);
  EXPECT_EQ(list.currentText(), "/dev/busy");
  list.hidePopup();
  ChooseEntry(*form, "cboPortDevice", QString("FT232R \u2013 /dev/serial/by-id/usb-A"));
  EXPECT_EQ(list.currentText(), "/dev/serial/by-id/usb-A");
  Click(*form, "cmdOK");
  EXPECT_EQ(devices.Path(1), "/dev/serial/by-id/usb-A");
  EXPECT_EQ(store.GetAppSetting("", "PortDevices", "COM5", "none"), "none") << "no path";
}

TEST_F(frmOptionsTest, TheButtonChoosesTheCSVFile) {
  settings.CSVFilename = "/logs/" + std::string(60, 'x') + "/wattlark.csv";
  Open();
  for (const char* chosen : {"", "/logs/new.csv"}) {
    EXPECT_EQ(Get("txtCSVFilename").text(), "/logs/.../wattlark.csv") << chosen;
    if (*chosen != '\0') prompts.chosenFile = chosen;
    Click(*form, "cmdSetCSVFilename");
  }
  const auto question = testing::FieldsAre("Save Log File", testing::HasSubstr("(*.csv)"),
                                           settings.CSVFilename, true);
  EXPECT_THAT(prompts.choosers, testing::ElementsAre(question, question));
  EXPECT_EQ(Get("txtCSVFilename").text(), "/logs/new.csv");
  EXPECT_NE(settings.CSVFilename, "/logs/new.csv");
  Click(*form, "cmdOK");
  EXPECT_EQ(settings.CSVFilename, "/logs/new.csv");
  EXPECT_TRUE(settings.CSVFileChanged);
}

TEST_F(frmOptionsTest, PasswordsAreNeverGivenAway) {
  Open();
  QApplication::clipboard()->setText("before");
  for (const auto& [tab, name] : {std::pair(3, "txtGooglePassword"), {5, "txtTwitterPassword"}}) {
    Get<QTabWidget>("tabOptions").setCurrentIndex(tab);
    QLineEdit& box = Get(name);
    EXPECT_FALSE(box.displayText().contains(box.text().left(1))) << name;
    box.setFocus();
    for (const auto key : {Qt::Key_A, Qt::Key_C, Qt::Key_X}) {
      QTest::keyClick(&box, key, Qt::ControlModifier);
    }
    EXPECT_EQ(QApplication::clipboard()->text(), "before") << name;
  }
}

TEST_F(frmOptionsTest, EveryControlIsNamedAndHasAKeyOfItsTab) {
  Open();
  auto& tabs = Get<QTabWidget>("tabOptions");
  ASSERT_EQ(tabs.count(), 6);
  for (int tab = 0; tab < tabs.count(); ++tab) {
    std::set<QKeySequence> keys;
    ExpectNamesAndKeys(*tabs.widget(tab), keys);
    EXPECT_GE(keys.size(), 3u);
  }
}

}  // namespace
}  // namespace wattlark
