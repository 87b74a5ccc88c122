#pragma once

#include <QMetaMethod>
#include <QObject>
#include <QStringList>

/// The names of all signals that an object emits, those of its base classes too (QObject's own left out), in order. It
/// needs to know none of the types that the signals carry.
class RySignalLog : public QObject
{
    Q_OBJECT
public:
    explicit RySignalLog(const QObject &emitter)
    {
        const QMetaObject *meta = emitter.metaObject();
        const int slot = metaObject()->indexOfSlot("note()");
        for (int i = QObject::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                QMetaObject::connect(&emitter, i, this, slot);
        }
    }
    /// What was emitted since the last call.
    QStringList take()
    {
        const QStringList taken = m_names;
        m_names.clear();
        return taken;
    }

public slots:
    void note() { m_names.append(QString::fromLatin1(sender()->metaObject()->method(senderSignalIndex()).name())); }

private:
    QStringList m_names;
};
