#include <QLineEdit>
#include <QTimer>
#include <functional>

#include "forms/FormChecks.h"
#include "platform/qtwidgets/QtPrompts.h"
#include "publish/forms/frmLogin.h"

namespace wattlark {
namespace {

TEST(frmLogin, StartsFromThePresentCredentialsAtWhatIsMissing) {
  const struct {
    const char* userName;
    const char* password;
    const char* focus;
  } cases[] = {{"", "", "txtUserName"},
               {"", "p", "txtUserName"},
               {"u", "", "txtPassword"},
               {"me@example.org", "s3cret", "txtUserName"}};
  for (const auto& test : cases) {
    frmLogin form("Google Login", test.userName, test.password);
    form.show();
    EXPECT_EQ(form.windowTitle(), "Google Login");
    ASSERT_NE(form.focusWidget(), nullptr);
    EXPECT_EQ(form.focusWidget()->objectName(), test.focus);
    EXPECT_EQ(Find<QLineEdit>(form, "txtUserName").text(), test.userName);
    EXPECT_EQ(Find<QLineEdit>(form, "txtPassword").text(), test.password);
    EXPECT_EQ(Find<QLineEdit>(form, "txtPassword").echoMode(), QLineEdit::Password);
    for (const char* field : {"UserName", "Password"}) {
      const auto& label = Find<QLabel>(form, QString("lbl") + field);
      EXPECT_EQ(label.text().remove(' '), QString("&") + field + ":");
      EXPECT_EQ(label.buddy(), &Find(form, QString("txt") + field));
    }
  }
}

TEST(frmLogin, HandsBackOnlyWhatWasConfirmed) {
  QtPrompts prompts;
  std::string userName = "old";
  std::string password = "old password";
  EXPECT_FALSE(prompts.SignIn("Google Login", userName, password)) << "cannot show it";
  prompts.signIn = SignIn;
  const std::function<void(QWidget&)> ends[] = {
      [](QWidget& form) { QTest::keyClick(&form, Qt::Key_Escape); },
      [](QWidget& form) { Click(form, "cmdCancel"); },
      [](QWidget& form) { QTest::keyClick(&form, Qt::Key_Return); }};
  for (const auto& end : ends) {
    EXPECT_EQ(userName, "old");
    EXPECT_EQ(password, "old password");
    QTimer::singleShot(0, [&] {
      auto* form = qobject_cast<frmLogin*>(QApplication::activeModalWidget());
      ASSERT_NE(form, nullptr);
      Find<QLineEdit>(*form, "txtUserName").setText("new ü");
      Find<QLineEdit>(*form, "txtPassword").setText(" p ");
      end(*form);
    });
    EXPECT_EQ(prompts.SignIn("Google Login", userName, password), &end == std::end(ends) - 1);
  }
  EXPECT_EQ(userName, "new ü");
  EXPECT_EQ(password, " p ");
}

}  // namespace
}  // namespace wattlark
