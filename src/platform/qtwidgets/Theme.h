#pragma once

#include <QColor>
#include <QPalette>

namespace wattlark {

/// The contrast of two opaque colours after WCAG 2: 1 (the same) to 21 (black on white).
double ContrastRatio(const QColor& first, const QColor& second);

/// The window's colours: a desktop's palette and what the program adds to it. A change of the
/// palette (light to dark) calls for a new one.
struct Theme {
  bool isDark;  ///< light text on a dark ground

  // The desktop's own.
  QColor base;    ///< the ground of pages, charts and grids
  QColor window;  ///< the ground around them: tab strip, page buttons, status bar
  QColor text;    ///< on either

  /// The mark of what is selected and of the present value; as text it has at least 4.5:1 on
  /// `base`, `window` and `selectedFill`.
  QColor accent;
  QColor warning;       ///< alarms; at least 4.5:1 on `base` and `window`
  QColor mutedText;     ///< dates, captions, units; at least 4.5:1 on `base` and `window`
  QColor hairline;      ///< grid lines, borders of what is not selected; decoration only
  QColor selectedFill;  ///< the ground of a selected button, below text in `accent`

  QColor zone;  ///< opaque band of a chart's alarm zones
  /// Lines at least 3:1 on `base` and on `zone`.
  QColor firstSeries;   ///< power, volts
  QColor secondSeries;  ///< amps (dashed)
  QColor seriesFill;    ///< opaque area below filled steps, whose edge is `firstSeries`

  /// Colours of the active group. A pair of grounds so far apart that nothing is readable on both
  /// gets the most readable colour there is.
  static Theme FromPalette(const QPalette& palette);
};

}  // namespace wattlark
