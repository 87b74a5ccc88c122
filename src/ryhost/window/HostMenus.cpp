#include "ryhost/window/HostMenus.h"

#include "rycore/ui/RyActionMgr.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/commands/ActionSearch.h"
#include "ryhost/commands/menuEntries.h"
#include "ryhost/menus/EditMenu.h"
#include "ryhost/menus/FileMenu.h"
#include "ryhost/menus/ScriptsMenu.h"
#include "ryhost/menus/ToolMenus.h"
#include "ryhost/panes/ClipBar.h"
#include "ryhost/panes/ClipPane.h"
#include "ryhost/panes/ScenePane.h"
#include "ryhost/window/GuideWindow.h"
#include "ryhost/window/HostWindow.h"

#include <QActionGroup>
#include <QDockWidget>
#include <QMenuBar>
#include <QShortcut>
#include <QTreeView>

#include <utility>

namespace {

/// What else people call the commands of the window, for the search over actions.
constexpr struct
{
    const char *command;
    const char *words;
} searchWords[] = {
    {"FileNew", QT_TRANSLATE_NOOP("HostMenus", "empty blank clear scene")},
    {"FileOpen", QT_TRANSLATE_NOOP("HostMenus", "import load")},
    {"FileMerge", QT_TRANSLATE_NOOP("HostMenus", "import append add")},
    {"FileOpenSample", QT_TRANSLATE_NOOP("HostMenus", "mannequin example demo")},
    {"FileRevert", QT_TRANSLATE_NOOP("HostMenus", "reload reopen discard reset")},
    {"FileSaveAs", QT_TRANSLATE_NOOP("HostMenus", "export rename")},
    {"FileSaveCopy", QT_TRANSLATE_NOOP("HostMenus", "duplicate backup version")},
    {"FileExport", QT_TRANSLATE_NOOP("HostMenus", "plain bare clean gltf glb strip")},
    {"FileClose", QT_TRANSLATE_NOOP("HostMenus", "leave empty")},
    {"FileQuit", QT_TRANSLATE_NOOP("HostMenus", "exit leave")},
    {"EditUndo", QT_TRANSLATE_NOOP("HostMenus", "back revert")},
    {"EditRedo", QT_TRANSLATE_NOOP("HostMenus", "repeat again")},
    {"EditSelectNone", QT_TRANSLATE_NOOP("HostMenus", "deselect unselect clear")},
    {"EditRestorePose", QT_TRANSLATE_NOOP("HostMenus", "clear transforms reset rest zero bind pose")},
    {"EditPreferences", QT_TRANSLATE_NOOP("HostMenus", "settings options autosave recovery backup crash")},
    {"ViewFrameSelection", QT_TRANSLATE_NOOP("HostMenus", "focus zoom fit center selected")},
    {"ViewFrameAll", QT_TRANSLATE_NOOP("HostMenus", "home zoom fit everything")},
    {"ViewProjection", QT_TRANSLATE_NOOP("HostMenus", "ortho camera toggle")},
    {"ViewWireframe", QT_TRANSLATE_NOOP("HostMenus", "edges lines topology mesh")},
    {"ViewDark", QT_TRANSLATE_NOOP("HostMenus", "theme style colors colours")},
    {"ViewLight", QT_TRANSLATE_NOOP("HostMenus", "theme style colors colours")},
    {"ViewResetLayout", QT_TRANSLATE_NOOP("HostMenus", "workspace docks panes windows default")},
    {"ClipPlay", QT_TRANSLATE_NOOP("HostMenus", "animation preview run pause motion timeline")},
    {"ClipStop", QT_TRANSLATE_NOOP("HostMenus", "animation stop end pose")},
    {"ClipPreviousFrame", QT_TRANSLATE_NOOP("HostMenus", "animation step back key")},
    {"ClipNextFrame", QT_TRANSLATE_NOOP("HostMenus", "animation step forward key")},
    {"ClipLoop", QT_TRANSLATE_NOOP("HostMenus", "animation repeat cycle")},
    {"HelpGuide", QT_TRANSLATE_NOOP("HostMenus", "manual documentation tutorial")},
    {"HelpSearch", QT_TRANSLATE_NOOP("HostMenus", "find command palette")},
};

} // namespace

HostMenus::HostMenus(HostWindow *window) : QObject(window), m_window(window)
{
    new FileMenu(window, window->files(), this);
    m_edit = new EditMenu(window, this);
    makeViewMenu();
    m_tools = new ToolMenus(window, this);
    new ScriptsMenu(window, this);
    makeHelpMenu();
    for (const auto &[command, words] : searchWords)
        window->findChild<QAction *>(QString::fromLatin1(command))->setProperty("searchWords", tr(words));
    for (QMenu *menu : window->menuBar()->findChildren<QMenu *>())
        menu->setToolTipsVisible(true);
    connect(window->getViewportMgr(), &RyViewportMgr::activeToolChanged, this, &HostMenus::refresh);
    connect(window->getActionMgr(), &RyActionMgr::actionListChanged, this, &HostMenus::refresh);
    refresh();
}

void HostMenus::makeViewMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(tr("&View"));
    menu->setObjectName(QStringLiteral("ViewMenu"));
    Ry3DViewport *viewport = m_window->viewport();
    // The text after the tab shows the viewport's own key.
    connect(addMenuEntry(menu, "ViewFrameSelection", tr("&Frame Selection\tF"), tr("Bring what is selected into view"),
                         QKeySequence(), "frame"),
            &QAction::triggered, viewport, [viewport] { viewport->frameNodes(true); });
    connect(addMenuEntry(menu, "ViewFrameAll", tr("Frame &All\tA"), tr("Bring the whole scene into view")),
            &QAction::triggered, viewport, [viewport] { viewport->frameNodes(false); });
    addKeysOfTheSceneList();
    menu->addSeparator();
    using View = Ry3DViewport::StandardView;
    const auto addView = [&](const char *name, const QString &text, View view, const QString &tip) {
        connect(addMenuEntry(menu, name, text, tip), &QAction::triggered, viewport,
                [viewport, view] { viewport->setStandardView(view); });
    };
    addView("ViewFront", tr("F&ront\tNum 1"), View::Front, tr("Look from the front"));
    addView("ViewSide", tr("&Side\tNum 3"), View::Side, tr("Look from the side"));
    addView("ViewTop", tr("&Top\tNum 7"), View::Top, tr("Look from above"));
    addView("ViewPerspective", tr("&Perspective"), View::Perspective,
            tr("Look from the front and a little aside, in perspective"));
    connect(addMenuEntry(menu, "ViewProjection", tr("Perspective or &Orthographic\tNum 5"),
                         tr("Switch between perspective and parallel projection")),
            &QAction::triggered, viewport, [viewport] {
                RyCameraController controller = viewport->cameraController();
                controller.setOrthographic(!viewport->matrices().isOrthographic());
            });
    menu->addSeparator();
    QAction *wireframe =
        addMenuEntry(menu, "ViewWireframe", tr("&Wireframe"), tr("Draw the edges of all facets over the figure"),
                     QKeySequence(QStringLiteral("Ctrl+W")), "wireframe");
    wireframe->setCheckable(true);
    connect(wireframe, &QAction::toggled, m_window, &HostWindow::setWireframe);
    auto *themes = new QActionGroup(this);
    for (bool dark : {true, false}) {
        QAction *theme =
            addMenuEntry(menu, dark ? "ViewDark" : "ViewLight", dark ? tr("&Dark Look") : tr("&Light Look"),
                         dark ? tr("Bright text on dark panes") : tr("Dark text on bright panes"));
        theme->setCheckable(true);
        theme->setChecked(dark == m_window->isDark());
        themes->addAction(theme);
        connect(theme, &QAction::triggered, m_window, [this, dark] { m_window->setDark(dark); });
    }
    QMenu *clip = menu->addMenu(tr("&Clip"));
    clip->setObjectName(QStringLiteral("ClipMenu"));
    clip->addActions(m_window->scenePane()->clips()->bar()->commands());
    menu->addSeparator();
    for (QDockWidget *dock : m_window->docks()) {
        dock->toggleViewAction()->setStatusTip(tr("Show or hide the pane %1").arg(dock->windowTitle()));
        menu->addAction(dock->toggleViewAction());
    }
    connect(
        addMenuEntry(menu, "ViewResetLayout", tr("Reset La&yout"), tr("Bring all panes back to their first places")),
        &QAction::triggered, m_window, &HostWindow::resetLayout);
}

/// Whoever looks for something there wants to see it; fields for text keep these letters.
void HostMenus::addKeysOfTheSceneList()
{
    for (const auto &[key, command] :
         {std::pair(Qt::Key_F, "ViewFrameSelection"), std::pair(Qt::Key_A, "ViewFrameAll")})
        connect(new QShortcut(QKeySequence(key), m_window->scenePane()->tree(), nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, m_window->findChild<QAction *>(QString::fromLatin1(command)), &QAction::trigger);
}

void HostMenus::makeHelpMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(tr("&Help"));
    menu->setObjectName(QStringLiteral("HelpMenu"));
    connect(
        addMenuEntry(menu, "HelpGuide", tr("&Guide"), tr("Read how the program is used"), QKeySequence::HelpContents),
        &QAction::triggered, m_window, [this] { GuideWindow::open(m_window); });
    QAction *search = addMenuEntry(menu, "HelpSearch", tr("&Search Actions"), tr("Find any command by its name"),
                                   QKeySequence(), "search");
    search->setShortcuts({QKeySequence(Qt::Key_F3), QKeySequence(QStringLiteral("Ctrl+Shift+P"))});
    connect(search, &QAction::triggered, m_window, [this] { m_window->actionSearch()->begin(); });
}

void HostMenus::refresh()
{
    m_edit->refresh();
    m_tools->refresh();
}
