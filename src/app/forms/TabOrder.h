#pragma once

#include <vector>

class QWidget;

namespace wattlark {

/// The widgets within one that can have the focus, in the order in which the tab key goes.
std::vector<QWidget*> TabOrderWithin(QWidget& whole);

/// Puts those within `whole` right behind `before`, which can have the focus. To be called for a
/// part of a window that is made late: the tab key would reach it behind everything else.
void PlaceInTabOrder(QWidget& whole, QWidget& before);

}  // namespace wattlark
