#include "ryhost/window/HostMenus.h"

#include "rycore/app/RyApp.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyMenu.h"
#include "rycore/ui/RyViewToolAction.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/commands/ActionSearch.h"
#include "ryhost/commands/ScriptRun.h"
#include "ryhost/commands/menuText.h"
#include "ryhost/files/HostFiles.h"
#include "ryhost/look/HostIcons.h"
#include "ryhost/menus/RestoreMenu.h"
#include "ryhost/window/GuideWindow.h"
#include "ryhost/window/HostWindow.h"

#include <QActionGroup>
#include <QDir>
#include <QDirIterator>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>

namespace {

/// What else people call the commands of the window, for the search over actions.
constexpr struct
{
    const char *command;
    const char *words;
} searchWords[] = {
    {"FileOpen", QT_TRANSLATE_NOOP("HostMenus", "import load")},
    {"FileMerge", QT_TRANSLATE_NOOP("HostMenus", "import append add")},
    {"FileSaveAs", QT_TRANSLATE_NOOP("HostMenus", "export copy")},
    {"FileQuit", QT_TRANSLATE_NOOP("HostMenus", "exit close leave")},
    {"EditUndo", QT_TRANSLATE_NOOP("HostMenus", "back revert")},
    {"EditRedo", QT_TRANSLATE_NOOP("HostMenus", "repeat again")},
    {"EditSelectNone", QT_TRANSLATE_NOOP("HostMenus", "deselect unselect clear")},
    {"EditRestorePose", QT_TRANSLATE_NOOP("HostMenus", "clear transforms reset rest zero bind pose")},
    {"ViewFrameSelection", QT_TRANSLATE_NOOP("HostMenus", "focus zoom fit center selected")},
    {"ViewFrameAll", QT_TRANSLATE_NOOP("HostMenus", "home zoom fit everything")},
    {"ViewProjection", QT_TRANSLATE_NOOP("HostMenus", "ortho camera toggle")},
    {"ViewWireframe", QT_TRANSLATE_NOOP("HostMenus", "edges lines topology mesh")},
    {"ViewDark", QT_TRANSLATE_NOOP("HostMenus", "theme style colors colours")},
    {"ViewLight", QT_TRANSLATE_NOOP("HostMenus", "theme style colors colours")},
    {"ViewResetLayout", QT_TRANSLATE_NOOP("HostMenus", "workspace docks panes windows default")},
    {"HelpGuide", QT_TRANSLATE_NOOP("HostMenus", "manual documentation tutorial")},
    {"HelpSearch", QT_TRANSLATE_NOOP("HostMenus", "find command palette")},
};

/// Enables or disables an entry; a disabled one says why.
void setAvailable(QAction *action, bool onOff, const QString &reason, const QString &tip)
{
    action->setEnabled(onOff);
    action->setProperty("unavailableReason", onOff ? QString() : reason);
    action->setStatusTip(onOff ? tip : reason);
    action->setToolTip(onOff ? tip : reason);
}

} // namespace

HostMenus::HostMenus(HostWindow *window) : QObject(window), m_window(window)
{
    makeFileMenu();
    makeEditMenu();
    makeViewMenu();
    m_tools = window->menuBar()->addMenu(tr("&Tools"));
    m_tools->setObjectName(QStringLiteral("ToolsMenu"));
    m_toolCommands = new RyMenu(QString(), m_tools);
    m_toolCommands->setObjectName(QStringLiteral("ToolCommandsMenu"));
    m_toolMenu = new RyMenu(QString(), window->menuBar());
    m_toolMenu->setObjectName(QStringLiteral("ActiveToolMenu"));
    window->menuBar()->addMenu(m_toolMenu);
    m_scripts = window->menuBar()->addMenu(tr("&Scripts"));
    m_scripts->setObjectName(QStringLiteral("ScriptsMenu"));
    connect(m_scripts, &QMenu::aboutToShow, this, &HostMenus::fillScripts);
    makeHelpMenu();
    for (const auto &[command, words] : searchWords)
        window->findChild<QAction *>(QString::fromLatin1(command))->setProperty("searchWords", tr(words));
    for (QMenu *menu : window->menuBar()->findChildren<QMenu *>())
        menu->setToolTipsVisible(true);
    connect(window->getViewportMgr(), &RyViewportMgr::activeToolChanged, this, &HostMenus::refresh);
    connect(window->getActionMgr(), &RyActionMgr::actionListChanged, this, &HostMenus::refresh);
    refresh();
    fillScripts();
}

QAction *HostMenus::add(QMenu *menu, const QString &objectName, const QString &text, const QString &icon,
                        const QKeySequence &keys, const QString &tip)
{
    QAction *action = menu->addAction(text);
    action->setObjectName(objectName);
    action->setShortcut(keys);
    action->setStatusTip(tip);
    if (!icon.isEmpty()) {
        action->setIcon(HostIcons::icon(icon));
        m_icons.insert(action, icon);
    }
    return action;
}

void HostMenus::makeFileMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(tr("&File"));
    menu->setObjectName(QStringLiteral("FileMenu"));
    HostFiles *files = m_window->files();
    connect(add(menu, QStringLiteral("FileOpen"), tr("&Open..."), QStringLiteral("open"), QKeySequence::Open,
                tr("Open a character or a prop in place of this scene")),
            &QAction::triggered, files, &HostFiles::openWithDialog);
    m_recent = menu->addMenu(tr("Open &Recent"));
    m_recent->setObjectName(QStringLiteral("RecentMenu"));
    connect(m_recent, &QMenu::aboutToShow, this, &HostMenus::fillRecent);
    connect(files, &HostFiles::recentChanged, this, &HostMenus::fillRecent);
    fillRecent();
    connect(add(menu, QStringLiteral("FileMerge"), tr("&Merge..."), QString(), QKeySequence(),
                tr("Add the contents of another file to this scene")),
            &QAction::triggered, files, &HostFiles::mergeWithDialog);
    menu->addSeparator();
    connect(add(menu, QStringLiteral("FileSave"), tr("&Save"), QStringLiteral("save"), QKeySequence::Save,
                tr("Save to the file that was opened")),
            &QAction::triggered, files, [files] { files->save(); });
    connect(add(menu, QStringLiteral("FileSaveAs"), tr("Save &As..."), QString(),
                QKeySequence(QStringLiteral("Ctrl+Shift+S")), tr("Save to another file")),
            &QAction::triggered, files, [files] { files->saveAs(); });
    menu->addSeparator();
    connect(add(menu, QStringLiteral("FileQuit"), tr("&Quit"), QString(), QKeySequence(QStringLiteral("Ctrl+Q")),
                tr("Close the window; unsaved changes are asked about")),
            &QAction::triggered, m_window, &QWidget::close);
}

void HostMenus::fillRecent()
{
    m_recent->clear();
    const QStringList files = m_window->files()->recentFiles();
    for (const QString &path : files) {
        QAction *action = m_recent->addAction(menuTextOf(QFileInfo(path).fileName()));
        setAvailable(action, QFileInfo::exists(path),
                     tr("%1 is not there any more.").arg(QDir::toNativeSeparators(path)),
                     QDir::toNativeSeparators(path));
        // Queued: opening fills this menu anew, and the action would be gone while it is triggered.
        connect(
            action, &QAction::triggered, this, [this, path] { m_window->files()->openPathAsking(path); },
            Qt::QueuedConnection);
    }
    setAvailable(m_recent->menuAction(), !files.isEmpty(), tr("No file has been opened or saved yet."),
                 tr("Open one of the latest files in place of this scene"));
    if (files.isEmpty())
        return;
    m_recent->addSeparator();
    QAction *clear = m_recent->addAction(tr("Clear List"));
    clear->setStatusTip(tr("Forget which files have been opened; the files stay"));
    connect(clear, &QAction::triggered, m_window->files(), &HostFiles::clearRecent, Qt::QueuedConnection);
}

void HostMenus::makeEditMenu()
{
    QMenu *menu = m_edit = m_window->menuBar()->addMenu(tr("&Edit"));
    menu->setObjectName(QStringLiteral("EditMenu"));
    m_undo = add(menu, QStringLiteral("EditUndo"), tr("&Undo"), QStringLiteral("undo"), QKeySequence::Undo, QString());
    m_redo = add(menu, QStringLiteral("EditRedo"), tr("&Redo"), QStringLiteral("redo"),
                 QKeySequence(QStringLiteral("Ctrl+Shift+Z")), QString());
    connect(m_undo, &QAction::triggered, ryUndoStack(), &RyUndoStack::undo);
    connect(m_redo, &QAction::triggered, ryUndoStack(), &RyUndoStack::redo);
    connect(ryUndoStack(), &RyUndoStack::changed, this, &HostMenus::updateUndo);
    updateUndo();
    new RestoreMenu(menu, m_window, this);
    menu->addSeparator();
    connect(add(menu, QStringLiteral("EditSelectNone"), tr("Select &None"), QString(),
                QKeySequence(QStringLiteral("Ctrl+Shift+A")), tr("Select nothing")),
            &QAction::triggered, m_window->getScene(), [this] { m_window->getScene()->selectAllNodes(false); });
    connect(add(menu, QStringLiteral("EditRestorePose"), tr("Restore &Pose"), QString(), QKeySequence(),
                tr("Put every node back into its rest pose")),
            &QAction::triggered, this, &HostMenus::restorePose);
    menu->addSeparator();
}

void HostMenus::updateUndo()
{
    const RyUndoStack *stack = ryUndoStack();
    setAvailable(m_undo, stack->canUndo(), tr("There is nothing to undo."), tr("Take the latest edit back"));
    setAvailable(m_redo, stack->canRedo(), tr("There is nothing to redo."), tr("Do again what was taken back"));
    m_undo->setText(stack->canUndo() ? tr("&Undo %1").arg(menuTextOf(stack->undoText())) : tr("&Undo"));
    m_redo->setText(stack->canRedo() ? tr("&Redo %1").arg(menuTextOf(stack->redoText())) : tr("&Redo"));
}

void HostMenus::restorePose()
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

void HostMenus::makeViewMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(tr("&View"));
    menu->setObjectName(QStringLiteral("ViewMenu"));
    Ry3DViewport *viewport = m_window->viewport();
    // The text after the tab shows the viewport's own key.
    connect(add(menu, QStringLiteral("ViewFrameSelection"), tr("&Frame Selection\tF"), QStringLiteral("frame"),
                QKeySequence(), tr("Bring what is selected into view")),
            &QAction::triggered, viewport, [viewport] { viewport->frameNodes(true); });
    connect(add(menu, QStringLiteral("ViewFrameAll"), tr("Frame &All\tA"), QString(), QKeySequence(),
                tr("Bring the whole scene into view")),
            &QAction::triggered, viewport, [viewport] { viewport->frameNodes(false); });
    menu->addSeparator();
    using View = Ry3DViewport::StandardView;
    const auto addView = [&](const char *name, const QString &text, View view, const QString &tip) {
        connect(add(menu, QString::fromLatin1(name), text, QString(), QKeySequence(), tip), &QAction::triggered,
                viewport, [viewport, view] { viewport->setStandardView(view); });
    };
    addView("ViewFront", tr("F&ront\tNum 1"), View::Front, tr("Look from the front"));
    addView("ViewSide", tr("&Side\tNum 3"), View::Side, tr("Look from the side"));
    addView("ViewTop", tr("&Top\tNum 7"), View::Top, tr("Look from above"));
    addView("ViewPerspective", tr("&Perspective"), View::Perspective,
            tr("Look from the front and a little aside, in perspective"));
    connect(add(menu, QStringLiteral("ViewProjection"), tr("Perspective or &Orthographic\tNum 5"), QString(),
                QKeySequence(), tr("Switch between perspective and parallel projection")),
            &QAction::triggered, viewport, [viewport] {
                RyCameraController controller = viewport->cameraController();
                controller.setOrthographic(!viewport->matrices().isOrthographic());
            });
    menu->addSeparator();
    QAction *wireframe =
        add(menu, QStringLiteral("ViewWireframe"), tr("&Wireframe"), QStringLiteral("wireframe"),
            QKeySequence(QStringLiteral("Ctrl+W")), tr("Draw the edges of all facets over the figure"));
    wireframe->setCheckable(true);
    connect(wireframe, &QAction::toggled, m_window, &HostWindow::setWireframe);
    auto *themes = new QActionGroup(this);
    for (bool dark : {true, false}) {
        QAction *theme = add(menu, dark ? QStringLiteral("ViewDark") : QStringLiteral("ViewLight"),
                             dark ? tr("&Dark Look") : tr("&Light Look"), QString(), QKeySequence(),
                             dark ? tr("Bright text on dark panes") : tr("Dark text on bright panes"));
        theme->setCheckable(true);
        theme->setChecked(dark == m_window->isDark());
        themes->addAction(theme);
        connect(theme, &QAction::triggered, m_window, [this, dark] { m_window->setDark(dark); });
    }
    menu->addSeparator();
    for (QDockWidget *dock : m_window->docks()) {
        dock->toggleViewAction()->setStatusTip(tr("Show or hide the pane %1").arg(dock->windowTitle()));
        menu->addAction(dock->toggleViewAction());
    }
    connect(add(menu, QStringLiteral("ViewResetLayout"), tr("Reset La&yout"), QString(), QKeySequence(),
                tr("Bring all panes back to their first places")),
            &QAction::triggered, m_window, &HostWindow::resetLayout);
}

void HostMenus::makeHelpMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(tr("&Help"));
    menu->setObjectName(QStringLiteral("HelpMenu"));
    connect(add(menu, QStringLiteral("HelpGuide"), tr("&Guide"), QString(), QKeySequence::HelpContents,
                tr("Read how the program is used")),
            &QAction::triggered, this, &HostMenus::showGuide);
    QAction *search = add(menu, QStringLiteral("HelpSearch"), tr("&Search Actions"), QStringLiteral("search"),
                          QKeySequence(), tr("Find any command by its name"));
    search->setShortcuts({QKeySequence(Qt::Key_F3), QKeySequence(QStringLiteral("Ctrl+Shift+P"))});
    connect(search, &QAction::triggered, m_window, [this] { m_window->actionSearch()->begin(); });
}

void HostMenus::showGuide()
{
    GuideWindow::open(m_window);
}

void HostMenus::refresh()
{
    // The host's own actions come with the plug-ins and go with them.
    if (RyAction *bind = m_window->getActionMgr()->findAction(QStringLiteral("RyBindToNearestBonesAction")))
        m_edit->addAction(bind);
    fillTools();
    fillToolMenus();
}

void HostMenus::refreshIcons()
{
    for (auto it = m_icons.constBegin(); it != m_icons.constEnd(); ++it)
        it.key()->setIcon(HostIcons::icon(it.value()));
}

void HostMenus::fillTools()
{
    m_tools->clear();
    QStringList withAction;
    for (RyAction *action : m_window->getActionMgr()->getActions()) {
        if (auto *toolAction = qobject_cast<RyViewToolAction *>(action)) {
            withAction.append(toolAction->getToolClassName());
            m_tools->addAction(toolAction);
        }
    }
    RyViewportMgr *viewports = m_window->getViewportMgr();
    for (RyViewTool *tool : viewports->getTools()) {
        if (withAction.contains(QString::fromLatin1(tool->metaObject()->className())))
            continue;
        QAction *action = m_tools->addAction(menuTextOf(tool->objectName()));
        action->setStatusTip(tr("Work with the tool %1").arg(tool->objectName()));
        action->setCheckable(true);
        action->setChecked(tool == viewports->getActiveTool());
        const QString className = QString::fromLatin1(tool->metaObject()->className());
        connect(
            action, &QAction::triggered, this,
            [this, className] {
                RyViewportMgr *manager = m_window->getViewportMgr();
                manager->setActiveTool(manager->findTool(className));
            },
            Qt::QueuedConnection);
    }
    m_tools->addSeparator();
    m_tools->addMenu(m_toolCommands);
}

void HostMenus::fillToolMenus()
{
    RyViewTool *tool = m_window->getViewportMgr()->getActiveTool();
    for (RyMenu *menu : {m_toolMenu, m_toolCommands}) {
        menu->clear();
        if (tool)
            tool->addToolMenuItems(menu);
        menu->menuAction()->setVisible(!menu->isEmpty());
    }
    m_toolMenu->setTitle(QString());
    if (tool) {
        m_toolMenu->setTitle(menuTextOf(tool->objectName(), m_window->menuBar()->actions()));
        m_toolCommands->setTitle(tr("%1 &Commands").arg(menuTextOf(tool->objectName())));
    }
}

void HostMenus::fillScripts()
{
    m_scripts->clear();
    QAction *choose = m_scripts->addAction(tr("&Run Script..."));
    choose->setStatusTip(tr("Run a script file"));
    connect(choose, &QAction::triggered, this, [this] {
        const QString path =
            QFileDialog::getOpenFileName(m_window, tr("Run Script"), RyApp::getHomePath(), tr("Scripts (*.rsx)"));
        if (!path.isEmpty())
            ScriptRun(m_window).run(path);
    });
    QStringList paths;
    QDirIterator walk(RyApp::getHomePath() + QStringLiteral("/scripts"), {QStringLiteral("*.rsx")}, QDir::Files,
                      QDirIterator::Subdirectories);
    while (walk.hasNext())
        paths.append(walk.next());
    paths.sort();
    if (!paths.isEmpty())
        m_scripts->addSeparator();
    for (const QString &path : paths) {
        QAction *action = m_scripts->addAction(menuTextOf(QFileInfo(path).completeBaseName()));
        action->setStatusTip(tr("Run %1; Escape stops it").arg(QDir::toNativeSeparators(path)));
        connect(action, &QAction::triggered, this, [this, path] { ScriptRun(m_window).run(path); });
    }
}
