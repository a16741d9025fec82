#pragma once

#include "platform/HelperStatus.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>

/// What the display and the player know about what is seen.
struct DisplayFacts {
    bool canShow = false;
    QString problem; ///< as a sentence; empty for none
    QString hold;    ///< the state while nobody can see the pictures; empty while somebody can
    QMap<QString, QString> monitors;
    QString renderer;
    QString decoder;
    quint64 framesShown = 0;
    quint64 framesDropped = 0;
};

/// The object on the session bus. Changes are told once a turn of the main loop, but for the counts
/// of frames, which change all the time.
class HelperStatusObject : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.zemra.tavelor.Helper")
    Q_PROPERTY(QString state READ state)
    Q_PROPERTY(QString reason READ reason)
    Q_PROPERTY(QString problem READ problem)
    Q_PROPERTY(QString sign READ sign)
    Q_PROPERTY(QString title READ title)
    Q_PROPERTY(QMap<QString, QString> monitors READ monitors)
    Q_PROPERTY(QString renderer READ renderer)
    Q_PROPERTY(QString decoder READ decoder)
    Q_PROPERTY(qulonglong framesShown READ framesShown)
    Q_PROPERTY(qulonglong framesDropped READ framesDropped)
    Q_PROPERTY(QString version READ version)

public:
    static HelperStatusObject& shared();

    HelperStatusObject();

    /// Who knows. It is asked for each answer.
    void setDisplayFacts(std::function<DisplayFacts()> facts);
    void setIntent(const HelperStatus::Intent& intent);
    /// Something may be different.
    void update() { m_update.start(); }

    QString state() const { return report().state; }
    QString reason() const { return report().reason; }
    QString problem() const { return report().problem; }
    QString sign() const { return report().sign; }
    QString title() const { return report().title; }
    QMap<QString, QString> monitors() const { return report().monitors; }
    QString renderer() const { return report().renderer; }
    QString decoder() const { return report().decoder; }
    qulonglong framesShown() const { return report().framesShown; }
    qulonglong framesDropped() const { return report().framesDropped; }
    QString version() const { return report().version; }

private:
    HelperStatus::Report report() const;
    void tellChanges();

    std::function<DisplayFacts()> m_facts;
    HelperStatus::Intent m_intent;
    HelperStatus::Report m_told;
    QTimer m_update;
};
