#include <gtest/gtest.h>

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <functional>

#include "forms/FormChecks.h"
#include "platform/qtwidgets/QtPrompts.h"

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
  const struct {
    PromptButtons buttons;
    PromptAnswer defaultAnswer;
    QMessageBox::StandardButtons shown;
    std::vector<std::pair<QMessageBox::StandardButton, PromptAnswer>> answers;
    PromptAnswer answerToEscape;
  } cases[] = {{PromptButtons::OK, OK, QMessageBox::Ok, {{QMessageBox::Ok, OK}}, OK},
               {PromptButtons::OKCancel,
                OK,
                QMessageBox::Ok | QMessageBox::Cancel,
                {{QMessageBox::Ok, OK}, {QMessageBox::Cancel, Cancel}},
                Cancel},
               {PromptButtons::OKCancel, Cancel, QMessageBox::Ok | QMessageBox::Cancel, {}, Cancel},
               {PromptButtons::YesNo,
                Yes,
                QMessageBox::Yes | QMessageBox::No,
                {{QMessageBox::Yes, Yes}, {QMessageBox::No, No}},
                No},
               {PromptButtons::YesNo, No, QMessageBox::Yes | QMessageBox::No, {}, No}};
  for (const auto& test : cases) {
    const PromptMessage message{"Text", "", PromptIcon::None, test.buttons, test.defaultAnswer};
    for (const auto& [button, answer] : test.answers) {
      EXPECT_EQ(
          Ask(message, [clicked = button](QMessageBox& box) { box.button(clicked)->click(); }),
          answer);
    }
    EXPECT_EQ(Ask(message,
                  [&](QMessageBox& box) {
                    EXPECT_EQ(box.standardButtons(), test.shown);
                    for (const QAbstractButton* button : box.buttons()) {
                      EXPECT_GE(button->minimumHeight(), 26);
                    }
                    QTest::keyClick(&box, Qt::Key_Return);
                  }),
              test.defaultAnswer);
    EXPECT_EQ(Ask(message, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
              test.answerToEscape);
    EXPECT_EQ(Ask(message, [](QMessageBox& box) { box.close(); }), test.answerToEscape);
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
  Ask({"Text", ""}, [](QMessageBox& box) { EXPECT_EQ(box.icon(), QMessageBox::NoIcon); });
}

TEST(QtPrompts, NoTextMakesABoxLargerThanTheScreen) {
  std::string text;
  for (int i = 1; i <= 500; ++i) text += "line " + std::to_string(i) + "\r\n";
  const auto expectOnScreen = [](const QMessageBox& box) {
    const QRect screen = box.screen()->availableGeometry();
    EXPECT_LE(box.width(), screen.width());
    EXPECT_LE(box.height(), screen.height());
  };
  Ask({text, ""}, [&](QMessageBox& box) {
    EXPECT_TRUE(box.text().endsWith("line 20\n\u2026")) << box.text().toStdString();
    EXPECT_TRUE(box.detailedText().endsWith("line 500"));
    expectOnScreen(box);
  });
  Ask({"The file /" + std::string(5000, 'W') + " is missing.", ""}, [&](QMessageBox& box) {
    const auto& label = Find<QLabel>(box, "qt_msgbox_label");
    EXPECT_LE(label.heightForWidth(label.width()), label.height());
    expectOnScreen(box);
  });
}

TEST(BoxText, BreaksLinesAndLongWords) {
  const QString word(40, 'x');
  const QChar mayBreak(0x200B);
  const std::pair<std::string, QString> cases[] = {
      {"", ""},
      {"a\r\nb\nc\r\n", "a\nb\nc"},
      {std::string(40, 'x'), word},
      {std::string(81, 'x'), word + mayBreak + word + mayBreak + "x"},
      {std::string(30, 'x') + "\n" + std::string(30, 'y'),
       QString(30, 'x') + "\n" + QString(30, 'y')},
      // A character of two units stays whole.
      {std::string(39, 'x') + "\xF0\x9F\x94\x8Cy",
       QString(39, 'x') + QString::fromUtf8("\xF0\x9F\x94\x8C") + mayBreak + "y"},
      {"a\xFF", QString("a") + QChar(0xFFFD)}};
  for (const auto& [text, shown] : cases) EXPECT_EQ(BoxText(text), shown) << text;
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

}  // namespace
}  // namespace wattlark
