#pragma once

#include "ui/ButtonLayer.h"
#include "ui/ButtonTitle.h"
#include "ui/ButtonWithPointCursor.h"

#include <optional>

/// A push button whose background, and image if it has any, change while the pointer is over it
/// and while it is pressed, with a centred title in a colour of its own.
///
/// Meant for interface files, where its look is set through its properties; `awakeFromNib()` then
/// gives it its layer, its title and the area in which it follows the pointer. That area stays
/// what it is when the button is resized. Without these steps, as when it is made in code, it is
/// an ordinary push button. A disabled button keeps the look that it has.
class ButtonWithHoverBackGround : public ButtonWithPointCursor {
    Q_OBJECT
    // An image that is null and a colour that is not valid are none: that transition then leaves
    // the image or the background as it is.
    Q_PROPERTY(QIcon hoverImage READ hoverImage WRITE setHoverImage)
    Q_PROPERTY(QIcon normalImage READ normalImage WRITE setNormalImage)
    Q_PROPERTY(QColor hoverColor READ hoverColor WRITE setHoverColor)
    Q_PROPERTY(QColor normalColor READ normalColor WRITE setNormalColor)
    Q_PROPERTY(QColor pressedColor READ pressedColor WRITE setPressedColor)
    Q_PROPERTY(QColor titleColor READ titleColor WRITE setTitleColor)
    Q_PROPERTY(bool isCustomBorder READ isCustomBorder WRITE setIsCustomBorder)
    Q_PROPERTY(double cornerRadius READ cornerRadius WRITE setCornerRadius)
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    explicit ButtonWithHoverBackGround(QWidget* parent = nullptr);

    const QIcon& hoverImage() const { return m_hoverImage; }
    void setHoverImage(const QIcon& image) { m_hoverImage = image; }
    const QIcon& normalImage() const { return m_normalImage; }
    void setNormalImage(const QIcon& image) { m_normalImage = image; }
    QColor hoverColor() const { return m_hoverColor; }
    void setHoverColor(const QColor& color) { m_hoverColor = color; }
    /// Until it is assigned, the background of text in the button's palette.
    QColor normalColor() const;
    void setNormalColor(const QColor& color);
    QColor pressedColor() const { return m_pressedColor; }
    void setPressedColor(const QColor& color) { m_pressedColor = color; }
    /// Until it is assigned, the text's colour in the button's palette.
    QColor titleColor() const;
    /// Makes the title anew, also for an equal colour.
    void setTitleColor(const QColor& color);
    bool isCustomBorder() const { return m_isCustomBorder; }
    /// Gives the button its border whatever the value is; one without is never assigned any.
    void setIsCustomBorder(bool isCustomBorder);
    /// In logical pixels.
    double cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(double radius);

    /// Loses the title's colour, font and centring until `titleColor` is assigned again.
    void setText(const QString& text);

    void awakeFromNib() override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    virtual void mouseEntered();
    virtual void mouseExited();

    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Until its text is changed.
    const ButtonTitle* attributedTitle() const;
    ButtonTitle titleInUse() const;

    void setWantsLayer();
    void setLayerBackground(const QColor& color);
    void buildTitle();
    void applyCornerRadius();
    void applyBorder();
    void setPointer(const QPoint& position);
    void followPointer();
    void paintFocus(QPainter& painter, const QRectF& bounds) const;

    QIcon m_hoverImage;
    QIcon m_normalImage;
    QColor m_hoverColor;
    QColor m_normalColor;
    QColor m_pressedColor;
    QColor m_titleColor;
    bool m_isCustomBorder = false;
    double m_cornerRadius = 5.0;

    std::optional<ButtonLayer> m_layer;
    std::optional<ButtonTitle> m_attributedTitle;

    std::optional<QRect> m_trackingArea;
    std::optional<QPoint> m_pointer; ///< while it is over the button
    bool m_isPointerInside = false;  ///< as far as the transitions have followed
    bool m_isPressed = false;
};
