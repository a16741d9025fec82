#include "ui/ButtonTitle.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPushButton>
#include <QStyle>

namespace {

constexpr qreal imageDistance = 6; // logical pixels between the image and the text

QSizeF imageSize(const QPushButton& button)
{
    return button.icon().isNull() ? QSizeF(0, 0) : QSizeF(button.iconSize());
}

qreal distance(const QString& text, const QPushButton& button)
{
    return button.icon().isNull() || text.isEmpty() ? 0 : imageDistance;
}

} // namespace

QSizeF ButtonTitle::size(const QPushButton& button) const
{
    const auto image = imageSize(button);
    const auto words = QFontMetricsF(font).size(Qt::TextShowMnemonic, text);
    return {image.width() + distance(text, button) + words.width(),
        std::max(image.height(), words.height())};
}

void ButtonTitle::paint(QPainter& painter, const QRectF& bounds, const QPushButton& button) const
{
    constexpr qreal disabledOpacity = 0.7; // paler, and still to be read
    const auto image = imageSize(button);
    const auto before = image.width() + distance(text, button);
    const QFontMetricsF metrics(font);
    const auto shown = metrics.elidedText(
        text, Qt::ElideRight, std::max(0.0, bounds.width() - before), Qt::TextShowMnemonic);
    const QSizeF whole(before + metrics.size(Qt::TextShowMnemonic, shown).width(), bounds.height());
    const auto place = QStyle::alignedRect(button.layoutDirection(),
        alignment | Qt::AlignVCenter,
        whole.toSize().boundedTo(bounds.toAlignedRect().size()),
        bounds.toAlignedRect());

    const bool fromLeft = button.layoutDirection() == Qt::LeftToRight;
    QRectF imagePlace(QPointF(fromLeft ? place.left() : place.right() + 1 - image.width(),
                          place.center().y() + 0.5 - image.height() / 2),
        image);
    const QRectF textPlace =
        QRectF(place).adjusted(fromLeft ? before : 0, 0, fromLeft ? 1 : -before, 0);

    painter.save();
    if (!image.isEmpty())
        button.icon().paint(&painter,
            imagePlace.toRect(),
            Qt::AlignCenter,
            button.isEnabled() ? QIcon::Normal : QIcon::Disabled,
            button.isChecked() ? QIcon::On : QIcon::Off);
    auto color = foregroundColor.isValid()
                     ? foregroundColor
                     : button.palette().color(QPalette::Active, QPalette::Text);
    if (!button.isEnabled())
        color.setAlphaF(color.alphaF() * float(disabledOpacity));
    painter.setFont(font);
    painter.setPen(color);
    const bool showsMnemonics =
        button.style()->styleHint(QStyle::SH_UnderlineShortcut, nullptr, &button) != 0;
    painter.drawText(textPlace,
        int(Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignVCenter | Qt::TextSingleLine) |
            (showsMnemonics ? Qt::TextShowMnemonic : Qt::TextHideMnemonic),
        shown);
    painter.restore();
}
