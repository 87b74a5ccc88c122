#include "rycore/script/prototypes/RyUndoScripting.h"

#include "rycore/script/RyScriptEngine.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

QScriptValue RyUndoScripting::step(const QString &caption, const QScriptValue &function) const
{
    if (!function.isFunction()) {
        fail(tr("Undo.step takes a caption and a function."));
        return {};
    }
    QScriptEngine *scripts = engine(); // known only until the call
    const auto *host = qobject_cast<const RyScriptEngine *>(scripts);
    RyRestoreSpan span(RyRestoreSpan::Scope::Work, caption);
    RyUndoStackHold hold;
    const QScriptValue result = QScriptValue(function).call();
    if (scripts->hasUncaughtException() || (host && host->isStopping())) {
        hold.cancel();
        if (span.isNeeded())
            span.goBack();
    } else if (span.hasLostSteps()) {
        // A step of what came after would lie: undoing it leads to no state that there was.
        hold.forget();
    } else {
        hold.accept(caption);
    }
    return result;
}

bool RyUndoScripting::undo() const
{
    RyUndoStack *stack = ryUndoStack();
    const bool can = stack && stack->canUndo();
    if (can)
        stack->undo();
    return can;
}

bool RyUndoScripting::redo() const
{
    RyUndoStack *stack = ryUndoStack();
    const bool can = stack && stack->canRedo();
    if (can)
        stack->redo();
    return can;
}

QStringList RyUndoScripting::captions() const
{
    const RyUndoStack *stack = ryUndoStack();
    QStringList captions;
    for (int i = 0; stack && i < stack->count(); ++i)
        captions.append(stack->caption(i));
    return captions;
}

int RyUndoScripting::index() const
{
    const RyUndoStack *stack = ryUndoStack();
    return stack ? stack->index() : 0;
}
