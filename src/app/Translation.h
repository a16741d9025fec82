#pragma once

#include "platform/Bundle.h"

#include <QTranslator>

/// The program's texts in the first of the user's languages that there are translations for, or
/// that is English, while it lives. To be made before any text is asked for.
class Translation {
public:
    explicit Translation(const Bundle& bundle);

private:
    QTranslator m_texts;
};
