#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "platform/qtwidgets/QtPrompts.h"
#include "publish/forms/frmLogin.h"

namespace wattlark {
namespace {

QLineEdit& Field(QWidget& form, const char* name) {
  return *form.findChild<QLineEdit*>(name);
}

TEST(frmLogin, StartsFromThePresentCredentials) {
  frmLogin form("Google Login", "me@example.org", "s3cret");
  EXPECT_EQ(form.windowTitle(), "Google Login");
  EXPECT_EQ(Field(form, "txtUserName").text(), "me@example.org");
  EXPECT_EQ(Field(form, "txtPassword").text(), "s3cret");
  EXPECT_EQ(Field(form, "txtPassword").echoMode(), QLineEdit::Password);
  EXPECT_EQ(form.findChild<QLabel*>("lblUserName")->text(), "&User Name:");
  EXPECT_EQ(form.findChild<QLabel*>("lblUserName")->buddy(), &Field(form, "txtUserName"));
  EXPECT_EQ(form.findChild<QLabel*>("lblPassword")->text(), "&Password:");
  EXPECT_EQ(form.findChild<QLabel*>("lblPassword")->buddy(), &Field(form, "txtPassword"));
}

TEST(frmLogin, PutsTheFocusOnWhatIsMissing) {
  struct Case {
    const char* userName;
    const char* password;
    const char* focus;
  };
  for (const Case& c : {Case{"", "", "txtUserName"}, Case{"", "p", "txtUserName"},
                        Case{"u", "", "txtPassword"}, Case{"u", "p", "txtUserName"}}) {
    frmLogin form("Twitter Login", c.userName, c.password);
    form.show();
    ASSERT_NE(form.focusWidget(), nullptr);
    EXPECT_EQ(form.focusWidget()->objectName(), c.focus);
  }
}

struct Outcome {
  bool isConfirmed;
  std::string userName;
  std::string password;
};

/// What a user does to the dialog that the program's prompts show.
Outcome Use(const std::function<void(frmLogin&)>& user) {
  QtPrompts prompts;
  prompts.signIn = SignIn;
  Outcome outcome{false, "old", "old password"};
  QTimer::singleShot(0, [&] {
    auto* form = qobject_cast<frmLogin*>(QApplication::activeModalWidget());
    ASSERT_NE(form, nullptr);
    user(*form);
  });
  outcome.isConfirmed = prompts.SignIn("Google Login", outcome.userName, outcome.password);
  return outcome;
}

TEST(frmLogin, HandsBackWhatWasConfirmed) {
  const Outcome outcome = Use([](frmLogin& form) {
    Field(form, "txtUserName").setText("new ü");
    Field(form, "txtPassword").setText(" p ");
    QTest::keyClick(&form, Qt::Key_Return);
  });
  EXPECT_TRUE(outcome.isConfirmed);
  EXPECT_EQ(outcome.userName, "new ü");
  EXPECT_EQ(outcome.password, " p ");
}

TEST(frmLogin, ChangesNothingWhenItIsCancelled) {
  for (const bool byKey : {false, true}) {
    const Outcome outcome = Use([&](frmLogin& form) {
      Field(form, "txtUserName").setText("new");
      if (byKey) {
        QTest::keyClick(&form, Qt::Key_Escape);
      } else {
        form.findChild<QPushButton*>("cmdCancel")->click();
      }
    });
    EXPECT_FALSE(outcome.isConfirmed);
    EXPECT_EQ(outcome.userName, "old");
    EXPECT_EQ(outcome.password, "old password");
  }
}

TEST(frmLogin, IsNotShownByPromptsThatCannot) {
  QtPrompts prompts;
  std::string userName;
  std::string password;
  EXPECT_FALSE(prompts.SignIn("Google Login", userName, password));
}

}  // namespace
}  // namespace wattlark
