#include "companion/Companion.h"

#include "identity/AppInfo.h"
#include "library/LocalVideoDBManager.h"
#include "platform/DistributedNotificationCenter.h"

#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 2s;

} // namespace

Preferences& Companion::preferences()
{
    if (m_preferences)
        return *m_preferences;
    const auto directory =
        AppInfo::shared().directoryUrl(SearchPathDirectory::Preferences).toLocalFile();
    m_suite = PreferencesSuite::open(AppInfo::applicationGroupIdentifier(), directory);
    if (!m_suite)
        throw CommandError{directory, u"the folder cannot be made"_s};
    // One that somebody is saving reads well soon.
    if (!m_suite->isKnown() && !m_suite->synchronizeWithin(patience))
        throw CommandError{m_suite->path(), m_suite->problem()};
    return m_preferences.emplace(*m_suite);
}

void Companion::storePreferences()
{
    preferences();
    if (!m_suite->synchronizeWithin(patience))
        throw CommandError{m_suite->path(), m_suite->problem()};
}

LibraryEditor& Companion::library()
{
    if (m_library)
        return *m_library;
    auto database = LocalVideoDBManager::makeDatabase(AppInfo::shared(), Bundle::main(), stderr);
    const auto path = database.databasePath();
    m_library.emplace(std::move(database));
    if (m_library->failure())
        throw CommandError{path, *m_library->failure()};
    return *m_library;
}

std::vector<LibraryEditor::Entry> Companion::entries()
{
    auto entries = library().entries();
    if (!entries)
        throw CommandError{u"library"_s, library().lastErrorMessage()};
    return std::move(*entries);
}

void Companion::announceLibrary()
{
    DistributedNotificationCenter::defaultCenter().post(u"UpdateVideoList"_s);
}
