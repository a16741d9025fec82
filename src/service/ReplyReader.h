#pragma once

#include "service/SessionManager.h"

#include <QElapsedTimer>
#include <QNetworkReply>
#include <QObject>
#include <QTimer>

#include <functional>

/// Reads one reply to its end, or to where it is given up, and hands it over. Lives as a child of
/// the reply.
class ReplyReader : public QObject {
    Q_OBJECT

public:
    using Receiver = std::function<void(const SessionManager::Reply& reply)>;

    ReplyReader(QNetworkReply& reply, Receiver receiver);

private:
    void read();
    void finish();
    bool isTooLong() const;
    bool isTooSlow() const;
    SessionManager::Reply result() const;

    QNetworkReply& m_reply;
    Receiver m_receiver;
    QByteArray m_body;
    QTimer m_silence;
    QElapsedTimer m_sinceRequest;
};
