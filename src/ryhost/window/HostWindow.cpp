#include "ryhost/window/HostWindow.h"

#include "rycore/app/RyApp.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RySelectTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/commands/ActionSearch.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/look/HostIcons.h"
#include "ryhost/look/HostTheme.h"
#include "ryhost/look/WheelGuard.h"
#include "ryhost/panes/ClipPane.h"
#include "ryhost/panes/HistoryPane.h"
#include "ryhost/panes/ParametersPane.h"
#include "ryhost/panes/ScenePane.h"
#include "ryhost/panes/ToolSettingsPane.h"
#include "ryhost/panes/UnsavedButton.h"
#include "ryhost/start/HostPlugins.h"
#include "ryhost/window/DialogPlaces.h"
#include "ryhost/window/HostMenus.h"
#include "ryhost/window/ToolStrip.h"
#include "ryhost/window/WindowFit.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QStatusBar>
#include <QTimer>
#include <QTreeView>
#include <QUrl>

namespace {

const char *const SettingsGroup = "Window";
const char *const JointEditorTool = "RyJointEditorTool";
constexpr QSize LeastViewport(400, 300);
constexpr int MostUndoWidth = 420; // of the names of the steps in the status bar
constexpr int DropPause = 200;     // milliseconds

/// What takes back the last thing that was done: undo, or where a command came after the last step and left a restore
/// point, going back to that. Empty where nothing does.
QString wayBack()
{
    const RyUndoStack &stack = *ryUndoStack();
    const RyRestorePoints *points = ryRestorePoints();
    const bool hasStep = stack.index() > 0;
    if (points && points->count() > 0 && (!hasStep || points->time(0) >= stack.time(stack.index() - 1)))
        return points->text(0);
    return stack.canUndo() ? HostWindow::tr("undo: %1").arg(stack.undoText()) : QString();
}

} // namespace

HostWindow::HostWindow(RyScene *scene, QWidget *parent)
    : RyMainWindow(scene, parent), m_files(new HostFiles(scene, this))
{
    setObjectName(QStringLiteral("HostWindow"));
    qApp->installEventFilter(new WheelGuard(this));
    new WindowFit(this);
    setAcceptDrops(true);
    setDockOptions(AnimatedDocks | AllowNestedDocks | AllowTabbedDocks);
    m_dark = RyAppSettings(QString::fromLatin1(SettingsGroup)).getBoolValue(QStringLiteral("Dark"), true);
    HostTheme::apply(m_dark);
    setWindowIcon(HostIcons::icon(QStringLiteral("app")));
    getViewportMgr()->addTool(new RySelectTool);

    makePanes();
    makeStatusBar();
    startPlugins();
    makeViewport(); // last of what is large, so that GL is being loaded while the rest is made
    layOutPanes();
    m_menus = new HostMenus(this);
    m_search = new ActionSearch(this);
    menuBar()->setCornerWidget(m_search, Qt::TopRightCorner);

    connect(m_files, &HostFiles::titleChanged, this, &HostWindow::updateTitle);
    connect(m_files, &HostFiles::pathChanged, this, &HostWindow::updateStatus);
    connect(m_files, &HostFiles::opened, this, &HostWindow::fileOpened);
    connect(m_files, &HostFiles::messagePosted, this, &HostWindow::showMessage);
    connect(ryUndoStack(), &RyUndoStack::cleanChanged, this, &HostWindow::updateTitle);
    connect(ryUndoStack(), &RyUndoStack::changed, this, &HostWindow::updateStatus);
    if (RyRestorePoints *points = ryRestorePoints())
        connect(points, &RyRestorePoints::changed, this, &HostWindow::updateStatus);
    connect(scene, &RyScene::primarySelectionChanged, this, &HostWindow::updateStatus);
    resize(1440, 900);
    m_firstLayout = saveState();
    restoreLayout();
    updateTitle();
    updateStatus();
}

HostWindow::~HostWindow()
{
    disconnect(getViewportMgr(), nullptr, this, nullptr);
    disconnect(ryUndoStack(), nullptr, this, nullptr);
    if (RyRestorePoints *points = ryRestorePoints())
        disconnect(points, nullptr, this, nullptr);
    disconnect(getScene(), nullptr, this, nullptr);
    // What shows actions, tools and panes of the plug-ins goes before they do.
    m_toolSettingsPane->showTool(nullptr);
    delete m_toolStrip;
    delete m_menus;
    unloadPlugins();
}

void HostWindow::startPlugins()
{
    RyViewportMgr *viewports = getViewportMgr();
    connect(viewports, &RyViewportMgr::activeToolChanged, this, [this](RyViewTool *tool) {
        m_toolSettingsPane->showTool(tool);
        if (tool)
            connect(tool, &RyViewTool::statusTextChanged, this, &HostWindow::updateStatus, Qt::UniqueConnection);
        updateStatus();
    });
    loadHostPlugins(*this);
    RyViewTool *tool = viewports->findTool(QString::fromLatin1(JointEditorTool));
    viewports->setActiveTool(tool ? tool : viewports->findTool(QStringLiteral("RySelectTool")));
}

void HostWindow::addDock(const QString &title, const QString &objectName, QWidget *content)
{
    auto *dock = new QDockWidget(title, this);
    dock->setObjectName(objectName);
    dock->setWidget(content);
    // One that stands behind another would be shown without being seen.
    connect(dock->toggleViewAction(), &QAction::triggered, dock, [dock](bool isShown) {
        if (isShown)
            dock->raise();
    });
    m_docks.append(dock);
}

void HostWindow::makeViewport()
{
    m_viewport = new Ry3DViewport(getViewportMgr(), this);
    m_viewport->setObjectName(QStringLiteral("Viewport"));
    m_viewport->setMinimumSize(LeastViewport);
    m_viewport->setRenderOptions(HostTheme::viewportOptions(m_dark, m_viewport->renderOptions()));
    setCentralWidget(m_viewport);
    new DialogPlaces(this, m_viewport);
    m_viewport->setFocus(); // its keys work at once; the panes were made before it
}

void HostWindow::makePanes()
{
    m_scenePane = new ScenePane(getScene());
    m_parametersPane = new ParametersPane(getScene());
    m_toolSettingsPane = new ToolSettingsPane;
    connect(m_parametersPane, &ParametersPane::messagePosted, this, &HostWindow::showMessage);
    connect(m_scenePane->clips(), &ClipPane::messagePosted, this, &HostWindow::showMessage);
    m_historyPane = new HistoryPane(m_files);
    connect(m_historyPane, &HistoryPane::messagePosted, this, &HostWindow::showMessage);
    addDock(tr("Scene"), QStringLiteral("SceneDock"), m_scenePane);
    addDock(tr("Parameters"), QStringLiteral("ParametersDock"), m_parametersPane);
    addDock(tr("Tool Settings"), QStringLiteral("ToolSettingsDock"), m_toolSettingsPane);
    addDock(tr("History"), QStringLiteral("HistoryDock"), m_historyPane);
    m_toolStrip = new ToolStrip(getViewportMgr(), this);
}

void HostWindow::layOutPanes()
{
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    QDockWidget *const scene = m_docks.at(0);
    QDockWidget *const parameters = m_docks.at(1);
    QDockWidget *const settings = m_docks.at(2);
    QDockWidget *const history = m_docks.at(3);
    for (QDockWidget *dock : {scene, parameters, history})
        addDockWidget(Qt::LeftDockWidgetArea, dock);
    addDockWidget(Qt::RightDockWidgetArea, settings);
    splitDockWidget(scene, parameters, Qt::Vertical);
    tabifyDockWidget(scene, history);
    history->hide();
    resizeDocks({scene, parameters}, {430, 330}, Qt::Vertical);
    resizeDocks({scene, settings}, {300, 350}, Qt::Horizontal);
    addToolBar(Qt::LeftToolBarArea, m_toolStrip);
}

void HostWindow::makeStatusBar()
{
    m_status = new QLabel(this);
    m_undoStatus = new QLabel(this);
    m_unitStatus = new QLabel(this);
    m_status->setObjectName(QStringLiteral("StatusText"));
    m_undoStatus->setObjectName(QStringLiteral("UndoStatus"));
    m_unitStatus->setObjectName(QStringLiteral("UnitStatus"));
    m_unitStatus->setToolTip(tr("How many centimetres one unit of the file is"));
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_undoStatus->setContentsMargins(12, 0, 12, 0);
    m_unitStatus->setContentsMargins(0, 0, 8, 0);
    statusBar()->addWidget(m_status, 1);
    auto *unsaved = new UnsavedButton(m_files, this);
    connect(unsaved, &QToolButton::clicked, this, &HostWindow::showHistory);
    statusBar()->addPermanentWidget(unsaved);
    statusBar()->addPermanentWidget(m_undoStatus);
    statusBar()->addPermanentWidget(m_unitStatus);
}

void HostWindow::updateTitle()
{
    // As long as it is in no file.
    const bool isRecovered = m_files->file().savedState().kind == SavedState::Recovered;
    setWindowTitle((isRecovered ? tr("%1 (recovered)[*] - ryhost") : tr("%1[*] - ryhost"))
                       .arg(m_files->title().replace(QLatin1String("[*]"), QLatin1String("[*][*]"))));
    setWindowModified(!ryUndoStack()->isClean());
    m_unitStatus->setText(m_files->description());
}

void HostWindow::updateStatus()
{
    const RyViewTool *tool = getViewportMgr()->getActiveTool();
    QString text = tool ? tool->getStatusText() : QString();
    if (getScene()->getNodes().empty()) {
        text = tr("The scene is empty. Open a file, drop one here, or start with File > Open Sample Figure.");
    } else if (text.isEmpty() && tool) {
        const RyNode *node = getScene()->getPrimarySelection();
        text = !node ? tr("Click a part of the figure, or a name in the scene list, to see its joint and place it.")
                     : tr("%1: drag a handle to change its joint; Alt+drag or middle drag turns the view, the wheel "
                          "zooms, F frames it.")
                           .arg(qobject_cast<const RyLegacyFigure *>(node)
                                    ? tr("%1, a parametric figure").arg(node->getLabel())
                                    : node->getLabel());
    }
    m_status->setText(text);
    const RyUndoStack *stack = ryUndoStack();
    QStringList steps;
    if (const QString back = wayBack(); !back.isEmpty())
        steps.append(back);
    if (stack->canRedo())
        steps.append(tr("redo: %1").arg(stack->redoText()));
    const QString undo = steps.join(QStringLiteral("   "));
    m_undoStatus->setText(m_undoStatus->fontMetrics().elidedText(undo, Qt::ElideMiddle, MostUndoWidth));
    setWindowModified(!stack->isClean());
}

void HostWindow::fileOpened()
{
    updateTitle();
    m_viewport->frameNodes(false);
    // The joint tool shows the bones of what is selected: let a new figure show its bones at once.
    const std::vector<RySkeleton *> figures = getScene()->getSkeletons();
    if (!getScene()->getPrimarySelection() && !figures.empty())
        figures.front()->select(true);
    m_viewport->update();
}

void HostWindow::setDark(bool dark)
{
    m_dark = dark;
    HostTheme::apply(dark);
    m_viewport->setRenderOptions(HostTheme::viewportOptions(dark, m_viewport->renderOptions()));
    RyAppSettings(QString::fromLatin1(SettingsGroup)).setBoolValue(QStringLiteral("Dark"), dark);
}

void HostWindow::setWireframe(bool onOff)
{
    RyRenderOptions options = m_viewport->renderOptions();
    options.wireframe = onOff;
    m_viewport->setRenderOptions(options);
}

void HostWindow::showHistory()
{
    auto *dock = findChild<QDockWidget *>(QStringLiteral("HistoryDock"));
    dock->show();
    dock->raise();
    m_historyPane->list()->setFocus();
}

void HostWindow::saveLayout()
{
    RyAppSettings settings(QString::fromLatin1(SettingsGroup));
    settings.setBytesValue(QStringLiteral("Geometry"), saveGeometry());
    settings.setBytesValue(QStringLiteral("State"), saveState());
}

void HostWindow::restoreLayout()
{
    const RyAppSettings settings(QString::fromLatin1(SettingsGroup));
    if (settings.contains(QStringLiteral("Geometry")))
        restoreGeometry(settings.getBytesValue(QStringLiteral("Geometry")));
    if (settings.contains(QStringLiteral("State")))
        restoreState(settings.getBytesValue(QStringLiteral("State")));
}

void HostWindow::resetLayout()
{
    restoreState(m_firstLayout);
}

void HostWindow::closeEvent(QCloseEvent *event)
{
    if (!m_files->confirmDiscard()) {
        event->ignore();
        return;
    }
    saveLayout();
    event->accept();
}

void HostWindow::dragEnterEvent(QDragEnterEvent *event)
{
    for (const QUrl &url : event->mimeData()->urls()) {
        if (url.isLocalFile() && HostFiles::isReadable(url.toLocalFile())) {
            event->acceptProposedAction();
            return;
        }
    }
}

void HostWindow::dropEvent(QDropEvent *event)
{
    QStringList paths;
    for (const QUrl &url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    event->acceptProposedAction();
    // The other program may wait until this returns, and reading takes as long as it takes.
    if (!paths.isEmpty())
        QMetaObject::invokeMethod(
            this, [this, paths] { openDropped(paths); }, Qt::QueuedConnection);
}

void HostWindow::openDropped(QStringList paths)
{
    if (m_isOpening) { // the next drop came before this one was asked about or read
        QTimer::singleShot(DropPause, this, [this, paths] { openDropped(paths); });
        return;
    }
    const QScopedValueRollback<bool> opening(m_isOpening, true);
    if (!m_files->openPathAsking(paths.takeFirst()))
        return;
    for (const QString &path : paths)
        m_files->mergePath(path);
}
