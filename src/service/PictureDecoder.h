#pragma once

#include <QByteArray>
#include <QImage>

/// The picture in a PNG, JPEG or GIF (its first) file; null for anything else and for a damaged
/// one. What it takes up as pixels, by its head's claim, is taken off `memoryLeft` (bytes) before
/// anything is unpacked, whether that succeeds then or not; a picture that does not fit is refused.
/// Only what makes up the picture is read of a file, and no JPEG of very many layers. Nothing is
/// ever logged.
QImage decodePicture(const QByteArray& file, qint64& memoryLeft);
