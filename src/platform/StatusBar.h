#pragma once

#include <QObject>

#include <memory>

/// Whether there is a status bar (a tray, a panel) that shows items. It may come long after this
/// program, or never. Main thread only.
class StatusBar : public QObject {
    Q_OBJECT

public:
    static StatusBar& shared();

    StatusBar();
    ~StatusBar() override;

    /// True from the first moment on at which there was one; one that comes back finds its items
    /// by itself.
    bool isAvailable() const;

Q_SIGNALS:
    /// There is one, for the first time.
    void becameAvailable();

private:
    class Body;
    std::unique_ptr<Body> m_body;
};
