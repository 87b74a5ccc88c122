#include "host/MenuStage.h"
#include "support/RyTest.h"

#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyViewToolAction.h"
#include "rycore/undo/restore/RyRestoreSpan.h"
#include "rycore/viewport/RyViewTool.h"
#include "ryhost/panes/ToolSettingsPane.h"

#include <QAbstractButton>

/// Every action of the program with the joint editor loaded does something.
class HostActionsTest : public QObject, private MenuStage
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(openWithTools()); }
    void cleanupTestCase() { close(); }
    void init() { begin(); }

    void everyActionHasAnEffect_data()
    {
        QTest::addColumn<QString>("className");
        for (const RyAction *action : m_window->getActionMgr()->getActions()) {
            // The sample has no parametric figure; the command's own test has.
            if (action->objectName() != QLatin1String("RyFitZonesToBoneAction"))
                QTest::newRow(action->metaObject()->className())
                    << QString::fromLatin1(action->metaObject()->className());
        }
    }

    void everyActionHasAnEffect()
    {
        QFETCH(QString, className);
        const QString figure = ryScene()->getSkeletons().front()->getName();
        bool isAlive = false;
        for (const QStringList &selected :
             {QStringList{QStringLiteral("lForearm")},
              QStringList{QStringLiteral("lForearm"), QStringLiteral("rForearm")}, QStringList{figure}, QStringList{}})
            isAlive = isAlive || hasEffect(className, selected);
        if (qobject_cast<RyViewToolAction *>(m_window->getActionMgr()->findAction(className))) {
            RyViewportMgr *viewports = m_window->getViewportMgr();
            viewports->setActiveTool(viewports->findTool(QStringLiteral("RySelectTool")));
            m_window->getActionMgr()->findAction(className)->trigger();
            isAlive = viewports->getActiveTool() != viewports->findTool(QStringLiteral("RySelectTool"));
        }
        QVERIFY(isAlive);
    }

private:
    /// Everything that an action may change.
    QString stateOfAll() const
    {
        QStringList state{rySceneDump(*ryScene()), QString::number(ryUndoStack()->count())};
        for (int i = 0; i < ryUndoStack()->count(); ++i)
            state.append(ryUndoStack()->caption(i));
        for (const RyAction *action : m_window->getActionMgr()->getActions())
            state.append(QString::number(action->isChecked()));
        for (const QAbstractButton *button : m_window->toolSettingsPane()->findChildren<QAbstractButton *>())
            state.append(QString::number(button->isChecked()));
        const RyViewTool *tool = m_window->getViewportMgr()->getActiveTool();
        state.append(tool ? tool->objectName() : QString());
        return state.join(QLatin1Char('\n'));
    }
    /// Whether it changes something, opens a dialog or says something; everything is as before afterwards.
    bool hasEffect(const QString &className, const QStringList &selected)
    {
        std::vector<RyNode *> nodes;
        for (const QString &name : selected)
            nodes.push_back(ryScene()->findNode(name));
        ryScene()->setSelection(nodes);
        QCoreApplication::sendPostedEvents();
        RyRestoreSpan span(RyRestoreSpan::Scope::Work, className);
        // Posed and moved, for actions that bring the one into the other.
        RyNode *forearm = ryScene()->findNode(QStringLiteral("lForearm"));
        forearm->getYRotControl()->setValue(20);
        forearm->adjustOrigin(forearm->getOrigin() + RyVec3(0, 2, 0));
        const QString before = stateOfAll();
        const RyDialogDriver driver;
        const RyActionResult result = RyActionRunner(m_window->getActionMgr()).run(className, driver);
        const bool changed = !result.dialogs.empty() || stateOfAll() != before;
        RyViewportMgr *viewports = m_window->getViewportMgr();
        viewports->setActiveTool(viewports->findTool(QStringLiteral("RyJointEditorTool")));
        return span.goBack() && changed;
    }
};

RY_TEST(HostActionsTest)
#include "tst_HostActions.moc"
