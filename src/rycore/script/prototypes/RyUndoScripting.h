#pragma once

#include "rycore/script/prototypes/RyScriptPrototype.h"

/// The undo history in scripts.
class RyUndoScripting : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyUndoScripting(QObject *parent) : RyScriptPrototype(parent) {}

    /// Calls the function and makes one step of what it changes. When it throws, everything is as it was before, the
    /// undo history too, and the error goes on. Where an action within it clears the history there is no step, but a
    /// restore point. Steps in a step belong to the outermost. Returns what the function returns.
    Q_INVOKABLE QScriptValue step(const QString &caption, const QScriptValue &function) const;
    /// False when there is nothing to undo or redo.
    Q_INVOKABLE bool undo() const;
    Q_INVOKABLE bool redo() const;
    /// All steps, undone ones included; `index()` of them are done.
    Q_INVOKABLE QStringList captions() const;
    Q_INVOKABLE int index() const;
};
