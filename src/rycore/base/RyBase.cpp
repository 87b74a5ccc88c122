#include "rycore/base/RyBase.h"

#include "rycore/undo/RyUndoItem.h"
#include "rycore/undo/RyUndoStack.h"

#include <QPointer>

#include <utility>

static const char nameAspect = 0;

class RyBaseNameChange : public RyUndoItem
{
public:
    explicit RyBaseNameChange(RyBase *base) : m_base(base), m_key(keyOf(base)), m_name(base->getName()) {}

    static RyUndoKey keyOf(const RyBase *base) { return {base, quintptr(&nameAspect)}; }
    RyUndoKey key() const override { return m_key; }
    bool isAlive() const override { return m_base; }
    void swap() override
    {
        if (m_base)
            m_base->applyName(std::exchange(m_name, m_base->getName()));
    }

private:
    QPointer<RyBase> m_base;
    RyUndoKey m_key;
    QString m_name;
};

void RyBase::setName(const QString &name)
{
    if (name == getName())
        return;
    if (RyUndoStack *stack = ryUndoStack())
        stack->record<RyBaseNameChange>(RyBaseNameChange::keyOf(this), this);
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
