#include <QClipboard>
#include <QTimer>

#include "config/forms/frmEditKillAWatt.h"
#include "forms/FormChecks.h"
#include "support/NoValue.h"
#include "support/RegionalForms.h"
#include "twins/Matchers.h"
#include "twins/Meters.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {
namespace {

struct frmEditKillAWattTest : testing::Test {
  frmEditKillAWattTest() {
    AddMeter(meters, "Kitchen", 5);
    AddMeter(meters, "Office", 6);
    form.SetKillAWatt(Kitchen());
    form.show();
    QApplication::setActiveWindow(&form);
  }

  clsKillAWatt& Kitchen() { return meters[0]; }
  MeterAlarm& Alarm() { return Kitchen().Alarm(); }

  QLineEdit& Box(const char* name) const { return Find<QLineEdit>(form, name); }
  QComboBox& List(const char* name) const { return Find<QComboBox>(form, name); }
  QCheckBox& AlarmBox() const { return Find<QCheckBox>(form, "chkAlarmActive"); }
  void Fill(const char* box, const char* text) const { Box(box).setText(text); }
  std::vector<std::string> Shown() const {
    std::vector<std::string> texts;
    for (const char* box : {"txtName", "txtXBeeAddress", "txtAlarmLimit0", "txtAlarmLimit1"}) {
      texts.push_back(Box(box).text().toStdString());
    }
    for (const char* list : {"cboVoltage", "cboFrequency", "cboKillAWattType", "cboAlarmDuration",
                             "cboAlarmInterval"}) {
      texts.push_back(List(list).currentText().toStdString());
    }
    return texts;
  }

  RegionalSettings regional = Germany();
  MeterCollection meters;
  clsKillAWatt total;
  ScriptedPrompts prompts;
  frmEditKillAWatt form{{meters, total, regional, prompts}};
};

TEST_F(frmEditKillAWattTest, OKWritesEveryFieldAndShowsItAgain) {
  Fill("txtName", "<b>Solar</b>");
  Fill("txtXBeeAddress", "77");
  ChooseEntry(form, "cboVoltage", "240 Vrms");
  ChooseEntry(form, "cboFrequency", "50 Hz");
  ChooseEntry(form, "cboKillAWattType", "Generator (solar, wind, etc.)");
  AlarmBox().setChecked(true);
  Fill("txtAlarmLimit0", "2.500");
  Fill("txtAlarmLimit1", "-10,5");
  ChooseEntry(form, "cboAlarmDuration", "15 seconds");
  ChooseEntry(form, "cboAlarmInterval", "10 minutes");
  Click(form, "cmdOK");
  EXPECT_FALSE(form.isVisible());
  EXPECT_FALSE(form.Cancelled());
  EXPECT_TRUE(prompts.asked.empty());
  EXPECT_EQ(Kitchen().KillAWattType(), GeneratorMeter);
  EXPECT_EQ(Alarm().AlarmUpperLimit(), 2500);
  form.SetKillAWatt(meters[1]);
  EXPECT_FALSE(AlarmBox().isChecked());
  EXPECT_EQ(Box("txtName").text(), "Office");
  form.SetKillAWatt(Kitchen());
  EXPECT_TRUE(AlarmBox().isChecked());
  EXPECT_THAT(Shown(), ElementsAre("<b>Solar</b>", "77", "2.500,0", "-10,500", "240 Vrms", "50 Hz",
                                   "Generator (solar, wind, etc.)", "15 seconds", "10 minutes"));
}

TEST_F(frmEditKillAWattTest, OnlyOKChangesTheMeter) {
  form.hide();
  for (const char* end : {"cmdCancel", "cmdOK"}) {
    const bool isOK = std::string(end) == "cmdOK";
    QTimer::singleShot(0, [end] {
      QWidget* dialog = QApplication::activeModalWidget();
      ASSERT_NE(dialog, nullptr);
      EXPECT_EQ(dialog->windowTitle(), "Edit Kill-A-Watt");
      Find<QLineEdit>(*dialog, "txtName").setText("Solar");
      Click(*dialog, end);
    });
    EXPECT_EQ(EditMeterProperties({meters, total, regional, prompts}, Kitchen(), "Edit Kill-A-Watt",
                                  nullptr),
              isOK);
    EXPECT_EQ(Kitchen().Name(), isOK ? "Solar" : "Kitchen");
  }
}

TEST_F(frmEditKillAWattTest, ARefusalNamesTheFieldAndStaysThere) {
  AlarmBox().setChecked(true);
  using Row = std::array<const char*, 3>;
  for (const auto& [box, text, message] :
       {Row{"txtName", "", "Name: The name must not be empty."},
        Row{"txtXBeeAddress", "6", "A Kill-A-Watt with that XBee address is already defined"},
        Row{"txtAlarmLimit1", "12-", "Lower Limit: Enter a number of watts."}}) {
    form.SetKillAWatt(Kitchen());
    Fill(box, text);
    prompts.asked.clear();
    Click(form, "cmdOK");
    EXPECT_THAT(prompts.asked, ElementsAre(FieldsAre(message, _, PromptIcon::Exclamation, _, _)));
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(form.focusWidget(), &Box(box));
    EXPECT_EQ(Box(box).selectedText(), text);
  }
}

TEST_F(frmEditKillAWattTest, OpensALimitToBeMendedKeepsTheBytesOfTheNameAndTellsOfARaisedInterval) {
  Kitchen().SetName("K\xFFtchen");
  Alarm().SetAlarmUpperLimit(NoValue);
  form.SetKillAWatt(Kitchen());
  Click(form, "cmdOK");
  EXPECT_EQ(form.focusWidget(), &Box("txtAlarmLimit0"));
  QTest::keyClicks(&Box("txtAlarmLimit0"), "700");
  ChooseEntry(form, "cboAlarmDuration", "1 hour");
  prompts.asked.clear();
  Click(form, "cmdOK");
  EXPECT_EQ(Alarm().AlarmUpperLimit(), 700);
  EXPECT_FALSE(Alarm().AlarmActive());
  EXPECT_EQ(Alarm().AlarmInterval(), 3600);
  EXPECT_EQ(Kitchen().Name(), "K\xFFtchen");
  EXPECT_THAT(prompts.asked, ElementsAre(FieldsAre(StartsWith("The alarm interval was adjusted"), _,
                                                   PromptIcon::Information, _, _)));
}

TEST_F(frmEditKillAWattTest, LimitBoxesDiscardTypedLettersButNotPastedOnes) {
  AlarmBox().setChecked(true);
  for (const char* name : {"txtAlarmLimit0", "txtAlarmLimit1"}) {
    QLineEdit& box = Box(name);
    box.clear();
    QTest::keyClicks(&box, "12a,5DE e");
    QTest::keyClick(&box, Qt::Key_Backspace);
    EXPECT_EQ(box.text(), "12,") << name;
    QApplication::clipboard()->setText("a,b");
    box.paste();
    EXPECT_EQ(box.text(), "12,a,b") << name;
  }
}

TEST_F(frmEditKillAWattTest, TotalKeepsWhatItsMetersDecide) {
  total.SetXBeeAddress(5);  // also a meter's
  form.SetKillAWatt(total);
  for (const char* name : {"txtXBeeAddress", "cboVoltage", "cboFrequency", "cboKillAWattType"}) {
    EXPECT_FALSE(Find(form, name).isEnabled()) << name;
  }
  AlarmBox().setChecked(true);
  Fill("txtName", "Sum");
  Fill("txtAlarmLimit0", "3000");
  Click(form, "cmdOK");
  EXPECT_TRUE(prompts.asked.empty());
  EXPECT_EQ(total.Alarm().AlarmUpperLimit(), 3000);
  EXPECT_EQ(meters.FindAddress(5), &Kitchen());
  form.SetKillAWatt(Kitchen());
  EXPECT_TRUE(List("cboVoltage").isEnabled());
}

TEST_F(frmEditKillAWattTest, EveryControlIsNamedAndHasAKeyAndAlarmFieldsFollowTheirBox) {
  for (const bool isActive : {false, true}) {
    AlarmBox().setChecked(isActive);
    for (const char* name :
         {"txtAlarmLimit0", "txtAlarmLimit1", "cboAlarmDuration", "cboAlarmInterval"}) {
      EXPECT_EQ(Find(form, name).isEnabled(), isActive) << name;
    }
  }
  std::set<QKeySequence> keys;
  for (const char* frame : {"fraProperties0", "fraProperties1"}) {
    ExpectNamesAndKeys(Find(form, frame), keys);
  }
  EXPECT_EQ(keys.size(), 10u);
}

}  // namespace
}  // namespace wattlark
