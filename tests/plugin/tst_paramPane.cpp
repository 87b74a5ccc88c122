#include "plugin/PluginStage.h"

#include "parametric/ParametricScene.h"

#include <QApplication>
#include <QComboBox>

/// The parameter list of the plug-in's pane in a main window, where the tool hears of the selection by an event.
class ParamPaneTest : public QObject, private PluginStage
{
    Q_OBJECT

    static QStringList &warnings()
    {
        static QStringList list;
        return list;
    }
    static void keepWarning(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        if (type == QtWarningMsg && text.contains(QLatin1String("QObject::")))
            warnings().append(text);
    }

    std::unique_ptr<ParametricScene> m_doll;
    QtMessageHandler m_handler = nullptr;

    QComboBox &params() const
    {
        return *m_tool->getSettingsWidget()->findChild<QComboBox *>(QStringLiteral("JointEditorParameterCmb"));
    }
    bool isShown(const char *name) const
    {
        return m_tool->getSettingsWidget()
            ->findChild<QWidget *>(QString::fromLatin1(name))
            ->isVisibleTo(m_tool->getSettingsWidget());
    }
    RyLegacyJointParam *current() const { return m_tool->property("currentParam").value<RyLegacyJointParam *>(); }
    static void select(RyNode *node)
    {
        ryScene()->setSelection({node});
        QCoreApplication::processEvents();
    }

private slots:
    void init()
    {
        warnings().clear();
        m_handler = qInstallMessageHandler(keepWarning);
        m_doll = std::make_unique<ParametricScene>();
        m_doll->makeUntidy();
        m_doll->makeJoints();
        open();
        m_window->getViewportMgr()->setActiveTool(m_tool);
    }
    void cleanup()
    {
        m_doll.reset();
        close();
        qInstallMessageHandler(m_handler);
    }

    void staysWithTheBones()
    {
        select(m_doll->lHand);
        QVERIFY(!current());
        QVERIFY(isShown("JointEditorCenterEndPanel") && !isShown("JointEditorParamPanel"));
        params().setFocus();
        for (int i = 0; i < 2; ++i)
            QTest::keyClick(&params(), Qt::Key_Down);
        QCOMPARE(current(), m_doll->param(m_doll->lHand, "jointy"));
        QVERIFY(!isShown("JointEditorCenterEndPanel") && isShown("JointEditorParamPanel"));

        // Several changes, one event.
        ryScene()->setSelection({m_doll->chest});
        ryScene()->setSelection({m_doll->rHand});
        QCOMPARE(current(), m_doll->param(m_doll->lHand, "jointy"));
        QCoreApplication::processEvents();
        QCOMPARE(current(), m_doll->param(m_doll->rHand, "jointy"));
        QCOMPARE(params().currentText(), QStringLiteral("jointy [YRot]"));

        m_window->getViewportMgr()->setActiveTool(nullptr);
        QVERIFY(!current());
        QCOMPARE(params().count(), 1);
        QVERIFY(isShown("JointEditorCenterEndPanel") && !isShown("JointEditorParamPanel"));
        select(m_doll->lHand);
        QVERIFY(!current());
        m_window->getViewportMgr()->setActiveTool(m_tool);
        QCOMPARE(params().count(), 6);
        // What was chosen last is remembered.
        QCOMPARE(current(), m_doll->param(m_doll->lHand, "jointy"));
        QCOMPARE(params().currentText(), QStringLiteral("jointy [YRot]"));
        QVERIFY(isShown("JointEditorParamPanel"));
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void theFigureGoes()
    {
        select(m_doll->lHand);
        params().setFocus();
        QTest::keyClick(&params(), Qt::Key_End);
        QVERIFY(current());
        ryScene()->clear();
        QCoreApplication::processEvents();
        QVERIFY(!current());
        QCOMPARE(params().count(), 1);
        QVERIFY(!isShown("JointEditorParamPanel"));
    }

    void everyConnectionIsMade()
    {
        select(m_doll->lHand);
        params().setFocus();
        for (int i = 1; i < params().count(); ++i)
            QTest::keyClick(&params(), Qt::Key_Down);
        QTest::keyClick(&params(), Qt::Key_Home);
        m_window.reset();
        QCOMPARE(warnings(), QStringList());
    }
};

RY_TEST(ParamPaneTest)

#include "tst_paramPane.moc"
