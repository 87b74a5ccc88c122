#include "host/MenuPointer.h"
#include "host/MenuStage.h"
#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/ScriptRun.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

/// Commands on the rigging of whole figures, chosen from the menu bar and filled in with the pointer and the keyboard:
/// what a script makes of the same scene, whatever the tool does to points that are edited by hand.
class RiggingByMouseTest : public QObject, private MenuStage
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
        setOptions(false);
        close();
        RyMessageLog::global().setEcho(true);
    }
    void init() { begin(); }

    void doesWhatTheScriptDoes_data()
    {
        QTest::addColumn<QString>("className");
        QTest::addColumn<QString>("fields");
        QTest::addColumn<bool>("withOptions");
        for (const bool withOptions : {false, true}) {
            const auto row = [withOptions](const char *className, const char *fields = "{}") {
                QTest::addRow("%s, options %s", className, withOptions ? "on" : "off")
                    << className << fields << withOptions;
            };
            row("RyJEMirrorAction", "{'JointEditorMirrorNodesCmb': 'Root Recursive', 'JointEditorMirrorDirectionCmb': "
                                    "'Right to Left', 'JointEditorMirrorRightPrefixLEdit': 'r;right'}");
            row("RyJETransferWSRiggingAction");
            row("RyJECreateDonorFigureAction");
            row("RyJERestoreNodeRiggingPropertiesAction");
            row("RyJERestoreFigureRiggingPropertiesAction");
        }
    }

    void doesWhatTheScriptDoes()
    {
        QFETCH(QString, className);
        QFETCH(QString, fields);
        QFETCH(bool, withOptions);
        QVERIFY(makeScene());
        QVERIFY(setOptions(withOptions));
        const QString before = rySceneDump(*m_scene);

        QTimer watch;
        bool isFilled = false;
        connect(&watch, &QTimer::timeout, this, [&] {
            const QPointer<QDialog> dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            watch.stop();
            isFilled = fillMirrorDialog(dialog);
            if (dialog && dialog->isVisible())
                dialog->reject();
        });
        watch.start(50);
        QVERIFY(chooseFromMenus(className));
        watch.stop();
        QCOMPARE(isFilled, className == QLatin1String("RyJEMirrorAction"));
        const QString byMouse = rySceneDump(*m_scene);
        QVERIFY(byMouse != before);
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(*m_scene), before);

        QVERIFY(runScript(
            QStringLiteral("if (!Actions.run('%1', %2).ran) throw new Error('refused');").arg(className, fields)));
        QCOMPARE(rySceneDump(*m_scene), byMouse);
        // Placed as a whole: nothing is carried along, snapped or aligned.
        const QString &wanted = *m_wanted.insert(className, m_wanted.value(className, byMouse));
        QCOMPARE(byMouse, wanted);
    }

private:
    /// Two figures, moved, turned, scaled and posed, whose joints differ from their defaults and from side to side. A
    /// bone of the first one and, last, one of the second are selected.
    bool makeScene()
    {
        ryUndoStack()->setClean();
        if (!m_window->files()->openSample() ||
            !m_window->files()->mergePath(QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb")))
            return false;
        float amount = 1.0f;
        for (RySkeleton *figure : m_scene->getSkeletons()) {
            figure->getXTransControl()->setValue(90.0f * amount);
            figure->getYRotControl()->setValue(25.0f * amount);
            figure->getScaleControl()->setValue(1.0f + 0.25f * amount);
            int i = 0;
            for (RyBone *bone : figure->getAllBones()) {
                const float step = amount * float(++i % 5);
                bone->setOrigin(bone->getOrigin() + RyVec3(0.2f * step, -0.3f, 0.1f * step));
                bone->setEndPoint(bone->getEndPoint() + RyVec3(0.1f, 0.2f * step, -0.2f));
                bone->setOrientation(bone->getOrientation() * RyQuat({1, step, 2}, 0.05f * step));
                bone->getZRotControl()->setValue(3.0f * step);
            }
            amount = -0.6f;
        }
        const std::vector<RySkeleton *> figures = m_scene->getSkeletons();
        if (figures.size() != 2)
            return false;
        m_scene->setSelection(
            {figures[0]->findBone(QStringLiteral("rHand")), figures[1]->findBone(QStringLiteral("lShin"))});
        ryUndoStack()->clearAll();
        settle();
        return true;
    }
    bool setOptions(bool onOff)
    {
        for (const char *name : {"RyJETogglePropagateTranslationAction", "RyJEToggleAutoSnapEndPointsAction",
                                 "RyJEToggleAutoAlignNodeAction"}) {
            RyAction *option = m_window->getActionMgr()->findAction(QString::fromLatin1(name));
            if (option && option->isChecked() != onOff)
                option->trigger();
            if (!option || option->isChecked() != onOff)
                return false;
        }
        return true;
    }

    bool chooseFromMenus(const QString &className)
    {
        const bool isChosen = MenuPointer(m_pointer).choose(m_window->menuBar(), className);
        settle();
        return isChosen;
    }

    bool fillMirrorDialog(QPointer<QDialog> dialog)
    {
        PointerDriver::wait(100);
        auto *ok = dialog->findChild<QPushButton *>(QStringLiteral("BasicDialogOkBtn"));
        auto *field = dialog->findChild<QLineEdit *>(QStringLiteral("JointEditorMirrorRightPrefixLEdit"));
        if (!pick(dialog, "JointEditorMirrorNodesCmb", QStringLiteral("Root Recursive")) ||
            !pick(dialog, "JointEditorMirrorDirectionCmb", QStringLiteral("Right to Left")))
            return false;
        m_pointer.click(field, field->rect().center());
        m_pointer.key(field, QStringLiteral("ctrl+a"));
        m_pointer.type(field, QStringLiteral("r;right"));
        if (field->text() != QLatin1String("r;right"))
            return false;
        m_pointer.click(ok, ok->rect().center());
        return !dialog || !dialog->isVisible();
    }
    /// Opens the list of a field and clicks at an item.
    bool pick(const QDialog *dialog, const char *name, const QString &text)
    {
        auto *field = dialog->findChild<QComboBox *>(QString::fromLatin1(name));
        m_pointer.click(field, field->rect().center());
        QAbstractItemView *list = field->view();
        if (!QTest::qWaitFor([list] { return list->isVisible(); }))
            return false;
        PointerDriver::wait(QApplication::doubleClickInterval()); // a release that comes sooner is ignored
        const QModelIndex index = list->model()->index(field->findText(text), 0);
        m_pointer.moveTo(list->viewport(), list->visualRect(index).center() - QPoint(3, 0));
        m_pointer.click(list->viewport(), list->visualRect(index).center());
        return field->currentText() == text;
    }
    bool runScript(const QString &program)
    {
        QFile script(file(QStringLiteral("test.rsx")));
        if (!script.open(QIODevice::WriteOnly) || script.write(program.toUtf8()) < 0)
            return false;
        script.close();
        return ScriptRun(m_window.get()).run(script.fileName());
    }

    PointerDriver m_pointer;
    QHash<QString, QString> m_wanted;
};

RY_TEST(RiggingByMouseTest)
#include "tst_RiggingByMouse.moc"
