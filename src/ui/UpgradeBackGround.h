#pragma once

#include <QImage>
#include <QSize>

/// The picture behind the upgrade window: northern lights above dark hills, where the texts are.
/// Painted into the resources `upgrade_back_ground.png` while the project is built.
namespace UpgradeBackGround {

constexpr QSize size{460, 300};    ///< logical pixels
constexpr qreal cornerRadius = 14; ///< logical pixels; transparent outside

/// With `ratio` pixels for each logical one.
QImage image(int ratio);

} // namespace UpgradeBackGround
