#include "ui/ButtonWithHoverBackGround.h"

#include <QEnterEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPointer>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QtMath>

namespace {

constexpr QSize titleMargin{16, 8}; // logical pixels between the title and the layer's edges

} // namespace

ButtonWithHoverBackGround::ButtonWithHoverBackGround(QWidget* parent)
    : ButtonWithPointCursor(parent)
{
}

// -- properties

QColor ButtonWithHoverBackGround::normalColor() const
{
    return m_normalColor.isValid() ? m_normalColor
                                   : palette().color(QPalette::Active, QPalette::Base);
}

void ButtonWithHoverBackGround::setNormalColor(const QColor& color)
{
    m_normalColor = color;
    setLayerBackground(normalColor());
}

QColor ButtonWithHoverBackGround::titleColor() const
{
    return m_titleColor.isValid() ? m_titleColor
                                  : palette().color(QPalette::Active, QPalette::Text);
}

void ButtonWithHoverBackGround::setTitleColor(const QColor& color)
{
    m_titleColor = color;
    buildTitle();
}

void ButtonWithHoverBackGround::setIsCustomBorder(bool isCustomBorder)
{
    m_isCustomBorder = isCustomBorder;
    applyBorder();
}

void ButtonWithHoverBackGround::setCornerRadius(double radius)
{
    m_cornerRadius = radius;
    applyCornerRadius();
}

void ButtonWithHoverBackGround::setText(const QString& text)
{
    m_attributedTitle.reset();
    QPushButton::setText(text);
    updateGeometry();
    update();
}

// -- layer and title

void ButtonWithHoverBackGround::awakeFromNib()
{
    ButtonWithPointCursor::awakeFromNib();
    m_trackingArea = rect();
    setMouseTracking(true);
    connect(qGuiApp,
        &QGuiApplication::applicationStateChanged,
        this,
        &ButtonWithHoverBackGround::followPointer);
    setWantsLayer();
    applyCornerRadius();
    buildTitle();
}

void ButtonWithHoverBackGround::setWantsLayer()
{
    if (m_layer)
        return;
    m_layer.emplace();
    updateGeometry();
    update();
}

void ButtonWithHoverBackGround::setLayerBackground(const QColor& color)
{
    if (!m_layer)
        return;
    m_layer->backgroundColor = color;
    update();
}

void ButtonWithHoverBackGround::applyCornerRadius()
{
    if (!m_layer)
        return;
    m_layer->cornerRadius = m_cornerRadius;
    m_layer->masksToBounds = true;
    update();
}

void ButtonWithHoverBackGround::applyBorder()
{
    setWantsLayer();
    m_layer->borderWidth = 0.5;
    m_layer->borderColor = QColor(0xaa, 0xaa, 0xaa);
    update();
}

void ButtonWithHoverBackGround::buildTitle()
{
    constexpr int titleSize = 14; // logical pixels, so it grows with the button and not beyond it
    setLayerBackground(normalColor());
    auto font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(titleSize);
    m_attributedTitle = ButtonTitle{text(), m_titleColor, font, Qt::AlignHCenter};
    updateGeometry();
    update();
}

const ButtonTitle* ButtonWithHoverBackGround::attributedTitle() const
{
    // The text may have been changed through the base class as well, which tells nobody.
    return m_attributedTitle && m_attributedTitle->text == text() ? &*m_attributedTitle : nullptr;
}

ButtonTitle ButtonWithHoverBackGround::titleInUse() const
{
    if (const auto* title = attributedTitle())
        return *title;
    return {text(), {}, font(), Qt::AlignLeft};
}

QSize ButtonWithHoverBackGround::sizeHint() const
{
    if (!m_layer && !attributedTitle())
        return ButtonWithPointCursor::sizeHint();
    const auto content = titleInUse().size(*this);
    return QSize(qCeil(content.width()), qCeil(content.height())) + 2 * titleMargin;
}

QSize ButtonWithHoverBackGround::minimumSizeHint() const
{
    return sizeHint();
}

// -- following the pointer

void ButtonWithHoverBackGround::mouseEntered()
{
    if (!isEnabled())
        return;
    if (!m_hoverImage.isNull())
        setIcon(m_hoverImage);
    if (m_hoverColor.isValid())
        setLayerBackground(m_hoverColor);
}

void ButtonWithHoverBackGround::mouseExited()
{
    if (!isEnabled())
        return;
    if (!m_normalImage.isNull())
        setIcon(m_normalImage);
    setLayerBackground(normalColor());
}

void ButtonWithHoverBackGround::followPointer()
{
    if (m_isPressed)
        return; // a press is followed to its end
    const bool isInside = m_pointer && m_trackingArea && m_trackingArea->contains(*m_pointer) &&
                          QGuiApplication::applicationState() == Qt::ApplicationActive;
    if (isInside == m_isPointerInside)
        return;
    m_isPointerInside = isInside;
    if (isInside)
        mouseEntered();
    else
        mouseExited();
}

void ButtonWithHoverBackGround::enterEvent(QEnterEvent* event)
{
    ButtonWithPointCursor::enterEvent(event);
    m_pointer = event->position().toPoint();
    followPointer();
}

void ButtonWithHoverBackGround::leaveEvent(QEvent* event)
{
    ButtonWithPointCursor::leaveEvent(event);
    m_pointer.reset();
    followPointer();
}

void ButtonWithHoverBackGround::mouseMoveEvent(QMouseEvent* event)
{
    ButtonWithPointCursor::mouseMoveEvent(event);
    setPointer(event->position().toPoint());
}

void ButtonWithHoverBackGround::setPointer(const QPoint& position)
{
    // While a press lasts, the positions of a pointer outside come here as well.
    m_pointer = rect().contains(position) ? std::optional(position) : std::nullopt;
    followPointer();
}

void ButtonWithHoverBackGround::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_isPressed = true;
        if (isEnabled() && m_pressedColor.isValid())
            setLayerBackground(m_pressedColor);
    }
    ButtonWithPointCursor::mousePressEvent(event);
}

void ButtonWithHoverBackGround::mouseReleaseEvent(QMouseEvent* event)
{
    const auto position = event->position().toPoint();
    const auto button = event->button();
    const QPointer<ButtonWithHoverBackGround> self(this); // the action may delete the button
    ButtonWithPointCursor::mouseReleaseEvent(event);
    // The action may also have hidden or disabled it, which ends the press earlier.
    if (!self || !m_isPressed || button != Qt::LeftButton)
        return;
    m_isPressed = false;
    if (isEnabled() && m_hoverColor.isValid())
        setLayerBackground(m_hoverColor);
    setPointer(position);
}

void ButtonWithHoverBackGround::hideEvent(QHideEvent* event)
{
    ButtonWithPointCursor::hideEvent(event);
    m_isPressed = false;
    m_pointer.reset();
    followPointer();
}

void ButtonWithHoverBackGround::changeEvent(QEvent* event)
{
    ButtonWithPointCursor::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        m_isPressed = false; // its release will not come
    // From light to dark, for a background that is the palette's.
    const bool showsNormal = !m_isPressed && !m_isPointerInside;
    if (event->type() == QEvent::PaletteChange && showsNormal && !m_normalColor.isValid() &&
        m_layer && m_layer->backgroundColor.isValid())
        setLayerBackground(normalColor());
}

// -- painting

void ButtonWithHoverBackGround::paintEvent(QPaintEvent* event)
{
    if (!m_layer && !attributedTitle()) {
        ButtonWithPointCursor::paintEvent(event);
        return;
    }

    QStylePainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto bounds = alignedToPixels(rect(), painter);
    if (m_layer) {
        m_layer->paint(painter, bounds);
        if (m_layer->masksToBounds)
            painter.setClipPath(m_layer->outline(bounds));
    } else {
        QStyleOptionButton option;
        initStyleOption(&option);
        option.text.clear();
        option.icon = {};
        painter.drawControl(QStyle::CE_PushButton, option);
    }

    const auto title = titleInUse();
    const auto spare = std::max(0.0, bounds.width() - title.size(*this).width());
    const auto margin = std::min(qreal(titleMargin.width()), spare / 2);
    title.paint(painter, bounds.adjusted(margin, 0, -margin, 0), *this);
    if (m_layer && hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        paintFocus(painter, bounds);
}

void ButtonWithHoverBackGround::paintFocus(QPainter& painter, const QRectF& bounds) const
{
    // Inside, because the layer ends at its bounds, and in black or white, whichever is seen on a
    // background of any colour.
    constexpr qreal inset = 2;
    constexpr qreal width = 1.5;
    const auto behind = m_layer->backgroundColor.isValid() ? m_layer->backgroundColor
                                                           : palette().color(QPalette::Window);
    ButtonLayer ring;
    ring.cornerRadius = std::max(0.0, m_layer->cornerRadius - inset);
    ring.borderWidth = width;
    ring.borderColor = qGray(behind.rgb()) < 140 ? Qt::white : Qt::black;
    ring.paint(painter, bounds.adjusted(inset, inset, -inset, -inset));
}
