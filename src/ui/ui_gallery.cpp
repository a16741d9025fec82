#include "ui/ButtonWithHoverBackGround.h"
#include "ui/CustomAlertWindowController.h"
#include "ui/UiLoader.h"
#include "ui/UpgradeWindowController.h"

#include <QApplication>
#include <QBuffer>
#include <QEnterEvent>
#include <QLabel>
#include <QLayout>
#include <QStyle>
#include <QStyleFactory>

#include <cstdio>

// ui_gallery buttons|alert|upgrade [dark]: shows one window until it is closed.

namespace {

void goDark()
{
    QPalette palette(QColor(0x3a, 0x3c, 0x41), QColor(0x26, 0x27, 0x2b));
    palette.setColor(QPalette::Base, QColor(0x1b, 0x1c, 0x1f));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xff));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    QApplication::setPalette(palette);
}

QString button(const QString& text, const QString& more)
{
    return QStringLiteral(R"(
        <item><widget class="ButtonWithHoverBackGround" name="%1">
          <property name="text"><string>%1</string></property>
          <property name="minimumSize"><size><width>120</width><height>36</height></size></property>
          <property name="maximumSize"><size><width>120</width><height>36</height></size></property>
          %2
        </widget></item>)")
        .arg(text, more);
}

QString row(const QString& more, const QString& last = {})
{
    QString items;
    for (const auto* state : {"Normal", "Hovered", "Pressed", "Disabled"})
        items += button(QLatin1String(state), more);
    if (!last.isEmpty())
        items += button(last, more);
    return QStringLiteral(
        "<item><layout class=\"QHBoxLayout\"><property name=\"spacing\"><number>14</number>"
        "</property>%1<item><spacer><property name=\"orientation\"><enum>Qt::Horizontal</enum>"
        "</property></spacer></item></layout></item>")
        .arg(items);
}

QString color(const QString& property, const QColor& value)
{
    return QStringLiteral("<property name=\"%1\"><color alpha=\"%5\"><red>%2</red>"
                          "<green>%3</green><blue>%4</blue></color></property>")
        .arg(property)
        .arg(value.red())
        .arg(value.green())
        .arg(value.blue())
        .arg(value.alpha());
}

/// Puts each button into the state that its text names, with the events of a pointer.
void pose(ButtonWithHoverBackGround& button)
{
    const QPointF middle = button.rect().center();
    const auto state = button.text();
    if (state == QLatin1String("Disabled"))
        button.setEnabled(false);
    if (state == QLatin1String("Hovered") || state == QLatin1String("Pressed")) {
        QEnterEvent enter(middle, middle, middle);
        QCoreApplication::sendEvent(&button, &enter);
    }
    if (state == QLatin1String("Pressed")) {
        QMouseEvent press(QEvent::MouseButtonPress,
            middle,
            middle,
            Qt::LeftButton,
            Qt::LeftButton,
            Qt::NoModifier);
        QCoreApplication::sendEvent(&button, &press);
    }
    if (state == QLatin1String("Focused")) {
        button.setFocus(Qt::TabFocusReason);
        button.window()->setAttribute(Qt::WA_KeyboardFocusChange);
    }
}

std::unique_ptr<QWidget> buttons()
{
    const auto blue = color(QStringLiteral("normalColor"), QColor(47, 111, 237)) +
                      color(QStringLiteral("hoverColor"), QColor(79, 137, 248)) +
                      color(QStringLiteral("pressedColor"), QColor(32, 86, 196)) +
                      color(QStringLiteral("titleColor"), Qt::white);
    const auto green =
        color(QStringLiteral("normalColor"), QColor(226, 246, 234)) +
        color(QStringLiteral("hoverColor"), QColor(200, 236, 214)) +
        color(QStringLiteral("pressedColor"), QColor(166, 216, 186)) +
        color(QStringLiteral("titleColor"), QColor(16, 84, 46)) +
        QStringLiteral("<property name=\"cornerRadius\"><double>18</double></property>");
    const auto bordered =
        QStringLiteral("<property name=\"isCustomBorder\"><bool>true</bool></property>") +
        color(QStringLiteral("hoverColor"), QColor(128, 136, 150, 40)) +
        color(QStringLiteral("pressedColor"), QColor(128, 136, 150, 110));
    const auto text =
        QStringLiteral("<ui version=\"4.0\"><widget class=\"QDialog\" name=\"gallery\">"
                       "<property name=\"windowTitle\"><string>Buttons</string>"
                       "</property><layout class=\"QVBoxLayout\">"
                       "<property name=\"margin\"><number>24</number></property>"
                       "<property name=\"spacing\"><number>16</number></property>"
                       "%1</layout></widget></ui>")
            .arg(row(blue, QStringLiteral("Focused")) + row(green) + row(bordered));
    auto bytes = text.toUtf8();
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return UiLoader::loadInterface(buffer);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (arguments.contains(QLatin1String("dark")))
        goDark();

    if (arguments.contains(QLatin1String("alert"))) {
        CustomAlertWindowController alert;
        alert.titleLabel().setText(QStringLiteral("You're up to date"));
        alert.infoLabel().setText(QStringLiteral("1.0.0 is currently the newest version"));
        alert.showWindow();
        return QApplication::exec();
    }
    if (arguments.contains(QLatin1String("upgrade"))) {
        UpgradeWindowController offer(QStringLiteral("UpgradeWindowController"),
            [](const QUrl& url) { std::printf("open %s\n", url.toEncoded().constData()); });
        offer.upgradeInfo = {QStringLiteral("https://example.org/download"),
            {},
            QStringLiteral("1.2.0"),
            QStringLiteral("<p>Plays more, asks less.</p>")};
        if (arguments.contains(QLatin1String("long")))
            offer.upgradeInfo->ver = QStringLiteral("<b>1.2</b> ").repeated(500);
        offer.showWindow();
        return QApplication::exec();
    }
    const auto window = buttons();
    window->show();
    for (auto* one : window->findChildren<ButtonWithHoverBackGround*>())
        pose(*one);
    return QApplication::exec();
}
