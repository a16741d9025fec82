#pragma once

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QSslServer>
#include <QSslSocket>
#include <QString>

#include <functional>
#include <vector>

/// A request as it arrived.
struct ServiceRequest {
    QByteArray head;
    QByteArray form;
    int function = 0; ///< the form's "f"
    QByteArray text;  ///< the form's "i", deciphered by `openssl`
};

/// The service, small: HTTPS on loopback, one request a connection. It answers the guide (214), the
/// heartbeat (21) and the upgrade check (24), and can be told to do otherwise.
class StandInService : public QObject {
    Q_OBJECT

public:
    /// Answers a request, at once, later, in part or not at all.
    using Behaviour = std::function<void(
        const StandInService& service, QSslSocket& socket, const ServiceRequest& request)>;

    /// The answer to the heartbeat. Its values differ, so that members that are mixed up are seen.
    static const QByteArray heartbeatAnswer;
    /// The same picture in the left panel and as a new feature.
    static const QByteArray guideAnswer;

    /// Presents `certificate.pem` of this directory. Listens on any free port for 0.
    explicit StandInService(const QString& certificateDirectory, quint16 port = 0);

    QString origin() const;
    const std::vector<ServiceRequest>& requests() const { return m_requests; }
    /// Of one function.
    std::vector<ServiceRequest> requests(int function) const;

    /// What it does with every request from now on.
    void setBehaviour(Behaviour behaviour) { m_behaviour = std::move(behaviour); }
    /// The record under "data" in the upgrade check's answer; an empty text for none.
    void setOffer(const QByteArray& json) { m_offer = json; }

    /// Answers as it has to.
    void replyProperly(QSslSocket& socket, const ServiceRequest& request) const;
    /// Ways to keep a client waiting, by their names.
    static QMap<QString, Behaviour> misbehaviours();
    /// Answers everything with this text, enciphered.
    static Behaviour answering(const QByteArray& text);
    /// Sends `body` as an HTTP reply and closes.
    static void reply(QSslSocket& socket,
        const QByteArray& body,
        const QByteArray& status = "200 OK",
        const QByteArray& headers = {});

Q_SIGNALS:
    void requested(const ServiceRequest& request);

private:
    void accept();
    void receive(QSslSocket& socket);

    QSslServer m_server;
    Behaviour m_behaviour;
    QByteArray m_offer;
    std::vector<ServiceRequest> m_requests;
};
