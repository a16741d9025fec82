#include "platform/PlayerItem.h"

PlayerItem::PlayerItem(const QUrl& url) : m_url(url) {}

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
