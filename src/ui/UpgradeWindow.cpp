#include "ui/UpgradeWindow.h"

#include "ui/UpgradeBackGround.h"
#include "ui/UpgradeWindowController.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWindow>

namespace {

/// For what lies on the image, whose colours do not follow the desktop's.
QPalette paletteOnBackGround()
{
    QPalette palette(QColor(0x39, 0x41, 0x78), QColor(0x14, 0x18, 0x38));
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::ButtonText, Qt::white);
    palette.setColor(QPalette::Text, QColor(0xd5, 0xdc, 0xf2));
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xed));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

} // namespace

UpgradeWindow::UpgradeWindow(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setPalette(paletteOnBackGround());
}

void UpgradeWindow::setWindowController(WindowController* controller)
{
    m_windowController = controller;
}

void UpgradeWindow::setBackGround(const QIcon& image)
{
    m_backGround = image;
    update();
}

void UpgradeWindow::openUpdate()
{
    if (auto* controller = qobject_cast<UpgradeWindowController*>(windowController()))
        controller->openDownload();
    performClose();
}

void UpgradeWindow::performClose()
{
    close();
}

void UpgradeWindow::keyPressEvent(QKeyEvent* event)
{
    auto* const button = qobject_cast<QAbstractButton*>(focusWidget());
    if (button && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        button->click();
    else
        QDialog::keyPressEvent(event);
}

void UpgradeWindow::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const auto image = m_backGround.pixmap(size(), devicePixelRatio());
    if (image.isNull())
        painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(rect(), image);
}

void UpgradeWindow::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    // Without a compositor, what is transparent would be black. The image's soft edge stays inside.
    QPainterPath outline;
    constexpr qreal radius = UpgradeBackGround::cornerRadius - 1;
    outline.addRoundedRect(rect(), radius, radius);
    setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

void UpgradeWindow::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QDialog::mousePressEvent(event);
        return;
    }
    // Window managers move it best, at their edges and snapping points; not all of them do.
    if (!windowHandle()->startSystemMove())
        m_grip = event->globalPosition().toPoint() - pos();
}

void UpgradeWindow::mouseMoveEvent(QMouseEvent* event)
{
    if (m_grip)
        move(event->globalPosition().toPoint() - *m_grip);
}

void UpgradeWindow::mouseReleaseEvent(QMouseEvent* event)
{
    m_grip.reset();
    QDialog::mouseReleaseEvent(event);
}
