#include "app/forms/frmInfoBox.h"

#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QPrintDialog>
#include <QPrinter>
#include <QSaveFile>
#include <QVBoxLayout>
#include <utility>

#include "config/modRegistry.h"
#include "platform/qtwidgets/Controls.h"

namespace wattlark {

namespace {

constexpr QSize kFirstSize(480, 320);
constexpr int kWidthInCharacters = 72;
constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kSmallestButton = 88;

const char* RandomCaption(RandomSource& random, const Clock& clock) {
  const DateTime now = clock.Now();
  random.Reseed(static_cast<std::uint32_t>(now.Milliseconds() - now.StartOfDay().Milliseconds()));
  switch (static_cast<int>(random.Next() * 10)) {
    case 0:
      return "Darn!";
    case 1:
      return "Whatever...";
    case 3:
      return "Dang";
    default:
      return "Bah!";
  }
}

}  // namespace

frmInfoBox::frmInfoBox(Ports ports, QWidget* parent) : QDialog(parent), ports_(std::move(ports)) {
  setObjectName("frmInfoBox");
  resize(kFirstSize.expandedTo({fontMetrics().averageCharWidth() * kWidthInCharacters, 0}));
  rtbInfo_ = new QPlainTextEdit;
  rtbInfo_->setObjectName("rtbInfo");
  rtbInfo_->setAccessibleName("Information");
  rtbInfo_->setReadOnly(true);
  rtbInfo_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  rtbInfo_->setTabChangesFocus(true);
  rtbInfo_->document()->setDocumentMargin(kGap);
  cmdPrint_ = Button("Print...", "cmdPrint");
  cmdSave_ = Button("Save As...", "cmdSave");
  cmdClose_ = Button("Close", "cmdClose");
  cmdClose_->setDefault(true);
  connect(cmdPrint_, &QPushButton::clicked, this, [this] { ports_.print(*rtbInfo_); });
  connect(cmdSave_, &QPushButton::clicked, this, [this] { Save(); });
  connect(cmdClose_, &QPushButton::clicked, this, [this] { accept(); });

  auto* row = new QHBoxLayout;
  row->setSpacing(kGap);
  row->addWidget(cmdPrint_);
  row->addWidget(cmdSave_);
  row->addStretch(1);
  row->addWidget(cmdClose_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  column->setSpacing(kMargin);
  column->addWidget(rtbInfo_, 1);
  column->addLayout(row);
  SetInfo("", "", 0);
}

QPushButton* frmInfoBox::Button(const QString& caption, const QString& name) {
  auto* button = new QPushButton(caption, this);
  button->setObjectName(name);
  button->setAccessibleName(caption);
  button->setMinimumSize(kSmallestButton, ControlHeight(*button));
  return button;
}

void frmInfoBox::SetInfo(const std::string& text, const std::string& caption, int options) {
  text_ = text;
  rtbInfo_->setPlainText(QString::fromStdString(text));
  setWindowTitle(caption.empty() ? ApplicationTitle : QString::fromStdString(caption));
  cmdPrint_->setVisible((options & InfoPrint) != 0);
  cmdSave_->setVisible((options & InfoSave) != 0);
  const bool isRandom = (options & InfoRandomCaption) != 0;
  cmdClose_->setText(isRandom ? RandomCaption(ports_.random, ports_.clock) : "Close");
  cmdClose_->setAccessibleName(cmdClose_->text());
  cmdClose_->setFocus();
}

void frmInfoBox::InfoBox(const std::string& text, const std::string& caption, int options) {
  SetInfo(text, caption, options);
  exec();
}

void frmInfoBox::PrintText(QPlainTextEdit& text) {
  QPrinter printer;
  QPrintDialog dialog(&printer, text.window());
  dialog.setWindowTitle("Print");
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
  if (dialog.exec() == QDialog::Accepted) text.print(&printer);
}

void frmInfoBox::Save() {
  const auto file = ports_.prompts.ChooseSaveFile({"Save As"});
  std::string problem;
  if (!file || Write(*file, problem)) return;
  ports_.prompts.Ask({"The text could not be saved to " + *file + ": " + problem, ApplicationTitle,
                      PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
}

bool frmInfoBox::Write(const std::string& file, std::string& problem) const {
  const QFileInfo target(QFile::decodeName(file.c_str()));
  // Saving replaces what bears the name, and would do so to a device or a pipe.
  if (target.exists() && !target.isFile()) {
    problem = "It is not a file.";
    return false;
  }
  QSaveFile output(target.filePath());
  // A file can be writable in a folder that is not.
  output.setDirectWriteFallback(true);
  const bool saved = output.open(QIODevice::WriteOnly) &&
                     output.write(text_.data(), std::ssize(text_)) == std::ssize(text_) &&
                     output.flush() && output.commit();
  if (!saved) problem = output.errorString().toStdString();
  return saved;
}

}  // namespace wattlark
