#pragma once

#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>
#include <functional>
#include <string>

#include "platform/Clock.h"
#include "platform/Prompts.h"
#include "platform/RandomSource.h"

namespace wattlark {

/// Bits of the options of `frmInfoBox`.
enum InfoBoxOptions { InfoPrint = 1, InfoSave = 2, InfoRandomCaption = 16 };

/// Shows a text to read, and as asked to print and to save. What looks like mark-up stays text.
class frmInfoBox : public QDialog {
  Q_OBJECT

 public:
  /// All must outlive the window.
  struct Ports {
    Prompts& prompts;
    RandomSource& random;
    const Clock& clock;
    /// Asks for a printer and prints; for a test to replace.
    std::function<void(QPlainTextEdit& text)> print = &PrintText;
  };

  explicit frmInfoBox(Ports ports, QWidget* parent = nullptr);

  /// Sets the text, the caption (the application title when it is empty) and, by the option bits,
  /// the buttons.
  void SetInfo(const std::string& text, const std::string& caption, int options);
  /// `SetInfo`, then the window until the user closes it.
  void InfoBox(const std::string& text, const std::string& caption, int options);

 private:
  static void PrintText(QPlainTextEdit& text);
  QPushButton* Button(const QString& caption, const QString& name);
  void Save();
  bool Write(const std::string& file, std::string& problem) const;

  Ports ports_;
  std::string text_;
  QPlainTextEdit* rtbInfo_;
  QPushButton* cmdPrint_;
  QPushButton* cmdSave_;
  QPushButton* cmdClose_;
};

}  // namespace wattlark
