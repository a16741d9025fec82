#include "menu/HelperIcon.h"

#include "menu/HelperImage.h"

#include <QIconEngine>
#include <QPixmap>
#include <QStandardPaths>

#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QIcon load(const Bundle& bundle, const QString& name, std::span<const int> sizes)
{
    QIcon icon;
    for (const int size : sizes) {
        if (const auto file = bundle.pathForResource(u"%1_%2"_s.arg(name).arg(size), u"png"_s))
            icon.addFile(*file, QSize(size, size));
    }
    if (icon.isNull()) {
        QPixmap empty(1, 1);
        empty.fill(Qt::transparent);
        return empty;
    }
    return icon;
}

/// Pictures under the name that a theme has for them. `QIcon::fromTheme` would take the pictures
/// from the theme as well, in a colour that only panels which know the name can correct.
class NamedIconEngine : public QIconEngine {
public:
    NamedIconEngine(QIcon pictures, QString name)
        : m_pictures(std::move(pictures)), m_name(std::move(name))
    {
    }

    QIconEngine* clone() const override { return new NamedIconEngine(m_pictures, m_name); }
    QString iconName() override { return m_name; }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override
    {
        return m_pictures.availableSizes(mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return m_pictures.pixmap(size, 1, mode, state);
    }
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        m_pictures.paint(painter, rect, Qt::AlignCenter, mode, state);
    }

private:
    QIcon m_pictures;
    QString m_name;
};

} // namespace

QIcon HelperIcon::statusBarIcon(const Bundle& bundle)
{
    const auto name = u"fendix_statusBar-symbolic"_s;
    auto icon = load(bundle, u"fendix_statusBar"_s, HelperImage::statusBarSizes);
    // Every theme falls back on this one.
    const auto file = u"icons/hicolor/symbolic/apps/%1.svg"_s.arg(name);
    if (!QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty())
        icon = QIcon(new NamedIconEngine(icon, name)); // which the icon owns
    icon.setIsMask(true);
    return icon;
}

QIcon HelperIcon::applicationIcon(const Bundle& bundle)
{
    return load(bundle, u"fendix_application"_s, HelperImage::applicationSizes);
}
