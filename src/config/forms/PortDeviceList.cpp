#include "config/forms/PortDeviceList.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <algorithm>
#include <utility>

#include "app/forms/modForm.h"
#include "config/forms/FormControls.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr int kShownCharacters = 24;
constexpr int kWidestList = 640;

}  // namespace

PortDeviceList::PortDeviceList(Ports ports) : ports_(std::move(ports)), note_(nullptr) {
  setObjectName("cboPortDevice");
  note_ = new FieldNote(*this);
  setEditable(true);
  GuardWheel(*this);
  setInsertPolicy(NoInsert);
  setCompleter(nullptr);  // it would complete the products' names
  setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(kShownCharacters);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  view()->setTextElideMode(Qt::ElideMiddle);
  // The list shows the product too, the box the path alone.
  connect(this, &QComboBox::activated, this, [this](int index) {
    setEditText(itemData(index).toString());
    lineEdit()->setCursorPosition(0);
    if (portNumber_ > 0) chosen_.insert(portNumber_);
    Check();
  });
  connect(this, &QComboBox::editTextChanged, this, [this] { NoteEdit(); });
  connect(lineEdit(), &QLineEdit::editingFinished, this, [this] { Check(); });
}

void PortDeviceList::ShowPort(int portNumber) {
  if (portNumber == portNumber_) return;
  portNumber_ = portNumber;
  setEnabled(portNumber > 0);
  if (portNumber > 0 && !shown_.contains(portNumber)) {
    shown_[portNumber] = entered_[portNumber] = ports_.devices.Path(portNumber);
  }
  FillList();
  const std::string defaultPath = ports_.devices.DefaultPath(portNumber);
  lineEdit()->setPlaceholderText(defaultPath.empty() ? "No device is connected"
                                                     : QString::fromStdString(defaultPath));
  setEditText(portNumber > 0 ? QString::fromStdString(entered_[portNumber]) : QString());
  lineEdit()->setCursorPosition(0);
  Check();
}

std::map<int, std::string> PortDeviceList::Changed() const {
  std::map<int, std::string> changed;
  for (const auto& [port, path] : entered_) {
    // One that was chosen is kept even where it is the default, which may be another one tomorrow.
    if (path != shown_.at(port) || (chosen_.contains(port) && !path.empty())) changed[port] = path;
  }
  return changed;
}

void PortDeviceList::showPopup() {
  FillList();
  const int needed = view()->sizeHintForColumn(0) + view()->verticalScrollBar()->sizeHint().width();
  view()->setMinimumWidth(std::min(needed, kWidestList));
  QComboBox::showPopup();
}

void PortDeviceList::FillList() {
  const QSignalBlocker blocked(this);
  const QString text = currentText();
  clear();
  for (const SerialDevice& device : ports_.listDevices()) {
    const QString entry = QString::fromStdString(DeviceText(device));
    addItem(entry, QString::fromStdString(device.Path()));
    setItemData(count() - 1, PlainToolTip(entry), Qt::ToolTipRole);
  }
  if (count() == 0) {
    addItem("No serial device is connected");
    qobject_cast<QStandardItemModel*>(model())->item(0)->setEnabled(false);
  }
  setCurrentIndex(findData(text));
  setEditText(text);
  lineEdit()->setCursorPosition(0);
}

void PortDeviceList::NoteEdit() {
  setToolTip(PlainToolTip(currentText()));
  if (portNumber_ < 1) return;
  entered_[portNumber_] = Entered();
  note_->Show(DevicePathProblem(entered_[portNumber_]));
}

void PortDeviceList::Check() {
  if (portNumber_ < 1) {
    note_->Show("");
    return;
  }
  const std::string path = Entered();
  std::string problem = DevicePathProblem(path);
  if (problem.empty()) {
    problem = ports_.deviceProblem(path.empty() ? ports_.devices.DefaultPath(portNumber_) : path);
  }
  note_->Show(problem);
}

std::string PortDeviceList::Entered() const {
  return std::string(Trim(currentText().toStdString()));
}

}  // namespace wattlark
