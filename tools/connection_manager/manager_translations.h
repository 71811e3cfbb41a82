#pragma once

#include <QLocale>

namespace connection_manager {
/// Makes the windows, and Qt's own buttons in them, speak the locale's language where there is a
/// translation. Call once, before a window is made.
void install_translations(const QLocale& locale);
} // namespace connection_manager
