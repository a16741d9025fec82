#include "platform/linux/video/Holds.h"

#include <initializer_list>
#include <utility>

void Holds::set(Reason reason, bool holds)
{
    const auto bit = static_cast<unsigned>(reason);
    const auto reasons = holds ? m_reasons | bit : m_reasons & ~bit;
    if (std::exchange(m_reasons, reasons) != reasons)
        Q_EMIT changed();
}

void Holds::noticePerson()
{
    for (const auto reason : {Reason::SessionLocked, Reason::ScreenSaver})
        set(reason, false);
}
