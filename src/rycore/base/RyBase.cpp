#include "rycore/base/RyBase.h"

#include "rycore/undo/RyValueChange.h"

#include <QPointer>

struct RyBase::NameValue : RyValueOf<RyBase, QString>
{
    static QString get(const RyBase &base) { return base.getName(); }
    static void put(RyBase &base, const QString &name) { base.applyName(name); }
};

void RyBase::setName(const QString &name)
{
    if (name == getName())
        return;
    RyValueChange<NameValue>::record(this);
    applyName(name);
}

void RyBase::applyName(const QString &name)
{
    if (name == getName())
        return;
    const QPointer<RyBase> guard(this);
    setObjectName(name);
    emit nameChanged(name);
    if (guard)
        nameHasChanged();
}
