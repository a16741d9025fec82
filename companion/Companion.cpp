#include "companion/Companion.h"

#include "identity/AppInfo.h"
#include "library/LocalVideoDBManager.h"
#include "platform/DistributedNotificationCenter.h"

#include <cstdio>
#include <utility>

Preferences& Companion::preferences()
{
    if (m_preferences)
        return *m_preferences;
    const auto directory =
        AppInfo::shared().directoryUrl(SearchPathDirectory::Preferences).toLocalFile();
    m_suite = PreferencesSuite::open(AppInfo::applicationGroupIdentifier(), directory);
    if (!m_suite)
        throw CommandError{directory, QStringLiteral("the settings cannot be opened")};
    return m_preferences.emplace(*m_suite);
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
        throw CommandError{QStringLiteral("library"), library().lastErrorMessage()};
    return std::move(*entries);
}

void Companion::announceLibrary()
{
    DistributedNotificationCenter::defaultCenter().post(QStringLiteral("UpdateVideoList"));
}
