#include "platform/linux/display/x11/X11Display.h"

#include "platform/linux/display/x11/X11CpuPresenter.h"
#include "platform/linux/display/x11/X11DesktopWindow.h"
#include "platform/linux/display/x11/X11Monitors.h"

#include <utility>

using namespace Qt::StringLiterals;

std::unique_ptr<X11Display> X11Display::open()
{
    auto connection = X11Connection::open();
    return connection ? std::make_unique<X11Display>(std::move(connection)) : nullptr;
}

X11Display::X11Display(std::unique_ptr<X11Connection> connection)
    : m_connection(std::move(connection)),
      m_windowManager(*m_connection),
      m_foreignDesktops(*m_connection, m_windowManager),
      m_placements(m_foreignDesktops, m_windowManager),
      m_presses(*m_connection, m_foreignDesktops),
      m_icons(*m_connection, m_foreignDesktops),
      m_occlusion(*m_connection, m_windowManager),
      m_blanking(*m_connection)
{
    connect(m_connection.get(), &X11Connection::lost, this, &DisplayServer::lost);
    connect(
        m_connection.get(), &X11Connection::monitorsChanged, this, &DisplayServer::screensChanged);
    connect(m_connection.get(),
        &X11Connection::rootChildrenChanged,
        this,
        &DisplayServer::trayMayHaveCome);
    connect(m_connection.get(), &X11Connection::rootPropertyChanged, this, [this](quint32 atom) {
        if (atom == m_connection->hints()._NET_CURRENT_DESKTOP)
            Q_EMIT activeSpaceChanged();
    });
    connect(&m_occlusion, &X11Occlusion::changed, this, &DisplayServer::occlusionChanged);
    connect(&m_icons, &X11DesktopIcons::problemChanged, this, &DisplayServer::problemChanged);
    connect(&m_occlusion, &X11Occlusion::windowChanged, this, &FrameOutput::statusChanged);
    connect(&holds(), &Holds::changed, this, [this] { m_icons.setIsPaused(!holds().isEmpty()); });
    const auto holdWhileBlanked = [this] {
        holds().set(Holds::Reason::Blanked, m_blanking.isBlanked());
    };
    connect(&m_blanking, &X11Blanking::changed, this, holdWhileBlanked);
    holdWhileBlanked();
    connect(&m_windowManager, &X11WindowManager::desktopWindowSupportChanged, this, [this] {
        if (std::exchange(m_couldPresent, canPresent()) == m_couldPresent)
            return;
        Q_EMIT problemChanged();
        Q_EMIT presentersChanged();
    });
    m_couldPresent = canPresent();
}

std::vector<Screen> X11Display::screens() const
{
    return X11Monitors::read(*m_connection);
}

bool X11Display::hasTray()
{
    const auto cookie =
        xcb_get_selection_owner(m_connection->get(), m_connection->atom("_NET_SYSTEM_TRAY_S0"));
    const auto reply = own(xcb_get_selection_owner_reply(m_connection->get(), cookie, nullptr));
    return reply && reply->owner != XCB_NONE;
}

bool X11Display::isImpossible() const
{
    return m_windowManager.desktopWindowSupport() ==
           X11WindowManager::DesktopWindowSupport::Impossible;
}

QString X11Display::problem() const
{
    return isImpossible() ? u"This Wayland compositor would show the wallpaper above all windows, "
                            "so it stays hidden."_s
                          : m_icons.problem();
}

bool X11Display::canPresent() const
{
    return !isImpossible();
}

std::unique_ptr<FramePresenter> X11Display::makePresenter()
{
    return std::make_unique<X11CpuPresenter>();
}

QString X11Display::rendererName() const
{
    return canPresent() ? u"CPU, X11"_s : QString();
}

std::unique_ptr<NativeWindow> X11Display::makeWindow(const Screen& screen, const WindowState& wish)
{
    return std::make_unique<X11DesktopWindow>(X11DesktopServices{*m_connection,
                                                  m_windowManager,
                                                  m_foreignDesktops,
                                                  m_placements,
                                                  m_presses,
                                                  m_icons,
                                                  m_occlusion},
        screen,
        wish);
}

void X11Display::flush()
{
    xcb_flush(m_connection->get());
}
