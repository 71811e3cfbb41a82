#pragma once

#include <QString>

class QWidget;

/// Boxes over a window. Texts are shown as they are, never as markup, because names of connections
/// and messages of servers stand in them.
namespace connection_manager {
void warn(QWidget* parent, const QString& title, const QString& text);

/// Tells whether the user answers with Yes; No is the default.
bool confirm(QWidget* parent, const QString& title, const QString& question);
} // namespace connection_manager
