#pragma once

#include "platform/Bundle.h"

#include <QIcon>
#include <QImage>

/// The helper's mark in the status bar: a screen that plays. One colour with a thin contrasting
/// edge, because a panel may be light or dark and does not say which.
namespace StatusBarImage {

constexpr int sizes[] = {16, 22, 24, 32, 48, 64}; ///< pixels, those that panels ask for

/// Painted when the project is built, each size for itself.
QImage paint(int size);

/// The resource "fendix_statusBar". Transparent where it is missing.
QIcon load(const Bundle& bundle);

} // namespace StatusBarImage
