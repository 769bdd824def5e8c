#include <gmock/gmock.h>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <ostream>
#include <utility>

#include "config/forms/frmEditKillAWatt.h"
#include "support/NoValue.h"
#include "support/RegionalForms.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::Pair;

struct frmEditKillAWattTest : testing::Test {
  frmEditKillAWattTest() {
    Add("Kitchen", 5);
    Add("Office", 6);
    form.SetKillAWatt(Kitchen());
    form.show();
    QApplication::setActiveWindow(&form);
  }

  void Add(const char* name, std::int16_t address) {
    auto meter = std::make_unique<clsKillAWatt>();
    meter->SetName(name);
    meter->SetXBeeAddress(address);
    ASSERT_TRUE(meters.Add(std::move(meter)));
  }
  clsKillAWatt& Kitchen() { return meters[0]; }
  MeterAlarm& Alarm() { return Kitchen().Alarm(); }

  template <typename Control>
  Control& Get(const char* name) {
    auto* control = form.findChild<Control*>(name);
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  QLineEdit& Box(const char* name) { return Get<QLineEdit>(name); }
  QComboBox& List(const char* name) { return Get<QComboBox>(name); }
  void Click(const char* button) { Get<QPushButton>(button).click(); }
  void Fill(const char* box, const char* text) { Box(box).setText(text); }
  void Choose(const char* list, const char* entry) {
    const int index = List(list).findText(entry);
    ASSERT_NE(index, -1) << entry;
    List(list).setCurrentIndex(index);
  }

  RegionalSettings regional = RegionalSettings::UnitedStates();
  MeterCollection meters;
  clsKillAWatt total;
  ScriptedPrompts prompts;
  frmEditKillAWatt form{{meters, total, regional, prompts}};
};

using Entry = std::pair<std::string, int>;

TEST_F(frmEditKillAWattTest, ListsCarryTheirNumbers) {
  const auto entries = [this](const char* name) {
    std::vector<Entry> found;
    for (int i = 0; i < List(name).count(); ++i) {
      found.emplace_back(List(name).itemText(i).toStdString(), List(name).itemData(i).toInt());
    }
    return found;
  };
  EXPECT_THAT(entries("cboVoltage"), ElementsAre(Entry("120 Vrms", 120), Entry("240 Vrms", 240)));
  EXPECT_THAT(entries("cboFrequency"), ElementsAre(Entry("50 Hz", 50), Entry("60 Hz", 60)));
  EXPECT_THAT(entries("cboKillAWattType"), ElementsAre(Entry("Load (lamp, appliance, etc.)", 0),
                                                       Entry("Generator (solar, wind, etc.)", 1)));
  EXPECT_THAT(
      entries("cboAlarmDuration"),
      ElementsAre(Entry("1 second", 0), Entry("5 seconds", 0), Entry("10 seconds", 10),
                  Entry("15 seconds", 15), Entry("30 seconds", 30), Entry("1 minute", 60),
                  Entry("5 minutes", 300), Entry("10 minutes", 600), Entry("15 minutes", 900),
                  Entry("30 minutes", 1800), Entry("1 hour", 3600)));
  EXPECT_THAT(
      entries("cboAlarmInterval"),
      ElementsAre(Entry("1 minute", 60), Entry("5 minutes", 30), Entry("10 minutes", 600),
                  Entry("15 minutes", 900), Entry("30 minutes", 1800), Entry("1 hour", 3600)));
}

TEST_F(frmEditKillAWattTest, ShowsTheMeter) {
  Kitchen().SetName("<b>Solar</b>");
  Kitchen().SetNominalVoltage(240);
  Kitchen().SetKillAWattType(GeneratorMeter);
  Alarm().SetAlarmUpperLimit(1500);
  Alarm().SetAlarmLowerLimit(NoValue);
  Alarm().SetAlarmDuration(5);
  Alarm().SetAlarmInterval(30);
  form.SetKillAWatt(Kitchen());
  EXPECT_EQ(Box("txtName").text(), "<b>Solar</b>");
  EXPECT_EQ(Box("txtXBeeAddress").text(), "5");
  EXPECT_EQ(List("cboVoltage").currentText(), "240 Vrms");
  EXPECT_EQ(List("cboFrequency").currentText(), "60 Hz");
  EXPECT_EQ(List("cboKillAWattType").currentText(), "Generator (solar, wind, etc.)");
  EXPECT_EQ(Box("txtAlarmLimit0").text(), "1,500.0");
  EXPECT_EQ(Box("txtAlarmLimit1").text(), "");
  EXPECT_EQ(List("cboAlarmDuration").currentIndex(), -1) << "no entry carries 5";
  EXPECT_EQ(List("cboAlarmInterval").currentText(), "5 minutes");
}

TEST_F(frmEditKillAWattTest, OKWritesEveryField) {
  Fill("txtName", "Solar");
  Fill("txtXBeeAddress", "77");
  Choose("cboVoltage", "240 Vrms");
  Choose("cboFrequency", "50 Hz");
  Choose("cboKillAWattType", "Generator (solar, wind, etc.)");
  Get<QCheckBox>("chkAlarmActive").setChecked(true);
  Fill("txtAlarmLimit0", "2,500");
  Fill("txtAlarmLimit1", "-10.5");
  Choose("cboAlarmDuration", "15 seconds");
  Choose("cboAlarmInterval", "10 minutes");
  Click("cmdOK");
  EXPECT_FALSE(form.isVisible());
  EXPECT_FALSE(form.Cancelled());
  EXPECT_TRUE(prompts.asked.empty());
  EXPECT_EQ(Kitchen().Name(), "Solar");
  EXPECT_EQ(meters.FindAddress(77), &Kitchen());
  EXPECT_EQ(Kitchen().NominalVoltage(), 240);
  EXPECT_EQ(Kitchen().NominalFrequency(), 50);
  EXPECT_EQ(Kitchen().KillAWattType(), GeneratorMeter);
  EXPECT_TRUE(Alarm().AlarmActive());
  EXPECT_EQ(Alarm().AlarmUpperLimit(), 2500);
  EXPECT_EQ(Alarm().AlarmLowerLimit(), -10.5);
  EXPECT_EQ(Alarm().AlarmDuration(), 15);
  EXPECT_EQ(Alarm().AlarmInterval(), 600);
}

TEST_F(frmEditKillAWattTest, EnterIsOKAndEscapeIsCancel) {
  Fill("txtName", "Solar");
  QTest::keyClick(&Box("txtName"), Qt::Key_Escape);
  EXPECT_FALSE(form.isVisible());
  EXPECT_TRUE(form.Cancelled());
  EXPECT_EQ(Kitchen().Name(), "Kitchen");
  form.show();
  QTest::keyClick(&Box("txtName"), Qt::Key_Return);
  EXPECT_FALSE(form.isVisible());
  EXPECT_FALSE(form.Cancelled());
  EXPECT_EQ(Kitchen().Name(), "Solar");
}

class EndTest : public frmEditKillAWattTest,
                public testing::WithParamInterface<void (*)(frmEditKillAWatt&)> {};

TEST_P(EndTest, LeavesTheMeterAlone) {
  Fill("txtName", "Solar");
  Fill("txtXBeeAddress", "77");
  Choose("cboVoltage", "240 Vrms");
  Get<QCheckBox>("chkAlarmActive").setChecked(true);
  GetParam()(form);
  EXPECT_FALSE(form.isVisible());
  EXPECT_TRUE(form.Cancelled());
  EXPECT_EQ(Kitchen().Name(), "Kitchen");
  EXPECT_EQ(meters.FindAddress(5), &Kitchen());
  EXPECT_EQ(Kitchen().NominalVoltage(), 120);
  EXPECT_FALSE(Alarm().AlarmActive());
}

INSTANTIATE_TEST_SUITE_P(Ways, EndTest,
                         testing::Values(
                             [](frmEditKillAWatt& form) {
                               form.findChild<QPushButton*>("cmdCancel")->click();
                             },
                             [](frmEditKillAWatt& form) { form.close(); }));

TEST_F(frmEditKillAWattTest, KeepsTheBytesOfANameThatNobodyTouched) {
  Kitchen().SetName("K\xFFtchen");
  form.SetKillAWatt(Kitchen());
  Click("cmdOK");
  EXPECT_EQ(Kitchen().Name(), "K\xFFtchen");
}

struct Refusal {
  const char* name;
  const char* box;
  const char* text;
  const char* message;
  const char* caption = "Wattlark";
};

std::ostream& operator<<(std::ostream& out, const Refusal& refusal) {
  return out << refusal.name;
}

class RefusalTest : public frmEditKillAWattTest, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusalTest, NamesTheFieldAndStaysThere) {
  Get<QCheckBox>("chkAlarmActive").setChecked(true);
  Fill("txtName", "Solar");
  Fill("txtXBeeAddress", "77");
  Fill(GetParam().box, GetParam().text);
  Click("cmdOK");
  ASSERT_EQ(prompts.asked.size(), 1u);
  EXPECT_EQ(prompts.asked[0].text, GetParam().message);
  EXPECT_EQ(prompts.asked[0].caption, GetParam().caption);
  EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Exclamation);
  EXPECT_TRUE(form.isVisible());
  EXPECT_EQ(form.focusWidget(), &Box(GetParam().box));
  EXPECT_EQ(Box(GetParam().box).selectedText(), GetParam().text);
  EXPECT_EQ(Kitchen().Name(), "Kitchen");
  EXPECT_EQ(Kitchen().XBeeAddress(), 5);
  Fill("txtName", "Solar");
  Fill("txtXBeeAddress", "77");
  Fill("txtAlarmLimit0", "1");
  Fill("txtAlarmLimit1", "0");
  Click("cmdOK");
  EXPECT_FALSE(form.isVisible());
  EXPECT_EQ(Kitchen().Name(), "Solar");
}

constexpr const char* kAddress = "XBee Address: Enter a whole number from 0 to 32767.";
constexpr const char* kUpper = "Upper Limit: Enter a number of watts.";
constexpr const char* kLower = "Lower Limit: Enter a number of watts.";

INSTANTIATE_TEST_SUITE_P(
    Entries, RefusalTest,
    testing::Values(
        Refusal{"NoName", "txtName", "", "Name: The name must not be empty."},
        Refusal{"Backslash", "txtName", "a\\b", "Name: The name must not contain \"\\\"."},
        Refusal{"TakenName", "txtName", "OFFICE", "Name: Another meter has the name \"OFFICE\"."},
        Refusal{"NoAddress", "txtXBeeAddress", "", kAddress},
        Refusal{"Letters", "txtXBeeAddress", "5x", kAddress},
        Refusal{"Negative", "txtXBeeAddress", "-1", kAddress},
        Refusal{"TooLarge", "txtXBeeAddress", "32768", kAddress},
        Refusal{"TakenAddress", "txtXBeeAddress", "6",
                "A Kill-A-Watt with that XBee address is already defined", "Duplicate ID"},
        Refusal{"Upper", "txtAlarmLimit0", "12-", kUpper},
        Refusal{"NoLower", "txtAlarmLimit1", "", kLower}),
    [](const auto& refusal) { return refusal.param.name; });

TEST_F(frmEditKillAWattTest, OpensALimitToBeMendedWithTheAlarmOff) {
  Alarm().SetAlarmUpperLimit(NoValue);
  form.SetKillAWatt(Kitchen());
  Click("cmdOK");
  EXPECT_EQ(form.focusWidget(), &Box("txtAlarmLimit0"));
  QTest::keyClicks(&Box("txtAlarmLimit0"), "700");
  Click("cmdOK");
  EXPECT_EQ(Alarm().AlarmUpperLimit(), 700);
  EXPECT_FALSE(Alarm().AlarmActive());
}

struct Times {
  const char* duration;
  const char* interval;
  int storedInterval;
  bool tells;
};

class TimesOfAlarmTest : public frmEditKillAWattTest, public testing::WithParamInterface<Times> {};

TEST_P(TimesOfAlarmTest, TellsThatTheIntervalWasRaised) {
  Choose("cboAlarmDuration", GetParam().duration);
  Choose("cboAlarmInterval", GetParam().interval);
  Click("cmdOK");
  EXPECT_EQ(Alarm().AlarmInterval(), GetParam().storedInterval);
  EXPECT_EQ(List("cboAlarmInterval").currentText(), GetParam().interval);
  EXPECT_FALSE(form.Cancelled());
  ASSERT_EQ(prompts.asked.size(), GetParam().tells ? 1u : 0u);
  if (!GetParam().tells) return;
  EXPECT_EQ(prompts.asked[0].text,
            "The alarm interval was adjusted upward so that it was at least equal to the duration "
            "above or below the limits.");
  EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Information);
}

INSTANTIATE_TEST_SUITE_P(Lists, TimesOfAlarmTest,
                         testing::Values(Times{"1 hour", "1 minute", 3600, true},
                                         Times{"1 minute", "5 minutes", 60, true},
                                         Times{"30 seconds", "5 minutes", 30, false},
                                         Times{"1 minute", "1 minute", 60, false}));

TEST_F(frmEditKillAWattTest, ReopensOnTheFirstEntryOfItsNumber) {
  Choose("cboAlarmDuration", "5 seconds");
  Click("cmdOK");
  EXPECT_EQ(Alarm().AlarmDuration(), 0);
  form.SetKillAWatt(Kitchen());
  EXPECT_EQ(List("cboAlarmDuration").currentText(), "1 second");
}

TEST_F(frmEditKillAWattTest, AlarmBoxEnablesItsFields) {
  const auto enabled = [this] {
    return std::vector<bool>{Box("txtAlarmLimit0").isEnabled(), Box("txtAlarmLimit1").isEnabled(),
                             List("cboAlarmDuration").isEnabled(),
                             List("cboAlarmInterval").isEnabled()};
  };
  EXPECT_THAT(enabled(), testing::Each(false));
  Get<QCheckBox>("chkAlarmActive").click();
  EXPECT_THAT(enabled(), testing::Each(true));
  Get<QCheckBox>("chkAlarmActive").click();
  EXPECT_THAT(enabled(), testing::Each(false));
}

TEST_F(frmEditKillAWattTest, LimitBoxesDiscardTypedLettersButNotPastedOnes) {
  Get<QCheckBox>("chkAlarmActive").setChecked(true);
  for (const char* name : {"txtAlarmLimit0", "txtAlarmLimit1"}) {
    QLineEdit& box = Box(name);
    box.clear();
    QTest::keyClicks(&box, "12a.5,DE e");
    EXPECT_EQ(box.text(), "12.5") << name;
    QTest::keyClick(&box, Qt::Key_Backspace);
    EXPECT_EQ(box.text(), "12.") << name;
    QInputMethodEvent composed;
    composed.setCommitString("é7");
    QApplication::sendEvent(&box, &composed);
    EXPECT_EQ(box.text(), "12.7") << name;
    QApplication::clipboard()->setText("a,b");
    box.paste();
    EXPECT_EQ(box.text(), "12.7a,b") << name;
    QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(box.selectedText(), "12.7a,b") << name;
  }
  EXPECT_TRUE(form.isVisible());
}

TEST_F(frmEditKillAWattTest, LimitBoxesTakeTheRegionsDecimalSeparator) {
  const RegionalSettings germany = Germany();
  frmEditKillAWatt german({meters, total, germany, prompts});
  german.SetKillAWatt(Kitchen());
  auto* box = german.findChild<QLineEdit*>("txtAlarmLimit0");
  EXPECT_EQ(box->text(), "500,0");
  box->setEnabled(true);
  box->clear();
  QTest::keyClicks(box, "12,5x");
  german.findChild<QPushButton*>("cmdOK")->click();
  EXPECT_EQ(Alarm().AlarmUpperLimit(), 12.5);
}

TEST_F(frmEditKillAWattTest, TotalKeepsWhatItsMetersDecide) {
  total.SetName("Total");
  total.SetXBeeAddress(5);  // also a meter's
  form.SetKillAWatt(total);
  for (const char* name : {"txtXBeeAddress", "cboVoltage", "cboFrequency", "cboKillAWattType"}) {
    EXPECT_FALSE(Get<QWidget>(name).isEnabled()) << name;
  }
  EXPECT_TRUE(Box("txtName").isEnabled());
  Get<QCheckBox>("chkAlarmActive").setChecked(true);
  Fill("txtAlarmLimit0", "3000");
  Click("cmdOK");
  EXPECT_TRUE(prompts.asked.empty());
  EXPECT_EQ(total.Alarm().AlarmUpperLimit(), 3000);
  EXPECT_EQ(meters.FindAddress(5), &Kitchen());
  form.SetKillAWatt(Kitchen());
  EXPECT_TRUE(Get<QWidget>("cboVoltage").isEnabled());
}

TEST_F(frmEditKillAWattTest, TabGoesFromTopToBottom) {
  Get<QCheckBox>("chkAlarmActive").setChecked(true);
  Box("txtName").setFocus();
  std::vector<std::string> order;
  for (int i = 0; i < 12; ++i) {
    order.push_back(form.focusWidget()->objectName().toStdString());
    QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
  }
  EXPECT_THAT(order,
              ElementsAre("txtName", "txtXBeeAddress", "cboVoltage", "cboFrequency",
                          "cboKillAWattType", "chkAlarmActive", "txtAlarmLimit0", "txtAlarmLimit1",
                          "cboAlarmDuration", "cboAlarmInterval", "cmdOK", "cmdCancel"));
  EXPECT_EQ(form.focusWidget(), &Box("txtName"));
}

TEST_F(frmEditKillAWattTest, EveryControlHasANameAndAKeyOfItsOwn) {
  std::vector<QKeySequence> keys;
  const auto addKey = [&keys](const QString& caption) {
    const QKeySequence key = QKeySequence::mnemonic(caption);
    EXPECT_FALSE(key.isEmpty()) << caption.toStdString();
    EXPECT_FALSE(keys.end() != std::find(keys.begin(), keys.end(), key)) << caption.toStdString();
    keys.push_back(key);
  };
  for (const QLabel* label : form.findChildren<QLabel*>()) {
    if (label->buddy() != nullptr) addKey(label->text());
  }
  addKey(Get<QCheckBox>("chkAlarmActive").text());
  EXPECT_EQ(keys.size(), 10u);
  for (QWidget* control : form.findChildren<QWidget*>()) {
    if (control->focusPolicy() == Qt::NoFocus) continue;
    EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
    EXPECT_GE(control->height(), 26) << control->objectName().toStdString();
  }
}

TEST_F(frmEditKillAWattTest, IsShownWithItsCaptionUntilItIsEnded) {
  std::vector<std::string> captions;
  const auto endWith = [&captions](const char* button) {
    QTimer::singleShot(0, [&captions, button] {
      QWidget* dialog = QApplication::activeModalWidget();
      ASSERT_NE(dialog, nullptr);
      captions.push_back(dialog->windowTitle().toStdString());
      dialog->findChild<QPushButton*>(button)->click();
    });
  };
  form.hide();
  clsKillAWatt fresh;
  endWith("cmdCancel");
  EXPECT_FALSE(
      EditMeterProperties({meters, total, regional, prompts}, fresh, "Add Kill-A-Watt", nullptr));
  endWith("cmdOK");
  EXPECT_TRUE(EditMeterProperties({meters, total, regional, prompts}, Kitchen(), "Edit Kill-A-Watt",
                                  nullptr));
  EXPECT_THAT(captions, ElementsAre("Add Kill-A-Watt", "Edit Kill-A-Watt"));
}

}  // namespace
}  // namespace wattlark
