#include "host/MenuPointer.h"
#include "host/MenuStage.h"
#include "support/RyTest.h"

#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogButtons.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/automation/RyDialogFields.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "ryhost/commands/ActionSearch.h"
#include "ryhost/commands/HostFiles.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDialog>
#include <QFileInfo>
#include <QPointer>
#include <QTimer>
#include <QTreeView>

/// Every action of the joint editor, chosen from the menu bar with the pointer, its dialogs filled and closed with
/// pointer and keyboard, on two characters: what a script makes of the same scene.
class EveryActionByMouseTest : public QObject, private MenuStage
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        RyMessageLog::global().setEcho(false);
        QVERIFY(openWithTools());
    }
    void cleanupTestCase()
    {
        close();
        RyMessageLog::global().setEcho(true);
    }
    void init() { begin(); }

    void doesWhatTheScriptDoes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("bone");
        QTest::addColumn<QString>("className");
        QStringList actions;
        for (const QString &name : RyActionRunner(m_window->getActionMgr()).names()) {
            if (name.startsWith(QLatin1String("RyJE")))
                actions.append(name);
        }
        QCOMPARE(actions.size(), 35);
        const QString sample = QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
        const QString fox = ryModel(QStringLiteral("Fox.glb"));
        for (const QString &path : {sample, fox}) {
            for (const QString &action : qAsConst(actions)) {
                if (!path.isEmpty())
                    QTest::addRow("%s: %s", qPrintable(QFileInfo(path).baseName()), qPrintable(action))
                        << path << (path == sample ? QStringLiteral("lForearm") : QStringLiteral("b_LeftForeArm_010"))
                        << action;
            }
        }
    }

    void doesWhatTheScriptDoes()
    {
        QFETCH(QString, path);
        QFETCH(QString, bone);
        QFETCH(QString, className);
        QVERIFY(makeScene(path, bone, className));
        const RyAction *action = m_window->getActionMgr()->findAction(className);
        const bool wasChecked = action->isChecked();
        const QString before = rySceneDump(*m_scene);

        m_titles.clear();
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&] {
            const QPointer<QDialog> dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible() || dialog == m_closing)
                return;
            m_closing = dialog;
            m_titles.append(dialog->windowTitle());
            fillAndClose(dialog, className);
            if (dialog && dialog->isVisible()) {
                m_titles.append(QStringLiteral("stayed open"));
                dialog->reject();
            }
        });
        watch.start(50);
        QVERIFY(choose(*action));
        settle();
        watch.stop();
        const QString byMouse = rySceneDump(*m_scene);
        QCOMPARE(action->isChecked(), wasChecked != className.contains(QLatin1String("Toggle")));
        goBack();
        QCOMPARE(rySceneDump(*m_scene), before);

        RyDialogDriver driver;
        for (const auto &[name, value] : fieldsOf(className))
            driver.setField(name, value);
        const RyActionResult result = RyActionRunner(m_window->getActionMgr()).run(className, driver);
        QVERIFY2(ryHasRun(result.outcome), qPrintable(result.reason));
        settle();
        QCOMPARE(action->isChecked(), wasChecked);
        QStringList titles;
        for (const RyDialogRecord &record : driver.records())
            titles.append(record.title);
        QCOMPARE(m_titles, titles);
        QCOMPARE(rySceneDump(*m_scene), byMouse);
        // Options, a bone that has the order, and figures without unused bones.
        const QStringList idle = {QStringLiteral("RyJECustomColorsAction"),
                                  QStringLiteral("RyJERotationOrderXYZAction"),
                                  QStringLiteral("RyJEDeleteUnusedBonesAction")};
        const bool changes = !idle.contains(className) && !className.contains(QLatin1String("Toggle"));
        QCOMPARE(byMouse != before, changes);
    }

private:
    /// A posed figure with joints that lie elsewhere than by default, one of its bones selected, and what the action
    /// needs beside it.
    bool makeScene(const QString &path, const QString &boneName, const QString &className)
    {
        ryUndoStack()->setClean();
        if (!m_window->files()->openPath(path))
            return false;
        RySkeleton *figure = m_scene->getSkeletons().at(0);
        RyBone *bone = figure->findBone(boneName);
        if (!bone || !bone->getNodeParent())
            return false;
        bone->setOrigin(bone->getOrigin() + RyVec3(0.2f, 0.1f, -0.3f));
        bone->setEndPoint(bone->getEndPoint() + RyVec3(0.1f, 0.2f, -0.2f));
        bone->getZRotControl()->setValue(20.0f);
        m_scene->setSelection({bone});
        settle();
        const RyActionRunner runner(m_window->getActionMgr());
        const RyDialogDriver driver;
        if (className == QLatin1String("RyJEConvertPropToFigureAction")) {
            const QString name = figure->getName();
            if (!ryHasRun(runner.run(QStringLiteral("RyJEConvertFigureToPropAction"), driver).outcome))
                return false;
            m_scene->setSelection({m_scene->findNode(name)});
        }
        if (className == QLatin1String("RyJETransferWSRiggingAction")) {
            if (!ryHasRun(runner.run(QStringLiteral("RyJECreateDonorFigureAction"), driver).outcome))
                return false;
            bone->setOrigin(bone->getOrigin() + RyVec3(1, 2, 3));
            m_scene->setSelection({m_scene->getSkeletons().back(), bone});
        }
        ryUndoStack()->clearAll();
        ryRestorePoints()->clear();
        m_selected.clear();
        for (RyNode *node : m_scene->selectedNodeListIterator())
            m_selected.emplace_back(node);
        settle();
        return true;
    }
    /// From the menus; what is in none of them by the search.
    bool choose(const RyAction &action)
    {
        if (MenuPointer(m_pointer).choose(m_window->menuBar(), QLatin1String(action.metaObject()->className())))
            return true;
        ActionSearch *search = m_window->actionSearch();
        m_pointer.click(search, search->rect().center());
        m_pointer.type(search, action.text().section(QLatin1Char(' '), -1).remove(QLatin1Char('.')));
        if (!QTest::qWaitFor([search] { return search->results()->isVisible(); }))
            return false;
        const QAbstractItemModel *rows = search->results()->model();
        if (rows->index(0, 0).data().toString() != action.text())
            return false;
        m_pointer.click(search->results()->viewport(), search->results()->visualRect(rows->index(0, 0)).center());
        return true;
    }
    /// Undo and restore points bring the nodes back that were there, undo alone not which are selected.
    void goBack()
    {
        while (ryUndoStack()->index() > 0)
            ryUndoStack()->undo();
        if (ryRestorePoints()->count() > 0)
            ryRestorePoints()->restore(0);
        std::vector<RyNode *> selection;
        for (const RyRef<RyNode> &node : m_selected)
            selection.push_back(node.get());
        m_scene->setSelection(selection);
        ryRestorePoints()->clear();
        ryUndoStack()->clearAll();
        settle();
    }

    using Fields = std::vector<std::pair<QString, QString>>;
    Fields fieldsOf(const QString &className) const
    {
        if (className == QLatin1String("RyJECreateBoneAction"))
            return {{QStringLiteral("JointEditorCreateBoneNameLEdit"), QStringLiteral("made")},
                    {QStringLiteral("JointEditorCreateBoneLabelLEdit"), QStringLiteral("made anew")}};
        if (className == QLatin1String("RyJERenameNodeAction"))
            return {{QStringLiteral("name"), QStringLiteral("renamed")},
                    {QStringLiteral("label"), QStringLiteral("renamed too")}};
        if (className == QLatin1String("RyJEReparentBoneAction"))
            return {{QStringLiteral("NodeDlgTree"), m_scene->getSkeletons().at(0)->getName()}};
        if (className == QLatin1String("RyJESelectedNodesAttributesEditAction"))
            return {{QStringLiteral("NodeAttributesEditCenterXCbx"), QStringLiteral("true")},
                    {QStringLiteral("NodeAttributesEditCenterXSBox"), QStringLiteral("7")}};
        return {};
    }
    void fillAndClose(QPointer<QDialog> dialog, const QString &className)
    {
        PointerDriver::wait(100);
        for (const auto &[name, value] : fieldsOf(className)) {
            QWidget *field = RyDialogFields::find(dialog, name);
            if (const auto *tree = qobject_cast<const QTreeView *>(field)) {
                const QModelIndex top = tree->model()->index(0, 0);
                m_pointer.click(tree->viewport(), tree->visualRect(top).center());
            } else if (qobject_cast<const QCheckBox *>(field)) {
                m_pointer.click(field, QPoint(8, field->height() / 2));
            } else if (field) {
                m_pointer.click(field, field->rect().center());
                m_pointer.key(field, QStringLiteral("ctrl+a"));
                m_pointer.type(field, value);
            }
        }
        QAbstractButton *button = RyDialogButtons::defaultButton(dialog);
        if (QAbstractButton *accept = RyDialogButtons::acceptButton(dialog))
            button = accept;
        if (button)
            m_pointer.click(button, button->rect().center());
    }

    std::vector<RyRef<RyNode>> m_selected;
    PointerDriver m_pointer;
    QPointer<QDialog> m_closing;
    QStringList m_titles;
};

RY_TEST(EveryActionByMouseTest)
#include "tst_EveryActionByMouse.moc"
