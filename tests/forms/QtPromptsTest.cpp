
#include <QFileDialog>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>
#include <array>

#include "forms/FormChecks.h"
#include "platform/qtwidgets/QtPrompts.h"
#include "publish/forms/frmLogin.h"
#include "update/forms/frmSoftwareUpdate.h"

namespace wattlark {
namespace {

// Shows the message and does something to its box.
PromptAnswer Ask(const PromptMessage& message, const std::function<void(QMessageBox&)>& act) {
  QTimer::singleShot(0, [act] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    act(*box);
    box->close();  // where the action has not ended it
  });
  return QtPrompts().Ask(message);
}

TEST(QtPrompts, TheAnswerComesFromTheButton) {
  using enum PromptAnswer;
  using Box = QMessageBox;
  struct Row {
    PromptButtons buttons;
    PromptAnswer byEnter;  ///< the default
    PromptAnswer byEscape;
    std::vector<std::pair<Box::StandardButton, PromptAnswer>> shown;
  };
  for (const auto& [buttons, byEnter, byEscape, shown] :
       {Row{PromptButtons::OK, OK, OK, {{Box::Ok, OK}}},
        Row{PromptButtons::OKCancel, OK, Cancel, {{Box::Ok, OK}, {Box::Cancel, Cancel}}},
        Row{PromptButtons::OKCancel, Cancel, Cancel, {{Box::Ok, OK}, {Box::Cancel, Cancel}}},
        Row{PromptButtons::YesNo, Yes, No, {{Box::Yes, Yes}, {Box::No, No}}},
        Row{PromptButtons::YesNo, No, No, {{Box::Yes, Yes}, {Box::No, No}}}}) {
    const PromptMessage message{"Text", "", PromptIcon::None, buttons, byEnter};
    for (const auto& [button, answer] : shown) {
      const auto click = [clicked = button, count = shown.size()](Box& box) {
        EXPECT_EQ(box.buttons().size(), count);
        EXPECT_GE(box.button(clicked)->minimumHeight(), 26);
        box.button(clicked)->click();
      };
      EXPECT_EQ(Ask(message, click), answer);
    }
    EXPECT_EQ(Ask(message, [](Box& box) { QTest::keyClick(&box, Qt::Key_Return); }), byEnter);
    EXPECT_EQ(Ask(message, [](Box& box) { QTest::keyClick(&box, Qt::Key_Escape); }), byEscape);
    EXPECT_EQ(Ask(message, [](Box& box) { box.close(); }), byEscape);
  }
}

TEST(QtPrompts, ShowCaptionIconAndMarkUpAsText) {
  const std::string hostile = "Another meter has the name \"<img src='file:///etc/passwd'><b>x\".";
  Ask({hostile + "\r\nSecond", "Duplicate ID", PromptIcon::Exclamation}, [&](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), "Duplicate ID");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.text().remove(QChar(0x200B)).toStdString(), hostile + "\nSecond");
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
  });
  Ask({"Text", "", PromptIcon::Information},
      [](QMessageBox& box) { EXPECT_EQ(box.icon(), QMessageBox::Information); });
}

TEST(QtPrompts, NoTextMakesABoxLargerThanTheScreen) {
  std::string text;
  for (int i = 1; i <= 500; ++i) text += "line " + std::to_string(i) + "\r\n";
  Ask({text, ""}, [](QMessageBox& box) {
    EXPECT_TRUE(box.text().endsWith("line 20\n\u2026")) << box.text().toStdString();
    EXPECT_TRUE(box.detailedText().endsWith("line 500"));
    EXPECT_LE(box.height(), box.screen()->availableGeometry().height());
  });
  Ask({"The file /" + std::string(5000, 'W') + " is missing.", ""}, [](QMessageBox& box) {
    const auto& label = Find<QLabel>(box, "qt_msgbox_label");
    EXPECT_LE(label.heightForWidth(label.width()), label.height());
    EXPECT_LE(box.width(), box.screen()->availableGeometry().width());
  });
}

TEST(BoxText, BreaksLinesAndLongWords) {
  const std::string word(40, 'x');
  const std::string mayBreak = "\u200B";
  using Row = std::pair<std::string, std::string>;
  for (const auto& [text, shown] :
       {Row{"", ""}, Row{"a\r\nb\nc\r\n", "a\nb\nc"}, Row{word + "\nyy", word + "\nyy"},
        Row{word + word + "x", word + mayBreak + word + mayBreak + "x"},
        // A character of two units stays whole.
        Row{"a" + word.substr(2) + "\U0001F50Cy",
            "a" + word.substr(2) + "\U0001F50C" + mayBreak + "y"},
        Row{"a\xFF", "a\uFFFD"}}) {
    EXPECT_EQ(BoxText(text).toStdString(), shown) << text;
  }
}

TEST(QtPrompts, BelongToTheDialogThatIsOpen) {
  QDialog dialog;
  QTimer::singleShot(0, [&] {
    Ask({"Text", ""}, [&](QMessageBox& box) { EXPECT_EQ(box.parentWidget(), &dialog); });
    dialog.reject();
  });
  dialog.exec();
}

TEST(QtPrompts, ChooseAFileToSaveTo) {
  for (const QString file : {"/nowhere-at-all.txt", ""}) {
    QTimer::singleShot(0, [file] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      EXPECT_EQ(dialog->windowTitle(), "Save As");
      EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
      dialog->selectFile(file);
      static_cast<QDialog*>(dialog)->done(file.isEmpty() ? QDialog::Rejected : QDialog::Accepted);
    });
    EXPECT_EQ(QtPrompts().ChooseSaveFile({"Save As"}).value_or(""), file.toStdString());
  }
}

TEST(QtPrompts, AFileToAddToIsNotReplacedButMakingOneIsAgreed) {
  std::vector<QString> questions;
  const auto choose = [&](const std::string& file,
                          const std::vector<QMessageBox::StandardButton>& answers) {
    QTimer next;
    QObject::connect(&next, &QTimer::timeout, [&questions, answers, index = 0U]() mutable {
      QWidget* window = QApplication::activeModalWidget();
      if (auto* box = qobject_cast<QMessageBox*>(window)) {
        questions.push_back(box->text());
        if (index < answers.size()) box->button(answers[index++])->click();
      } else if (auto* dialog = qobject_cast<QFileDialog*>(window)) {
        EXPECT_TRUE(dialog->testOption(QFileDialog::DontConfirmOverwrite));
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
      }
    });
    next.start(0);
    return QtPrompts().ChooseSaveFile({"Save Log File", "CSV (*.csv)", file, true});
  };
  const std::string present = QApplication::applicationFilePath().toStdString();
  EXPECT_EQ(choose(present, {}), present);
  EXPECT_TRUE(questions.empty());
  EXPECT_EQ(choose("/nowhere.csv", {QMessageBox::No, QMessageBox::Yes}), "/nowhere.csv");
  ASSERT_EQ(questions.size(), 2U);
  EXPECT_EQ(questions[0], "/nowhere.csv\nThis file does not exist. Create the file?");
}

TEST(frmLogin, StartsFromThePresentCredentialsAtWhatIsMissing) {
  using Row = std::array<const char*, 3>;
  for (const auto& [userName, password, focus] :
       {Row{"", "", "txtUserName"}, Row{"", "p", "txtUserName"}, Row{"u", "", "txtPassword"},
        Row{"me@example.org", "s3cret", "txtUserName"}}) {
    frmLogin form("Google Login", userName, password);
    form.show();
    EXPECT_EQ(form.windowTitle(), "Google Login");
    EXPECT_EQ(form.focusWidget()->objectName(), focus);
    EXPECT_EQ(Find<QLineEdit>(form, "txtUserName").text(), userName);
    EXPECT_EQ(Find<QLineEdit>(form, "txtPassword").text(), password);
    EXPECT_EQ(Find<QLineEdit>(form, "txtPassword").echoMode(), QLineEdit::Password);
    EXPECT_EQ(Find<QLabel>(form, "lblUserName").buddy(), &Find(form, "txtUserName"));
    EXPECT_EQ(Find<QLabel>(form, "lblPassword").buddy(), &Find(form, "txtPassword"));
  }
}

TEST(frmLogin, HandsBackOnlyWhatWasConfirmed) {
  QtPrompts prompts;
  std::string userName = "old";
  std::string password = "old password";
  EXPECT_FALSE(prompts.SignIn("Google Login", userName, password)) << "cannot show it";
  prompts.signIn = SignIn;
  for (const int end : {1, 2, 3}) {
    EXPECT_EQ(userName, "old");
    EXPECT_EQ(password, "old password");
    QTimer::singleShot(0, [&] {
      auto* form = qobject_cast<frmLogin*>(QApplication::activeModalWidget());
      Find<QLineEdit>(*form, "txtUserName").setText("new ü");
      Find<QLineEdit>(*form, "txtPassword").setText(" p ");
      if (end == 1) QTest::keyClick(form, Qt::Key_Escape);
      if (end == 2) Click(*form, "cmdCancel");
      if (end == 3) QTest::keyClick(form, Qt::Key_Return);
    });
    EXPECT_EQ(prompts.SignIn("Google Login", userName, password), end == 3);
  }
  EXPECT_EQ(userName, "new ü");
  EXPECT_EQ(password, " p ");
}

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
  using Row = std::pair<const char*, UpdateAnswer>;
  for (const auto& [button, answer] : {Row{"cmdOK", UpdateAnswer::Download},
                                       Row{"cmdSkipThisVersion", UpdateAnswer::SkipThisVersion},
                                       Row{"cmdCancel", UpdateAnswer::RemindLater}}) {
    QTimer::singleShot(0, [name = button] { Click(*QApplication::activeModalWidget(), name); });
    EXPECT_EQ(OfferUpdate(kOffer, nullptr), answer);
  }
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    QTimer::singleShot(0, [key] { QTest::keyClick(QApplication::activeModalWidget(), key); });
    EXPECT_EQ(OfferUpdate(kOffer, nullptr), UpdateAnswer::RemindLater);
  }
}

}  // namespace
}  // namespace wattlark
