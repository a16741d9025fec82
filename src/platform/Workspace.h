#pragma once

#include <QObject>

/// What the desktop session tells every program.
class Workspace : public QObject {
    Q_OBJECT

public:
    static Workspace& shared();

    Workspace();
    ~Workspace() override;

Q_SIGNALS:
    /// Another space (virtual desktop) is shown now.
    void activeSpaceDidChange();
};
