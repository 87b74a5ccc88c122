#include "ScriptStage.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyNode.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "support/RyTest.h"

#include <QTimer>

/// Does for scripts what commands do that undo cannot take back.
class Commands : public QObject
{
    Q_OBJECT
public:
    explicit Commands(RyNode *node) : m_node(node) {}
    Q_INVOKABLE void clearAndHide()
    {
        RyUndoStackLock lock;
        ryUndoStack()->clearAll();
        m_node->setHidden(true);
    }
    Q_INVOKABLE void stop() { RyScriptEngine::current()->stop(QStringLiteral("The script was stopped.")); }

private:
    RyNode *m_node;
};

/// Steps, restore points and the end of running scripts.
class UndoScriptingTest : public QObject, private ScriptStage
{
    Q_OBJECT

    std::unique_ptr<Commands> m_commands;
    RyNode *m_prop = nullptr;

    QString dump() const { return rySceneDump(*m_scene); }
    static QString lastWarning()
    {
        return RyMessageLog::global().warnings().value(RyMessageLog::global().warnings().size() - 1);
    }

private slots:
    void init()
    {
        open();
        m_prop = new RyNode;
        m_prop->setName(QStringLiteral("prop"));
        m_scene->addNode(m_prop);
        m_commands = std::make_unique<Commands>(m_prop);
        m_engine->setGlobal(QStringLiteral("Commands"), m_commands.get());
        run("var prop = Scene.find('prop'); Undo.step('First', function() { prop.setValue('xrot', 10); });");
        QCOMPARE(ryUndoStack()->count(), 1);
    }
    void cleanup()
    {
        close();
        ryRestorePoints()->setMost(0);
    }

    void whatThrowsComesBackWhole_data()
    {
        QTest::addColumn<int>("most");
        QTest::newRow("with restore points") << 20;
        QTest::newRow("without") << 0;
    }

    void whatThrowsComesBackWhole()
    {
        QFETCH(int, most);
        ryRestorePoints()->setMost(most);
        const QString before = dump();
        run("Undo.step('Fails', function() { prop.setValue('yrot', 20); Commands.clearAndHide(); prop.setValue('zrot', "
            "30);"
            " throw new Error('no'); });");
        QVERIFY(m_engine->hasFailed());
        QVERIFY2(lastWarning().contains(QLatin1String("no")), qPrintable(lastWarning()));
        QCOMPARE(dump(), before);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("First"));
        QCOMPARE(ryRestorePoints()->count(), 0);
        ryUndoStack()->undo();
        QCOMPARE(m_prop->getXRotControl()->getValue(), 0.0f);
    }

    void noStepLies()
    {
        ryRestorePoints()->setMost(20);
        const QString before = dump();
        run("Undo.step('Clears', function() { prop.setValue('yrot', 20); Commands.clearAndHide(); "
            "prop.setValue('zrot', 30); });");
        QVERIFY(!m_engine->hasFailed());
        QCOMPARE(m_prop->getZRotControl()->getValue(), 30.0f);
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(run("RestorePoints.count() === 1 && RestorePoints.caption(0) === 'Clears' && RestorePoints.restore(0)")
                    .toBool());
        QCOMPARE(dump(), before);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("First"));
    }

    void restorePointsShowNothingElse()
    {
        QVERIFY(run("RestorePoints.setMost === undefined && RestorePoints.clear === undefined && RestorePoints.take "
                    "=== undefined")
                    .toBool());
        QVERIFY(run("RestorePoints.caption(3) === '' && !RestorePoints.restore(3)").toBool());
    }

    void endlessScriptsCanBeStopped()
    {
        m_engine->setProcessEventsInterval(20);
        QTimer::singleShot(50, m_commands.get(), &Commands::stop);
        const QString before = dump();
        run("Undo.step('Endless', function() { for (var i = 0; ; ++i) prop.setValue('yrot', i % 30); });");
        QVERIFY(m_engine->hasFailed());
        QCOMPARE(lastWarning(), QStringLiteral("test: The script was stopped."));
        QCOMPARE(dump(), before);
        QCOMPARE(ryUndoStack()->count(), 1);
        // The next one runs as if nothing had been.
        m_engine->setProcessEventsInterval(-1);
        QVERIFY(run("var sum = 0; for (var i = 0; i < 5000; ++i) sum += 1; sum === 5000").toBool());
        QVERIFY(!m_engine->hasFailed());
    }

    void stoppingFromWithin()
    {
        run("try { Commands.stop(); for (var i = 0; i < 1e9; ++i) ; } catch (e) {} for (;;) ;");
        QVERIFY(m_engine->hasFailed());
        m_commands->stop(); // nothing runs
        QVERIFY(run("true").toBool());
        QVERIFY(!m_engine->hasFailed());
    }
};

RY_TEST(UndoScriptingTest)
#include "tst_undoScripting.moc"
