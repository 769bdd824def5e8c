#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QWidget>

#include "config/forms/FieldNote.h"
#include "config/forms/FormControls.h"

namespace wattlark {

/// One tab of the options dialog: rows of a caption and a field, each with room for a note below
/// it. A tab shows its part of the dialog's contents with `Load` and gives it back with `Store`.
class OptionsTab : public QWidget {
 protected:
  explicit OptionsTab(const QString& name);

  /// A row "caption: field", and below the field its note; `grid` has those two columns, and a
  /// third for a unit or a button behind the field.
  static void AddRow(QGridLayout& grid, const QString& caption, QWidget* field,
                     QWidget* behind = nullptr);
  static FieldNote* AddNote(QGridLayout& grid, QWidget* field, int column = 1, int columns = 2);
  /// A row of a check box whose caption goes on with a list: "Log data every" "5 minutes".
  static void AddSwitch(QGridLayout& grid, const QString& caption, QCheckBox* box,
                        QComboBox* interval);
  static void AddCheckBox(QGridLayout& grid, const QString& caption, QCheckBox* box);
  /// A frame with the name and the password of an account, below the rows.
  void AddLogin(const QString& caption, const QString& name, const QString& userCaption,
                TextBox* user, PasswordBox* password);
  /// Lets the note say that a text left empty comes back as its default.
  static void NoteWhenEmpty(TextBox* box, FieldNote* note);
  /// Lets the note say that the setting is none of the list's entries, as long as that is so.
  static void NoteWithoutChoice(QComboBox* list, FieldNote* note);

  QGridLayout& Grid() { return *grid_; }
  /// The space below the last row.
  void EndRows() { grid_->setRowStretch(grid_->rowCount(), 1); }

 private:
  QGridLayout* grid_;
};

}  // namespace wattlark
