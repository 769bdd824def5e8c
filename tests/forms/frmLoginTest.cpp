#include <QLineEdit>
#include <QTimer>
#include <array>

#include "forms/FormChecks.h"
#include "platform/qtwidgets/QtPrompts.h"
#include "publish/forms/frmLogin.h"

namespace wattlark {
namespace {

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

}  // namespace
}  // namespace wattlark
