#pragma once

#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include "platform/Prompts.h"

namespace wattlark {

/// Offers a newer version of the program. Whatever ends the dialog but the other two buttons means
/// to be reminded later; that is also what Enter does, because the dialog may come up by itself
/// while the user types.
class frmSoftwareUpdate : public QDialog {
  Q_OBJECT

 public:
  explicit frmSoftwareUpdate(const UpdateOffer& offer, QWidget* parent = nullptr);

  UpdateAnswer Answer() const { return answer_; }

 protected:
  void changeEvent(QEvent* event) override;

 private:
  QWidget* BuildHeading(const UpdateOffer& offer);
  QWidget* BuildButtons();
  QPushButton* Button(const QString& caption, const QString& name, UpdateAnswer answer);
  void FitToFont();

  UpdateAnswer answer_ = UpdateAnswer::RemindLater;
  QLabel* picAppIcon_ = nullptr;
  QLabel* lblTitle_ = nullptr;
  QLabel* lblMessage_ = nullptr;
  QPlainTextEdit* txtReleaseNotes_ = nullptr;
};

/// Shows the dialog over `owner` until the user ends it.
UpdateAnswer OfferUpdate(const UpdateOffer& offer, QWidget* owner);

}  // namespace wattlark
