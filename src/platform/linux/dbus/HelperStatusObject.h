#pragma once

#include <QObject>
#include <QString>

/// The object on the session bus.
class HelperStatusObject : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.zemra.tavelor.Helper")
    Q_PROPERTY(QString problem READ problem)

public:
    QString problem() const { return m_problem; }
    void setProblem(const QString& problem) { m_problem = problem; }

private:
    QString m_problem;
};
