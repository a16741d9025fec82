#include "app/Translation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

bool isEnglish(const QString& language)
{
    return language == u"C" || language == u"POSIX" ||
           QLocale(language).language() == QLocale::English;
}

/// As gettext does, also for locales that are not installed: the locale of messages, and before it
/// the list `LANGUAGE`, but not where the locale is "C", which asks for untranslated texts. (Qt's
/// list would have a language without its country only if that country is the language's own.)
QStringList preferredLanguages()
{
    QString locale;
    for (const auto* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (locale.isEmpty())
            locale = qEnvironmentVariable(variable);
    }
    const auto list = qEnvironmentVariable("LANGUAGE").split(u':', Qt::SkipEmptyParts);
    return list.isEmpty() || locale == u"C" || locale == u"POSIX" ? QStringList{locale} : list;
}

/// Names of translations that serve it: its own, that of the country where the language is written
/// so by default (Chinese is written in two ways), and that of the language alone.
QStringList translationsFor(const QString& language)
{
    const QLocale wanted(language);
    const QLocale byScript(wanted.language(), wanted.script(), QLocale::AnyTerritory);
    return {wanted.name(), byScript.name(), wanted.name().section(u'_', 0, 0)};
}

} // namespace

Translation::Translation(const Bundle& bundle)
{
    const auto languages = preferredLanguages();
    for (const auto& language : languages) {
        if (isEnglish(language))
            return; // which the texts are in
        const auto names = translationsFor(language);
        for (const auto& name : names) {
            const auto file = bundle.pathForResource(u"translations/tavelor_"_s + name, u"qm"_s);
            if (file && m_texts.load(*file)) {
                QCoreApplication::installTranslator(&m_texts);
                installToolkitTexts(name);
                return;
            }
        }
    }
}

void Translation::installToolkitTexts(const QString& name)
{
    const auto folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (m_toolkitTexts.load(u"qtbase_"_s + name, folder))
        QCoreApplication::installTranslator(&m_toolkitTexts);
}
