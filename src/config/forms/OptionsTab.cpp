#include "config/forms/OptionsTab.h"

#include <QHBoxLayout>

#include "config/OptionsEdit.h"

namespace wattlark {

OptionsTab::OptionsTab(const QString& name) {
  setObjectName(name);
  grid_ = MakeGrid(this, DialogMargin);
  grid_->setColumnStretch(1, 1);
}

void OptionsTab::AddRow(QGridLayout& grid, const QString& caption, QWidget* field,
                        QWidget* behind) {
  const int row = grid.rowCount();
  grid.addWidget(MakeLabel(caption, field), row, 0);
  grid.addWidget(field, row, 1, 1, behind == nullptr ? 2 : 1);
  if (behind != nullptr) grid.addWidget(behind, row, 2);
}

FieldNote* OptionsTab::AddNote(QGridLayout& grid, QWidget* field, int column, int columns) {
  auto* note = new FieldNote(*field);
  grid.addWidget(note, grid.rowCount(), column, 1, columns);
  return note;
}

void OptionsTab::AddSwitch(QGridLayout& grid, const QString& caption, QCheckBox* box,
                           QComboBox* interval) {
  box->setText(caption);
  box->setAccessibleName(SpokenName(caption));
  interval->setAccessibleName(SpokenName(caption));
  auto* row = new QHBoxLayout;
  row->setSpacing(DialogRowGap);
  row->addWidget(box);
  row->addWidget(interval);
  row->addStretch(1);
  grid.addLayout(row, grid.rowCount(), 0, 1, 3);
  NoteWithoutChoice(interval, AddNote(grid, interval, 0, 3));
}

void OptionsTab::AddCheckBox(QGridLayout& grid, const QString& caption, QCheckBox* box) {
  box->setText(caption);
  box->setAccessibleName(SpokenName(caption));
  grid.addWidget(box, grid.rowCount(), 0, 1, 3);
}

void OptionsTab::AddLogin(const QString& caption, const QString& name, const QString& userCaption,
                          TextBox* user, PasswordBox* password) {
  QGridLayout* grid = nullptr;
  Grid().setRowMinimumHeight(Grid().rowCount(), DialogRowGap);
  Grid().addWidget(MakeFrame(caption, name, grid), Grid().rowCount() + 1, 0, 1, 3);
  grid->setColumnStretch(1, 1);
  AddRow(*grid, userCaption, user);
  AddRow(*grid, "Pass&word:", password);
}

void OptionsTab::NoteWhenEmpty(TextBox* box, FieldNote* note) {
  connect(box, &QLineEdit::textChanged, note,
          [note](const QString& text) { note->Show(EmptyTextNote(text.toStdString())); });
}

void OptionsTab::NoteWithoutChoice(QComboBox* list, FieldNote* note) {
  connect(list, &QComboBox::currentIndexChanged, note,
          [note](int index) { note->Show(NoChoiceNote(index)); });
}

}  // namespace wattlark
