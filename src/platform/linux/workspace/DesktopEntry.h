#pragma once

#include <QString>

/// Installed applications (https://specifications.freedesktop.org/desktop-entry-spec).
namespace DesktopEntry {

/// Starts the application of `<identifier>.desktop` in a session of its own; silent when that
/// fails. May wait for the session bus. For a thread that runs GLib's loop.
void launch(const QString& identifier);

} // namespace DesktopEntry
