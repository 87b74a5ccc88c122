#pragma once

#include <QMetaMethod>
#include <QStringList>

/// Signatures of the slots that a class itself declares, in their order.
template<typename T>
QStringList slotsOf()
{
    QStringList list;
    const QMetaObject &meta = T::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Slot)
            list.append(QString::fromLatin1(meta.method(i).methodSignature()));
    }
    return list;
}
