#include "ui/WindowController.h"

#include "platform/Bundle.h"
#include "ui/UiLoader.h"

#include <QCursor>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>

#include <utility>

WindowController::WindowController(QString nibName) : m_nibName(std::move(nibName)) {}

WindowController::~WindowController()
{
    close();
}

void WindowController::loadWindow()
{
    if (m_window)
        return;
    const auto path = Bundle::main().pathForResource(m_nibName, QStringLiteral("ui"));
    if (!path)
        qFatal("The resources lack the interface file %s.ui.", qUtf8Printable(m_nibName));
    QFile file(*path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s: %s.", qUtf8Printable(*path), qUtf8Printable(file.errorString()));
    QString error;
    m_window.reset(UiLoader::loadInterface(file, &error).release());
    if (!m_window)
        qFatal("Cannot read %s: %s", qUtf8Printable(*path), qUtf8Printable(error));
    windowDidLoad();
}

QWidget& WindowController::window()
{
    loadWindow();
    return *m_window;
}

void WindowController::showWindow()
{
    auto& shown = window();
    shown.hide(); // or it would stay on the virtual desktop where it was shown before
    shown.setWindowState(shown.windowState() & ~Qt::WindowMinimized);
    shown.adjustSize();
    auto* const screen = QGuiApplication::screenAt(QCursor::pos());
    const auto place = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    shown.move(place.center() - shown.rect().center());
    shown.show();
    shown.raise();
    shown.activateWindow();
}

void WindowController::close()
{
    if (m_window)
        m_window->close();
}

QObject* WindowController::find(const char* name)
{
    const auto objectName = QString::fromLatin1(name);
    auto& root = window();
    return root.objectName() == objectName ? &root : root.findChild<QObject*>(objectName);
}

void WindowController::failOnOutlet(const char* name, const char* className) const
{
    qFatal(
        "The interface file %s.ui has no %s \"%s\".", qUtf8Printable(m_nibName), className, name);
}
