#pragma once

#include <QFont>
#include <QLabel>

namespace wattlark {

/// A label of one line that is never cut: where its text does not fit, it is written smaller.
/// Figures are all equally wide, so that a changing number does not dance.
class FitLabel : public QLabel {
 public:
  enum class Size {
    Small,    ///< a little below the window's font
    Normal,   ///< the window's font
    Heading,  ///< a little above it, bold
    Largest,  ///< bold and as large as the label allows; a unit behind a blank is smaller
  };
  enum class Tone { Text, Muted, Warning };

  FitLabel(const QString& objectName, Size size, Qt::Alignment alignment, QWidget* parent);

  void SetTone(Tone tone);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QFont FullFont() const;
  /// The font that the present text takes in the present space.
  QFont FittedFont() const;
  bool IsFitting(const QFont& font) const;

  Size size_;
  Tone tone_ = Tone::Text;
};

}  // namespace wattlark
