#pragma once

#include <QString>

/// Videos made on the spot with the `ffmpeg` program. A test that cannot make one ends.
namespace TestVideos {

/// A plain colour ("red", "0x2040c0"), 1280 by 720, 30 frames a second, silent.
void makePlain(const QString& path, const QString& colour, double seconds = 2);
/// The left half of one colour, the right half of another.
void makeHalves(const QString& path, const QString& left, const QString& right);
/// The left half red above and lime below, the right half blue.
void makeThirds(const QString& path);
/// Red for so many seconds, then lime for as many.
void makeSequence(const QString& path, double seconds);
/// Anything: the arguments between `ffmpeg -y` and the path.
void make(const QString& path, const QStringList& arguments);

} // namespace TestVideos
