#pragma once

#include <QByteArray>
#include <QImage>

/// The picture in a PNG, JPEG, GIF (its first), BMP or WebP file; null for anything else and for a
/// damaged one. A picture that takes up more than `memoryLimit` bytes is refused by what its head
/// claims, before anything is unpacked. Vector formats, which may take any time and name other
/// files, are not read. Nothing is ever logged.
QImage decodePicture(const QByteArray& file, qint64 memoryLimit);
