#pragma once

#include "platform/Bundle.h"

#include <QTranslator>

/// The program's texts, and the toolkit's, in the first of the person's languages that there are
/// translations for, or that is English, while it lives. To be made before any text is asked for.
class Translation {
public:
    explicit Translation(const Bundle& bundle);

private:
    void installToolkitTexts(const QString& name);

    QTranslator m_texts;
    QTranslator m_toolkitTexts; ///< of the context menus of texts
};
