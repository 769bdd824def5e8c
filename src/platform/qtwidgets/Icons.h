#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>
#include <string_view>

namespace wattlark {

/// The colours of a picture in one colour, taken from the palette or the theme; an icon does not
/// follow a later change of them.
struct IconColors {
  QColor off;       ///< as a button that is not checked shows it
  QColor on;        ///< checked
  QColor disabled;  ///< either way
};

/// One of the program's pictures in one colour: "power", "energy", "cost", "co2" (the units),
/// "back", "forward", "reset", "alarm", "receiving" and "idle" (the receiver). `size` is in
/// device-independent pixels, the pixmap has `size` x `devicePixelRatio` pixels. An unknown name
/// gives a null pixmap.
QPixmap TintedPixmap(const QString& name, const QColor& color, const QSize& size,
                     double devicePixelRatio);

/// The same picture as an icon, sharp at any size and ratio; null for an unknown name.
QIcon TintedIcon(const QString& name, const IconColors& colors);

/// The notification area's plug with five load bars, made to be seen on light and dark panels.
/// Keys: "KILLAWATT" (no bar lit), "KILLAWATT0" to "KILLAWATT4" (one to five bars) and "KILLAWATT5"
/// (all five in the warning colour). Any other key gives "KILLAWATT". Where the program is
/// installed the icon also has the name of a symbolic one, which a desktop may colour to suit its
/// panel.
QIcon TrayIcon(std::string_view key);

/// The program's own mark.
QIcon ApplicationIcon();

}  // namespace wattlark
