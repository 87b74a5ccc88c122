#include "EditingStage.h"

#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMouseEvent>
#include <QtTest/QtTest>

constexpr int MostRestorePoints = 60;

EditingStage::EditingStage(const QString &path)
{
    RyAppSettings::setSettingsPath(m_settings.path());
    ryScene()->clear();
    ryUndoStack()->clearAll();
    QString error;
    const bool opened = RySceneFile::open(ryScene(), path, &error);
    QVERIFY2(opened, qPrintable(error));
    m_window = std::make_unique<RyMainWindow>(ryScene());
    QCOMPARE(m_window->loadPlugins(QFileInfo(QStringLiteral(RY_PLUGIN_FILE)).path()), 1);
    m_viewport = new EditingViewport(m_window->getViewportMgr(), m_window.get());
    m_viewport->resize(800, 600);
    m_viewport->frameNodes(false);
    RyViewportMgr *viewports = m_window->getViewportMgr();
    viewports->setActiveTool(viewports->findTool(QStringLiteral("RyJointEditorTool")));
    QVERIFY(viewports->getActiveTool());
    ryRestorePoints()->setMost(MostRestorePoints);
}

EditingStage::~EditingStage()
{
    m_window.reset();
    ryScene()->clear();
    ryUndoStack()->clearAll();
    ryRestorePoints()->setMost(0);
    RyAppSettings::setSettingsPath(QString());
}

QString EditingStage::dump() const
{
    return rySceneDump(*ryScene());
}

std::vector<RyBone *> EditingStage::bones() const
{
    std::vector<RyBone *> bones;
    for (RyNode *node : ryScene()->getNodesInTreeOrder()) {
        if (auto *bone = qobject_cast<RyBone *>(node))
            bones.push_back(bone);
    }
    return bones;
}

void EditingStage::select(const std::vector<RyNode *> &nodes)
{
    ryScene()->setSelection(nodes);
    QCoreApplication::sendPostedEvents();
}

QStringList EditingStage::actionNames() const
{
    return RyActionRunner(m_window->getActionMgr()).names();
}

QString EditingStage::run(const char *action, const Fields &fields, const QHash<QString, QString> &answers)
{
    RyDialogDriver driver;
    for (const auto &[name, value] : fields)
        driver.setField(name, value);
    for (auto answer = answers.constBegin(); answer != answers.constEnd(); ++answer)
        driver.setAnswer(answer.key(), answer.value());
    const RyActionResult result = RyActionRunner(m_window->getActionMgr()).run(QString::fromLatin1(action), driver);
    QCoreApplication::sendPostedEvents();
    return ryHasRun(result.outcome) ? QString() : result.reason;
}

void EditingStage::mouse(QEvent::Type type, const QPoint &point, Qt::MouseButton button, Qt::MouseButtons buttons,
                         Qt::KeyboardModifiers modifiers)
{
    QMouseEvent event(type, point, button, buttons, modifiers);
    QCoreApplication::sendEvent(m_viewport, &event);
}

void EditingStage::drag(int handle, const std::vector<QPoint> &path, Qt::KeyboardModifiers modifiers, bool cancel)
{
    m_viewport->handle = handle;
    mouse(QEvent::MouseMove, path.front(), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    mouse(QEvent::MouseButtonPress, path.front(), Qt::LeftButton, Qt::LeftButton, modifiers);
    for (const QPoint &point : path)
        mouse(QEvent::MouseMove, point, Qt::NoButton, Qt::LeftButton, modifiers);
    if (cancel) {
        mouse(QEvent::MouseButtonPress, path.back(), Qt::RightButton, Qt::LeftButton | Qt::RightButton, modifiers);
        mouse(QEvent::MouseButtonRelease, path.back(), Qt::RightButton, Qt::LeftButton, modifiers);
    }
    mouse(QEvent::MouseButtonRelease, path.back(), Qt::LeftButton, Qt::NoButton, modifiers);
    m_viewport->handle = 0;
}

void EditingStage::controlClick(const QPoint &point)
{
    m_viewport->handle = 0;
    mouse(QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton, Qt::ControlModifier);
    mouse(QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton, Qt::ControlModifier);
}
