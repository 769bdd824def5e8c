#include "app/forms/FirstStartPanel.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QKeyEvent>

#include "config/forms/FormControls.h"

namespace wattlark {

namespace {

constexpr int kMargin = 24;
constexpr int kGap = 8;
constexpr int kSectionGap = 12;

// Lets long paths break behind their parts, and parts that are long themselves anywhere.
QString Breakable(const std::string& text) {
  constexpr int kLongest = 16;
  QString result;
  int length = 0;
  for (const QChar c : QString::fromStdString(text)) {
    result += c;
    const bool isEnd =
        c == '/' || c == '_' || c == '-' || (++length >= kLongest && !c.isHighSurrogate());
    if (isEnd) result += QChar(0x200B);
    if (isEnd || c.isSpace()) length = 0;
  }
  return result;
}

void ShowText(QLabel& label, const std::string& text) {
  label.setText(Breakable(text));
  label.setAccessibleName(QString::fromStdString(text));
  label.setVisible(!text.empty());
}

}  // namespace

FirstStartPanel::FirstStartPanel(QWidget* parent) : QWidget(parent) {
  setObjectName("FirstStartPanel");
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargin, 0, kMargin, kGap);
  column->setSpacing(kGap);
  lblReceiver_ = AddText(*column, "lblReceiver");
  command_ = BuildCommand();
  column->addWidget(command_);
  devices_ = AddRows(*column, "cmdDevice", [this](std::size_t row) {
    emit DeviceChosen(QString::fromStdString(view_.devices[row].path));
  });
  column->addSpacing(kSectionGap);
  meters_ = AddRows(*column, "cmdMeter",
                    [this](std::size_t row) { emit MeterChosen(view_.meters[row].address); });
  lblMeters_ = AddText(*column, "lblMeters");
  cmdAdd_ = AddButton(*column, "cmdAdd", &FirstStartPanel::AddingChosen);
  cmdAdd_->setText("Add a meter…");
  column->addStretch(1);
  column->addSpacing(kSectionGap);
  lblDemo_ = AddText(*column, "lblDemo");
  cmdDemo_ = AddButton(*column, "cmdDemo", &FirstStartPanel::DemoChosen);
  FitHeights(*this);
}

QLabel* FirstStartPanel::AddText(QVBoxLayout& column, const QString& name) {
  auto* label = Named(new QLabel, name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  column.addWidget(label);
  return label;
}

QPushButton* FirstStartPanel::AddButton(QBoxLayout& layout, const QString& name,
                                        void (FirstStartPanel::*chosen)()) {
  auto* button = Named(new QPushButton, name);
  layout.addWidget(button, 0, Qt::AlignLeading);
  connect(button, &QPushButton::clicked, this, chosen);
  return button;
}

FirstStartPanel::Rows FirstStartPanel::AddRows(
    QVBoxLayout& column, const QString& name, const std::function<void(std::size_t row)>& onClick) {
  Rows rows{};
  for (std::size_t row = 0; row < rows.size(); ++row) {
    rows[row] = Named(new ChoiceButton, name + QString::number(row));
    rows[row]->hide();
    column.addWidget(rows[row]);
    connect(rows[row], &QPushButton::clicked, this, [onClick, row] { onClick(row); });
  }
  return rows;
}

QWidget* FirstStartPanel::BuildCommand() {
  auto* box = new QWidget;
  auto* row = new QHBoxLayout(box);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kGap);
  txtCommand_ = Named(new QLineEdit, "txtCommand");
  txtCommand_->setReadOnly(true);
  txtCommand_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  txtCommand_->setAccessibleName("Command to type");
  row->addWidget(txtCommand_, 1);
  auto* copy = Named(new QPushButton("Copy"), "cmdCopy");
  copy->setAccessibleName("Copy the command");
  row->addWidget(copy);
  connect(copy, &QPushButton::clicked, this, [this] {
    QGuiApplication::clipboard()->setText(txtCommand_->text());
    txtCommand_->selectAll();
  });
  return box;
}

void FirstStartPanel::Show(const FirstStartView& view) {
  if (view == view_) return;
  view_ = view;
  ShowText(*lblReceiver_, view.receiverText);
  const QString command = QString::fromStdString(view.command);
  if (txtCommand_->text() != command) {
    txtCommand_->setText(command);
    txtCommand_->setCursorPosition(0);
  }
  command_->setVisible(!view.command.empty());
  ShowDevices();
  ShowMeters();
  ShowText(*lblMeters_, view.metersText);
  cmdAdd_->setVisible(view.offersAdding);
  ShowText(*lblDemo_, view.demoText);
  cmdDemo_->setText(QString::fromStdString(view.demoCaption));
  cmdDemo_->setVisible(!view.demoCaption.empty());
}

void FirstStartPanel::ShowDevices() {
  for (std::size_t row = 0; row < devices_.size(); ++row) {
    ChoiceButton& button = *devices_[row];
    button.setVisible(row < view_.devices.size());
    if (row >= view_.devices.size()) continue;
    const FirstStartView::Device& device = view_.devices[row];
    button.SetTexts(QString::fromStdString(device.title), QString::fromStdString(device.detail));
    button.setCheckable(true);
    button.setChecked(device.isUsed);
  }
}

void FirstStartPanel::ShowMeters() {
  for (std::size_t row = 0; row < meters_.size(); ++row) {
    meters_[row]->setVisible(row < view_.meters.size());
    if (row >= view_.meters.size()) continue;
    meters_[row]->SetTexts(QString::fromStdString(view_.meters[row].text), "");
  }
}

void FirstStartPanel::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
    QWidget::keyPressEvent(event);
    return;
  }
  // Outside a dialog a button leaves Enter to what is around it, which means something else by it.
  auto* button = qobject_cast<QPushButton*>(focusWidget());
  if (button != nullptr && !event->isAutoRepeat()) button->click();
}

void FirstStartPanel::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange) FitHeights(*this);
}

}  // namespace wattlark
