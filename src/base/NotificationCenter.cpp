#include "base/NotificationCenter.h"

#include <algorithm>
#include <utility>
#include <vector>

struct NotificationCenter::Registry {
    struct Observation {
        QString name;
        Observer observer; // empty once the observation has ended
    };
    std::vector<std::shared_ptr<Observation>> observations;
};

NotificationCenter::NotificationCenter() : m_registry(std::make_shared<Registry>()) {}

NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

Disposable NotificationCenter::addObserver(const QString& name, Observer observer)
{
    auto observation =
        std::make_shared<Registry::Observation>(Registry::Observation{name, std::move(observer)});
    m_registry->observations.push_back(observation);
    return Disposable([registry = std::weak_ptr(m_registry), observation] {
        observation->observer = nullptr;
        if (const auto alive = registry.lock())
            std::erase(alive->observations, observation);
    });
}

Disposable NotificationCenter::addObserver(const QString& name, std::function<void()> observer)
{
    return addObserver(name, [observer = std::move(observer)](const QVariant&) { observer(); });
}

void NotificationCenter::post(const QString& name, const QVariant& userInformation)
{
    // A copy, because observers may add and remove observations while they run.
    const auto observations = m_registry->observations;
    for (const auto& observation : observations) {
        if (observation->name != name)
            continue;
        // Another copy: an observer that ends its own observation must not free itself.
        if (const auto observer = observation->observer)
            observer(userInformation);
    }
}
