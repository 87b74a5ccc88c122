#pragma once

#include "rycore/script/prototypes/RyScriptPrototype.h"

/// The restore points in scripts, the newest is 0.
class RyRestoreScripting : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyRestoreScripting(QObject *parent) : RyScriptPrototype(parent) {}

    Q_INVOKABLE int count() const;
    /// The command before which the point was taken; empty for an index out of range.
    Q_INVOKABLE QString caption(int index) const;
    /// False for an index out of range, and within `Undo.step`.
    Q_INVOKABLE bool restore(int index) const;
};
