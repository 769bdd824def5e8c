#pragma once

#include <QString>
#include <QWidget>
#include <vector>

namespace wattlark {

/// One button of a selector.
struct SelectorChoice {
  QString text;
  QString name;     ///< what assistive programs say
  QString picture;  ///< name of a tinted icon; empty for text alone
};

/// A row of buttons of which exactly one is selected, by the pointer, the arrow keys or `Select`.
/// The buttons' object names are the group's with their index: "elaCurrentUnit0".
class SelectorGroup : public QWidget {
  Q_OBJECT

 public:
  SelectorGroup(const QString& objectName, const QString& accessibleName,
                const std::vector<SelectorChoice>& choices, QWidget* parent);

  /// The four units, the six intervals.
  static SelectorGroup* Units(const QString& objectName, QWidget* parent);
  static SelectorGroup* Intervals(const QString& objectName, QWidget* parent);

  /// Index of the selected button; 0 when none is.
  int Selected() const;
  /// Exactly what a click on that button does; an index outside the row is ignored.
  void Select(int index);
  /// Shows the button of that index as selected without a signal; outside the row, the first.
  void Show(int index);

 signals:
  /// The user, or `Select`, has chosen this button.
  void Chosen(int index);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  class Button;
  std::vector<Button*> buttons_;
};

}  // namespace wattlark
