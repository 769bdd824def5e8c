#pragma once

#include <QDialog>
#include <QLineEdit>
#include <string>

namespace wattlark {

/// Asks for the user name and the password of a web service.
class frmLogin : public QDialog {
  Q_OBJECT

 public:
  frmLogin(const std::string& caption, const std::string& userName, const std::string& password,
           QWidget* parent = nullptr);

  std::string UserName() const { return txtUserName_->text().toStdString(); }
  std::string Password() const { return txtPassword_->text().toStdString(); }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QLineEdit* Field(const char* name, const char* accessibleName, const std::string& text);

  QLineEdit* txtUserName_;
  QLineEdit* txtPassword_;
};

/// Shows the dialog until the user closes it; false, with nothing changed, unless that was with
/// "OK".
bool SignIn(const std::string& caption, std::string& userName, std::string& password,
            QWidget* owner);

}  // namespace wattlark
