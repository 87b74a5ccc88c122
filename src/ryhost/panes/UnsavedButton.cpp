#include "ryhost/panes/UnsavedButton.h"

#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/unsavedChanges.h"

UnsavedButton::UnsavedButton(HostFiles *files, QWidget *parent) : QToolButton(parent), m_files(files)
{
    setObjectName(QStringLiteral("UnsavedStatus"));
    setAccessibleName(tr("Unsaved changes"));
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    // As high without a text as with one: a status bar that becomes higher shows all that it has, also what makes way
    // for a message.
    setText(tr("* %1").arg(QString()));
    const RyUndoStack *stack = ryUndoStack();
    connect(stack, &RyUndoStack::changed, this, &UnsavedButton::refresh);
    connect(stack, &RyUndoStack::cleanChanged, this, &UnsavedButton::refresh);
    connect(files, &HostFiles::titleChanged, this, &UnsavedButton::refresh);
    refresh();
}

void UnsavedButton::refresh()
{
    const QString changes = m_files->file().unsavedChanges();
    setVisible(!changes.isEmpty());
    if (changes.isEmpty())
        return;
    setText(tr("* %1").arg(unsavedCountText(*ryUndoStack(), m_files->file().savedState())));
    setToolTip(tr("%1\nClick to see the history.").arg(changes));
    setStatusTip(changes);
    setAccessibleDescription(changes);
}
