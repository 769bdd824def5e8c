#pragma once

#include <QString>
#include <string>

#include "config/modRegistry.h"

class QWidget;

namespace wattlark {

/// Moves a window to where it was stored under `name`, and into its stored state, or `defaultState`
/// without one. A window that is larger than the screen is cut to it. To be called before the
/// window is shown.
void RestoreWindowSettings(QWidget& window, const modRegistry& store, const std::string& name,
                           int defaultState);
/// Stores where a window is under `name`; false when that failed.
bool SaveWindowSettings(const QWidget& window, modRegistry& store, const std::string& name);

/// Keeps a window above all others, or not. It is neither moved nor hidden for that.
void SetAlwaysOnTop(QWidget& window, bool on);

/// A tool tip that shows `text` as it is, even where it looks like markup.
QString PlainToolTip(const QString& text);

}  // namespace wattlark
