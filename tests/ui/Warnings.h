#pragma once

#include <QRegularExpression>
#include <QTest>

/// From now on the test that runs fails when anything but the display without a screen complains.
inline void failOnAnyWarning()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support)")));
}
