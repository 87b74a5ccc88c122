#include "ryhost/menus/EditMenu.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/commands/menuEntries.h"
#include "ryhost/commands/menuText.h"
#include "ryhost/menus/RestoreMenu.h"
#include "ryhost/preferences/PreferencesDialog.h"

#include <QMenu>
#include <QMenuBar>

EditMenu::EditMenu(RyMainWindow *window, QObject *parent)
    : QObject(parent), m_window(window), m_menu(window->menuBar()->addMenu(tr("&Edit")))
{
    m_menu->setObjectName(QStringLiteral("EditMenu"));
    m_undo = addMenuEntry(m_menu, "EditUndo", tr("&Undo"), QString(), QKeySequence::Undo, "undo");
    m_redo =
        addMenuEntry(m_menu, "EditRedo", tr("&Redo"), QString(), QKeySequence(QStringLiteral("Ctrl+Shift+Z")), "redo");
    connect(m_undo, &QAction::triggered, ryUndoStack(), &RyUndoStack::undo);
    connect(m_redo, &QAction::triggered, ryUndoStack(), &RyUndoStack::redo);
    connect(ryUndoStack(), &RyUndoStack::changed, this, &EditMenu::updateUndo);
    updateUndo();
    new RestoreMenu(m_menu, window, this);
    m_menu->addSeparator();
    connect(addMenuEntry(m_menu, "EditSelectNone", tr("Select &None"), tr("Select nothing"),
                         QKeySequence(QStringLiteral("Ctrl+Shift+A"))),
            &QAction::triggered, window->getScene(), [window] { window->getScene()->selectAllNodes(false); });
    connect(addMenuEntry(m_menu, "EditRestorePose", tr("Restore &Pose"), tr("Put every node back into its rest pose")),
            &QAction::triggered, this, &EditMenu::restorePose);
    m_menu->addSeparator();
    m_preferences = m_menu->addSeparator();
    connect(addMenuEntry(m_menu, "EditPreferences", tr("Pre&ferences..."),
                         tr("Choose whether and where unsaved work is kept, for after a crash")),
            &QAction::triggered, this, [window] { PreferencesDialog(window).exec(); });
}

void EditMenu::refresh()
{
    for (const char *name : {"RyBindToNearestBonesAction", "RyFitZonesToBoneAction", "RySymmetricEditingAction"}) {
        if (RyAction *action = m_window->getActionMgr()->findAction(QLatin1String(name)))
            m_menu->insertAction(m_preferences, action);
    }
}

void EditMenu::updateUndo()
{
    const RyUndoStack *stack = ryUndoStack();
    setMenuEntryAvailable(m_undo, stack->canUndo(), tr("There is nothing to undo."), tr("Take the latest edit back"));
    setMenuEntryAvailable(m_redo, stack->canRedo(), tr("There is nothing to redo."),
                          tr("Do again what was taken back"));
    m_undo->setText(stack->canUndo() ? tr("&Undo %1").arg(menuTextOf(stack->undoText())) : tr("&Undo"));
    m_redo->setText(stack->canRedo() ? tr("&Redo %1").arg(menuTextOf(stack->redoText())) : tr("&Redo"));
}

void EditMenu::restorePose()
{
    std::vector<RyNode *> posed;
    for (RyNode *node : m_window->getScene()->getNodes()) {
        if (node->isPosed())
            posed.push_back(node);
    }
    if (posed.empty()) {
        m_window->showMessage(tr("Everything is in its rest pose already."));
        return;
    }
    RyUndoStackHold hold;
    for (RyNode *node : posed)
        node->clearPose();
    hold.accept(tr("Restore Pose"));
}
