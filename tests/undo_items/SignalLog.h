#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <vector>

/// Writes down the signals of any objects as "name.signal", in the order in which they come.
class SignalLog : public QObject
{
public:
    /// All signals of the object but those that every QObject has.
    void watch(const QString &name, const QObject *object);
    /// What came since the last call.
    QStringList take() { return std::exchange(m_lines, {}); }

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    QStringList m_names; // by slot
    QStringList m_lines;
};
