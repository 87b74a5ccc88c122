#include "SignalLog.h"

#include <QMetaMethod>

void SignalLog::watch(const QString &name, const QObject *object)
{
    const QMetaObject *meta = object->metaObject();
    const int firstSlot = QObject::staticMetaObject.methodCount();
    for (int i = firstSlot; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() != QMetaMethod::Signal)
            continue;
        // Slots by number, without a meta object that knows them: arguments of any type need no registration.
        QMetaObject::connect(object, i, this, firstSlot + int(m_names.size()), Qt::DirectConnection);
        m_names.append(name + QLatin1Char('.') + QString::fromLatin1(method.name()));
    }
}

int SignalLog::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    id = QObject::qt_metacall(call, id, arguments);
    if (call == QMetaObject::InvokeMetaMethod && id >= 0 && id < m_names.size())
        m_lines.append(m_names[id]);
    return -1;
}
