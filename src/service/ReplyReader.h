#pragma once

#include "service/SessionManager.h"

#include <QNetworkReply>
#include <QObject>
#include <QTimer>

/// Reads one reply to its end and hands it over. Lives as a child of the reply.
class ReplyReader : public QObject {
    Q_OBJECT

public:
    ReplyReader(QNetworkReply& reply, SessionManager::Completion completion);

private:
    void read();
    void finish();
    std::optional<QByteArray> result() const;

    QNetworkReply& m_reply;
    SessionManager::Completion m_completion;
    QByteArray m_body;
    QTimer m_deadline;
};
