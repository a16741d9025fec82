#pragma once

#include "ui/ButtonWithHoverBackGround.h"
#include "ui/UiLoader.h"

#include <QBuffer>
#include <QTest>

/// A shown window with one button, from an interface file whose text is given, and a pointer.
class ButtonFixture {
public:
    /// The button is 120 by 40, 40 pixels from the window's edges.
    explicit ButtonFixture(const QString& properties)
    {
        auto text = QStringLiteral(R"(<ui version="4.0"><widget class="QWidget" name="window">
            <property name="geometry"><rect><x>0</x><y>0</y><width>300</width><height>160</height></rect></property>
            <widget class="ButtonWithHoverBackGround" name="button">
            <property name="geometry"><rect><x>40</x><y>40</y><width>120</width><height>40</height></rect></property>
            %1</widget></widget></ui>)")
                        .arg(properties)
                        .toUtf8();
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        window = UiLoader::loadInterface(buffer);
        button = window->findChild<ButtonWithHoverBackGround*>(QStringLiteral("button"));
        window->show();
        window->activateWindow();
        if (!QTest::qWaitForWindowActive(window.get()))
            qFatal("The window does not become active.");
        moveTo({5, 5});
    }

    static QString color(const char* property, const QColor& value)
    {
        return QStringLiteral("<property name=\"%1\"><color alpha=\"%2\"><red>%3</red>"
                              "<green>%4</green><blue>%5</blue></color></property>")
            .arg(QLatin1String(property))
            .arg(value.alpha())
            .arg(value.red())
            .arg(value.green())
            .arg(value.blue());
    }

    /// Points are the window's.
    void moveTo(const QPoint& point) const { QTest::mouseMove(window->windowHandle(), point); }
    void press() const { QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, middle); }
    void releaseAt(const QPoint& point) const
    {
        QTest::mouseMove(window->windowHandle(), point);
        QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, point);
    }

    /// What is seen between the button's edge and its title.
    QColor background() const { return pixel({6, 20}); }
    QColor pixel(const QPoint& inButton) const
    {
        return window->grab().toImage().pixelColor(button->pos() + inButton);
    }

    static constexpr QPoint middle{100, 60};
    static constexpr QPoint outside{250, 140};

    std::unique_ptr<QWidget> window;
    ButtonWithHoverBackGround* button;
};
