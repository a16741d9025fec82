#include "ui/UpgradeBackGround.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cmath>
#include <random>

namespace {

constexpr qreal width = UpgradeBackGround::size.width();
constexpr qreal height = UpgradeBackGround::size.height();
const QRectF whole(0, 0, width, height);

void paintSky(QPainter& painter)
{
    QLinearGradient sky(0, 0, 0, height);
    sky.setColorAt(0, QColor(0x0b, 0x10, 0x33));
    sky.setColorAt(0.55, QColor(0x1b, 0x2a, 0x63));
    sky.setColorAt(1, QColor(0x12, 0x18, 0x3d));
    painter.fillRect(whole, sky);
}

void paintStars(QPainter& painter)
{
    // Always the same sky: the standard fixes what this engine draws.
    std::minstd_rand random(11);
    const auto upTo = [&](qreal limit) { return limit * qreal(random() % 1000) / 1000; };
    for (int i = 0; i < 70; ++i) {
        const QPointF place(upTo(width), upTo(height * 0.5));
        painter.setBrush(QColor(255, 255, 255, int(60 + upTo(140))));
        const auto radius = 0.4 + upTo(0.6);
        painter.drawEllipse(place, radius, radius);
    }
}

/// One curtain: bright along a wave, fading upwards in rays.
struct Curtain {
    qreal base;  ///< where its lower edge is on the average
    qreal swing; ///< how far that edge goes up and down
    qreal waves;
    qreal phase;
    qreal reach; ///< how far it fades upwards
    QColor low;
    QColor high;
};

void paintCurtain(QPainter& painter, const Curtain& curtain)
{
    constexpr qreal strip = 0.5;
    constexpr qreal softness = 9; // of the lower edge
    for (qreal x = 0; x < width; x += strip) {
        const auto turn = curtain.phase + curtain.waves * 6.2832 * x / width;
        const auto edge =
            curtain.base + curtain.swing * (std::sin(turn) + 0.35 * std::sin(2.3 * turn));
        const auto rays = 0.62 + 0.22 * std::sin(x * 0.11 + 2 * std::sin(x * 0.031)) +
                          0.16 * std::sin(x * 0.29 + turn);
        const auto sides = std::sin(3.1416 * x / width);
        const auto strength = std::clamp(rays * sides, 0.0, 1.0);
        const auto reach = curtain.reach * (0.75 + 0.25 * rays);

        QLinearGradient light(0, edge + softness, 0, edge - reach);
        const auto at = [&](qreal position, QColor color, qreal alpha) {
            color.setAlphaF(float(alpha * strength));
            light.setColorAt(position, color);
        };
        const auto brightest = softness / (softness + reach);
        at(0, curtain.low, 0);
        at(brightest, curtain.low, 0.62);
        at(0.42, curtain.high, 0.26);
        at(1, curtain.high, 0);
        painter.fillRect(QRectF(x, edge - reach, strip, reach + softness), light);
    }
}

void paintHills(QPainter& painter)
{
    const auto hill = [&](qreal base, qreal swing, qreal waves, qreal phase, const QBrush& brush) {
        QPainterPath path({0, height});
        for (qreal x = 0; x <= width; x += 2) {
            const auto turn = phase + waves * 6.2832 * x / width;
            path.lineTo(x, base - swing * (std::sin(turn) + 0.3 * std::sin(2.7 * turn + 1)));
        }
        path.lineTo(width, height);
        painter.fillPath(path, brush);
    };
    hill(168, 15, 1.2, 2.4, QColor(0x16, 0x20, 0x4e));
    QLinearGradient ground(0, 165, 0, height);
    ground.setColorAt(0, QColor(0x10, 0x17, 0x3a));
    ground.setColorAt(1, QColor(0x0c, 0x11, 0x2c));
    hill(186, 10, 0.8, 5.2, ground);
}

} // namespace

QImage UpgradeBackGround::image(int ratio)
{
    QImage image(size * ratio, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(ratio, ratio);
    QPainterPath outline;
    outline.addRoundedRect(whole, cornerRadius, cornerRadius);
    painter.setClipPath(outline);

    paintSky(painter);
    paintStars(painter);
    painter.setCompositionMode(QPainter::CompositionMode_Screen);
    const QColor green(0x3d, 0xf0, 0xb0);
    const QColor violet(0x8a, 0x5c, 0xf0);
    for (const auto& curtain : std::array<Curtain, 3>{{
             {96, 14, 0.9, 0.4, 88, QColor(0x35, 0xb8, 0xd8), violet},
             {132, 16, 1.1, 2.1, 112, green, QColor(0x3a, 0x8c, 0xe8)},
             {150, 10, 1.6, 4.4, 70, green, violet},
         }})
        paintCurtain(painter, curtain);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    paintHills(painter);

    // A thin edge of light, so that the window stands out from a dark one behind it.
    constexpr qreal half = 0.5;
    painter.setPen(QPen(QColor(255, 255, 255, 46), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(
        whole.adjusted(half, half, -half, -half), cornerRadius - half, cornerRadius - half);
    return image;
}
