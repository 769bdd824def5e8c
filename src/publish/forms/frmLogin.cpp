#include "publish/forms/frmLogin.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/qtwidgets/Controls.h"

namespace wattlark {

namespace {

constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kSmallestButton = 88;
constexpr int kWidthInCharacters = 32;

QPushButton* Button(const char* caption, const char* name) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  button->setMinimumSize(kSmallestButton, ControlHeight(*button));
  return button;
}

QLabel* Label(const char* caption, const char* name) {
  auto* label = new QLabel(caption);
  label->setObjectName(name);
  return label;
}

}  // namespace

frmLogin::frmLogin(const std::string& caption, const std::string& userName,
                   const std::string& password, QWidget* parent)
    : QDialog(parent) {
  setObjectName("frmLogin");
  setWindowTitle(QString::fromStdString(caption));
  txtUserName_ = Field("txtUserName", "User name", userName);
  txtPassword_ = Field("txtPassword", "Password", password);
  HidePassword(*txtPassword_);

  auto* fields = new QFormLayout;
  fields->setHorizontalSpacing(kGap);
  fields->setVerticalSpacing(kGap);
  fields->addRow(Label("&User Name:", "lblUserName"), txtUserName_);
  fields->addRow(Label("&Password:", "lblPassword"), txtPassword_);
  for (QLineEdit* field : {txtUserName_, txtPassword_}) {
    qobject_cast<QLabel*>(fields->labelForField(field))->setBuddy(field);
  }
  QPushButton* cmdOK = Button("OK", "cmdOK");
  QPushButton* cmdCancel = Button("Cancel", "cmdCancel");
  cmdOK->setDefault(true);
  connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
  connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(kGap);
  buttons->addStretch(1);
  buttons->addWidget(cmdOK);
  buttons->addWidget(cmdCancel);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  column->setSpacing(kMargin);
  column->addLayout(fields);
  column->addLayout(buttons);
}

QLineEdit* frmLogin::Field(const char* name, const char* accessibleName, const std::string& text) {
  auto* field = new QLineEdit(QString::fromStdString(text), this);
  field->setObjectName(name);
  field->setAccessibleName(accessibleName);
  field->setMinimumSize(field->fontMetrics().averageCharWidth() * kWidthInCharacters,
                        ControlHeight(*field));
  return field;
}

void frmLogin::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  const bool lacksPasswordAlone = txtPassword_->text().isEmpty() && !txtUserName_->text().isEmpty();
  (lacksPasswordAlone ? txtPassword_ : txtUserName_)->setFocus();
}

bool SignIn(const std::string& caption, std::string& userName, std::string& password,
            QWidget* owner) {
  frmLogin form(caption, userName, password, owner);
  if (form.exec() != QDialog::Accepted) return false;
  userName = form.UserName();
  password = form.Password();
  return true;
}

}  // namespace wattlark
