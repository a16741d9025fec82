#pragma once

#include "base/Disposable.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <memory>

/// Notifications by name inside this process. Posting calls the observers of that name one after
/// the other, in the order in which they came, before it returns. Main thread only.
///
/// An observer may come or go while a notification is being delivered: one that has gone is not
/// called any more, one that has come is called from the next notification on.
class NotificationCenter {
public:
    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    static NotificationCenter& defaultCenter();

    /// Gets what the poster says of the event, an invalid variant where it says nothing.
    using Observer = std::function<void(const QVariant& userInformation)>;

    /// The observation ends with the token; tokens may outlive the centre.
    [[nodiscard]] Disposable addObserver(const QString& name, Observer observer);
    /// For an observer that the event alone is enough for.
    [[nodiscard]] Disposable addObserver(const QString& name, std::function<void()> observer);
    void post(const QString& name, const QVariant& userInformation = {});

private:
    struct Registry;
    std::shared_ptr<Registry> m_registry; // shared so that a late token finds it gone, not freed
};
