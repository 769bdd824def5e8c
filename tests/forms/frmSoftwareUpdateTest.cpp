#include <gtest/gtest.h>

#include <QTest>
#include <QTimer>
#include <functional>

#include "update/forms/frmSoftwareUpdate.h"

namespace wattlark {
namespace {

const UpdateOffer kOffer{"A new version of Wattlark is available!", "Would you like to download?",
                         "<b>Faster</b>\r\n\xFF", "2.1", "https://maker.example/setup.exe"};

TEST(frmSoftwareUpdateTest, ShowsPlainTexts) {
  frmSoftwareUpdate form(kOffer);
  EXPECT_EQ(form.windowTitle(), "Software Update");
  EXPECT_EQ(form.findChild<QLabel*>("lblTitle")->text(), kOffer.title.c_str());
  EXPECT_EQ(form.findChild<QLabel*>("lblMessage")->text(), kOffer.message.c_str());
  auto& notes = *form.findChild<QPlainTextEdit*>("txtReleaseNotes");
  EXPECT_EQ(notes.toPlainText(), QString("<b>Faster</b>\n") + QChar(0xFFFD));
  EXPECT_TRUE(notes.isReadOnly());
}

TEST(frmSoftwareUpdateTest, OnlyTheTwoButtonsDoMoreThanPutItOff) {
  const auto click = [](const char* name) {
    return [name](QWidget& form) { form.findChild<QPushButton*>(name)->click(); };
  };
  const auto press = [](Qt::Key key) {
    return [key](QWidget& form) { QTest::keyClick(&form, key); };
  };
  using Row = std::pair<std::function<void(QWidget&)>, UpdateAnswer>;
  for (const auto& [act, answer] : {Row{click("cmdOK"), UpdateAnswer::Download},
                                    Row{click("cmdSkipThisVersion"), UpdateAnswer::SkipThisVersion},
                                    Row{click("cmdCancel"), UpdateAnswer::RemindLater},
                                    Row{press(Qt::Key_Return), UpdateAnswer::RemindLater},
                                    Row{press(Qt::Key_Escape), UpdateAnswer::RemindLater}}) {
    QTimer::singleShot(0, [&, act = act] { act(*QApplication::activeModalWidget()); });
    EXPECT_EQ(OfferUpdate(kOffer, nullptr), answer);
  }
}

}  // namespace
}  // namespace wattlark
