#include "rycore/app/RyMainWindow.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyScriptSteps.h"
#include "rycore/app/addScriptServices.h"
#include "rycore/app/keepClipboard.h"
#include "rycore/base/RyClassFactory.h"
#include "rycore/base/RyPluginManager.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyActionMenu.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QCoreApplication>
#include <QMenu>
#include <QPointer>
#include <QSet>
#include <QStatusBar>
#include <QStatusTipEvent>

namespace {

constexpr int MessageMilliseconds = 6000;

/// Libraries stay loaded until the last widget is gone: texts and classes that came from them lie in their memory.
std::vector<std::unique_ptr<RyPluginManager>> &retiredPlugins()
{
    static std::vector<std::unique_ptr<RyPluginManager>> retired;
    return retired;
}

void retire(std::unique_ptr<RyPluginManager> plugins)
{
    static bool registered = false;
    if (!registered) {
        qAddPostRoutine([] {
            registered = false;
            retiredPlugins().clear();
        });
    }
    registered = true;
    retiredPlugins().push_back(std::move(plugins));
}

} // namespace

struct RyMainWindow::Private
{
    QPointer<RyScene> scene;
    // In this order: what uses the classes of a plug-in goes before the library does.
    std::unique_ptr<RyPluginManager> plugins = std::make_unique<RyPluginManager>();
    std::unique_ptr<RyScriptEngine> scripts = std::make_unique<RyScriptEngine>();
    std::unique_ptr<RyViewportMgr> viewports;
    std::unique_ptr<RyActionMgr> actions;
    QSet<QString> registered;
};

RyMainWindow::RyMainWindow(RyScene *scene, QWidget *parent) : QMainWindow(parent), d(std::make_unique<Private>())
{
    d->scene = scene;
    d->viewports = std::make_unique<RyViewportMgr>(scene);
    d->actions = std::make_unique<RyActionMgr>(d->viewports.get());
    d->scripts->setGlobalScene(scene);
    ryAddScriptServices(d->scripts.get(), d->actions.get(), d->viewports.get());
    if (scene)
        new RyScriptSteps(scene, d->viewports.get(), d->scripts.get(), this);
    connect(d->viewports.get(), &RyViewportMgr::viewportAdded, this, [this](Ry3DViewport *viewport) {
        connect(viewport, &Ry3DViewport::contextMenuRequested, this, &RyMainWindow::showToolMenu);
    });
    if (!RyApp::getInterface())
        RyApp::setInterface(this);
}

RyMainWindow::~RyMainWindow()
{
    unloadPlugins();
    if (RyApp::getInterface() == this)
        RyApp::setInterface(nullptr);
    // Viewports are children of this window and still know their manager.
    for (Ry3DViewport *viewport : std::vector<Ry3DViewport *>(d->viewports->getViewports()))
        delete viewport;
}

RyViewportMgr *RyMainWindow::getViewportMgr() const
{
    return d->viewports.get();
}

RyActionMgr *RyMainWindow::getActionMgr() const
{
    return d->actions.get();
}

RyScriptEngine *RyMainWindow::getScriptEngine() const
{
    return d->scripts.get();
}

RyScene *RyMainWindow::getScene() const
{
    return d->scene;
}

int RyMainWindow::loadPlugins(const QString &folder)
{
    const int loaded = d->plugins->loadFolder(folder);
    std::vector<RyClassFactory *> fresh;
    for (RyClassFactory *factory : d->plugins->factories()) {
        if (d->registered.contains(factory->className()))
            continue;
        d->registered.insert(factory->className());
        fresh.push_back(factory);
    }
    // Tools first: an action may look its tool up when it is made.
    for (RyClassFactory *factory : fresh) {
        if (!factory->metaObject()->inherits(&RyViewTool::staticMetaObject))
            continue;
        if (auto *tool = qobject_cast<RyViewTool *>(factory->createInstance()))
            d->viewports->addTool(tool);
    }
    d->actions->createActions(fresh);
    d->scripts->registerFactories(fresh);
    return loaded;
}

void RyMainWindow::unloadPlugins()
{
    if (!d->plugins)
        return;
    keepClipboard();
    delete findChild<QWidget *>(QStringLiteral("ToolMenu"));
    d->actions->deleteActions();
    d->viewports->deleteTools();
    d->scripts.reset();
    d->plugins->deleteOwnedObjects();
    retire(std::move(d->plugins));
}

void RyMainWindow::showMessage(const QString &message)
{
    statusBar()->showMessage(message, MessageMilliseconds);
}

void RyMainWindow::showStatusTip(const QString &text)
{
    QStatusTipEvent event(text);
    QCoreApplication::sendEvent(this, &event);
}

void RyMainWindow::showToolMenu(const QPoint &globalPosition)
{
    RyViewTool *tool = d->viewports->getActiveTool();
    if (!tool)
        return;
    RyActionMenu model;
    tool->fillToolOptionsMenu(&model);
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("ToolMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setToolTipsVisible(true);
    model.fill(menu);
    // A menu that no other widget opened has nobody to show its status tips.
    connect(menu, &QMenu::hovered, this, [this](const QAction *action) { showStatusTip(action->statusTip()); });
    connect(menu, &QMenu::aboutToHide, this, [this] { showStatusTip(QString()); });
    if (menu->isEmpty()) {
        delete menu;
        return;
    }
    menu->popup(globalPosition);
}
