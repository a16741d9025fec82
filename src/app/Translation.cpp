#include "app/Translation.h"

#include <QCoreApplication>
#include <QLocale>

Translation::Translation(const Bundle& bundle)
{
    const auto languages = QLocale().uiLanguages();
    for (auto language : languages) {
        language.replace(u'-', u'_');
        if (language == u"en" || language.startsWith(u"en_"))
            return; // which the texts are in
        const auto file = bundle.pathForResource(
            QStringLiteral("translations/tavelor_") + language, QStringLiteral("qm"));
        if (file && m_texts.load(*file)) {
            QCoreApplication::installTranslator(&m_texts);
            return;
        }
    }
}
