#include "ui/UiLoader.h"

#include "ui/ButtonWithHoverBackGround.h"
#include "ui/CheckMarkView.h"
#include "ui/HeadingLabel.h"
#include "ui/InfoTextView.h"
#include "ui/UpgradeWindow.h"

#include <QCoreApplication>
#include <QHash>
#include <QLayout>

namespace {

template <class Widget>
QWidget* make(QWidget* parent)
{
    return new Widget(parent);
}

const QHash<QString, QWidget* (*)(QWidget*)>& customClasses()
{
    static const QHash<QString, QWidget* (*)(QWidget*)> classes{
        {QStringLiteral("ButtonWithPointCursor"), make<ButtonWithPointCursor>},
        {QStringLiteral("ButtonWithHoverBackGround"), make<ButtonWithHoverBackGround>},
        {QStringLiteral("CheckMarkView"), make<CheckMarkView>},
        {QStringLiteral("HeadingLabel"), make<HeadingLabel>},
        {QStringLiteral("InfoTextView"), make<InfoTextView>},
        {QStringLiteral("UpgradeWindow"), make<UpgradeWindow>},
    };
    return classes;
}

} // namespace

std::unique_ptr<QWidget> UiLoader::loadInterface(QIODevice& device, QString* error)
{
    const auto libraryPaths = QCoreApplication::libraryPaths();
    // The base class loads all of Qt Designer's plugins that are installed, and with them
    // libraries much larger than this program, unless it finds none.
    QCoreApplication::setLibraryPaths({});
    UiLoader loader;
    QCoreApplication::setLibraryPaths(libraryPaths);

    std::unique_ptr<QWidget> window(loader.load(&device));
    if (!window) {
        if (error)
            *error = loader.errorString();
        return nullptr;
    }
    // Buttons follow the pointer in the place that they have now.
    window->ensurePolished();
    if (auto* layout = window->layout())
        layout->activate();
    for (auto* button : window->findChildren<ButtonWithPointCursor*>())
        button->awakeFromNib();
    if (auto* button = qobject_cast<ButtonWithPointCursor*>(window.get()))
        button->awakeFromNib();
    return window;
}

QWidget* UiLoader::createWidget(const QString& className, QWidget* parent, const QString& name)
{
    const auto make = customClasses().value(className);
    if (!make)
        return QUiLoader::createWidget(className, parent, name);
    auto* widget = make(parent);
    widget->setObjectName(name);
    return widget;
}
