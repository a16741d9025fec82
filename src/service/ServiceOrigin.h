#pragma once

#include <QByteArray>
#include <QUrl>

/// The origin of the service (scheme, host and port only, RFC 6454): the one this program was
/// configured with, or `replacement` where that is not empty. A replacement that is not an https
/// origin is refused with one line on standard error.
QUrl serviceOrigin(const QByteArray& replacement);
