#include "platform/Workspace.h"

#include "platform/linux/x11/X11Connection.h"

Workspace& Workspace::shared()
{
    static Workspace workspace;
    return workspace;
}

Workspace::Workspace()
{
    auto* const x11 = X11Connection::shared();
    if (!x11)
        return;
    connect(x11, &X11Connection::rootPropertyChanged, this, [this, x11](quint32 atom) {
        if (atom == x11->atom("_NET_CURRENT_DESKTOP"))
            Q_EMIT activeSpaceDidChange();
    });
}

Workspace::~Workspace() = default;
