#include "identity/GroupPreferences.h"

#include "identity/AppInfo.h"

PreferencesSuite& groupPreferences()
{
    static const auto suite = PreferencesSuite::open(AppInfo::applicationGroupIdentifier(),
        AppInfo::shared().directoryUrl(SearchPathDirectory::Preferences).toLocalFile());
    if (!suite) {
        qFatal("The preferences suite %s cannot be opened.",
            qUtf8Printable(AppInfo::applicationGroupIdentifier()));
    }
    return *suite;
}
