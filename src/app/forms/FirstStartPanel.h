#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>
#include <array>
#include <cstddef>
#include <functional>

#include "app/FirstStartView.h"
#include "app/forms/ChoiceButton.h"

namespace wattlark {

/// Leads a new user to the first reading: which device is the receiver, which meters send, or demo
/// mode. Enter presses the button that has the focus, as the space bar does.
class FirstStartPanel : public QWidget {
  Q_OBJECT

 public:
  explicit FirstStartPanel(QWidget* parent = nullptr);

  /// Touches only what differs from what is shown.
  void Show(const FirstStartView& view);

 signals:
  void DeviceChosen(const QString& path);
  void MeterChosen(int address);
  void AddingChosen();
  void DemoChosen();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  /// As many as may be needed, so that Tab goes from one to the next; those in use are shown.
  using Rows = std::array<ChoiceButton*, FirstStartView::MostRows>;

  QLabel* AddText(QVBoxLayout& column, const QString& name);
  QPushButton* AddButton(QBoxLayout& layout, const QString& name,
                         void (FirstStartPanel::*chosen)());
  Rows AddRows(QVBoxLayout& column, const QString& name,
               const std::function<void(std::size_t row)>& onClick);
  QWidget* BuildCommand();
  void ShowDevices();
  void ShowMeters();

  FirstStartView view_;
  QLabel* lblReceiver_ = nullptr;
  QWidget* command_ = nullptr;
  QLineEdit* txtCommand_ = nullptr;
  Rows devices_{};
  Rows meters_{};
  QLabel* lblMeters_ = nullptr;
  QLabel* lblDemo_ = nullptr;
  QPushButton* cmdAdd_ = nullptr;
  QPushButton* cmdDemo_ = nullptr;
};

}  // namespace wattlark
