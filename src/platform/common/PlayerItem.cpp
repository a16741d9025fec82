#include "platform/PlayerItem.h"

#include <utility>

PlayerItem::PlayerItem(QUrl url) : m_url(std::move(url)) {}

QString PlayerItem::didPlayToEndTimeNotification()
{
    return QStringLiteral("PlayerItemDidPlayToEndTime");
}

void PlayerItem::seekToZero()
{
    Q_EMIT seekToZeroRequested();
}

void PlayerItem::setStatus(Status status)
{
    if (m_status == status)
        return;
    m_status = status;
    Q_EMIT statusChanged(status);
}
