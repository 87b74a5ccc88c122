#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/ScriptRun.h"

#include <QKeyEvent>
#include <QMenu>
#include <QStatusBar>
#include <QTimer>

/// Scripts that a person starts at the window.
class ScriptRunTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void initTestCase() { RyMessageLog::global().setEcho(false); }
    void cleanupTestCase() { RyMessageLog::global().setEcho(true); }
    void init()
    {
        QVERIFY(open());
        m_before = rySceneDump(*m_scene);
    }
    void cleanup() { close(); }

    void allOfItCanBeTakenBack()
    {
        RyDialogDriver driver;
        QVERIFY(run("Scene.find('hip').setValue('yrot', 20);\nUndo.step('Bend', function() { "
                    "Scene.find('head').setValue('xrot', 5); });\n"
                    "Scene.find('hip').setValue('zrot', 20); Scene.setSelection(['head']);"));
        QVERIFY(driver.records().empty());
        QCOMPARE(ryRestorePoints()->captions(), QStringList(QStringLiteral("Run test")));
        QVERIFY(rySceneDump(*m_scene) != m_before);
        latest()->trigger();
        QCOMPARE(rySceneDump(*m_scene), m_before);
        QVERIFY(run("Undo.step('Bend', function() { Scene.find('head').setValue('xrot', 5); });"));
        QCOMPARE(ryRestorePoints()->count(), 1); // the way back alone
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Bend"));
    }

    void escapeStopsIt()
    {
        QTimer::singleShot(0, this, [this] {
            // Nothing else gets through.
            QCoreApplication::sendEvent(m_window.get(), std::make_unique<QEvent>(QEvent::Close).get());
            for (const int key : {Qt::Key_Q, Qt::Key_Escape}) {
                QKeyEvent press(QEvent::KeyPress, key, key == Qt::Key_Q ? Qt::ControlModifier : Qt::NoModifier);
                QCoreApplication::sendEvent(m_window.get(), &press);
            }
        });
        QVERIFY(!run("for (var i = 0; ; ++i) Scene.find('hip').setValue('yrot', 1 + i % 20);"));
        QVERIFY(m_window->isVisible());
        QCOMPARE(m_window->statusBar()->currentMessage(),
                 QStringLiteral("The script was stopped. Edit > Restore to before Run test takes back what it did."));
        latest()->trigger();
        QCOMPARE(rySceneDump(*m_scene), m_before);
        QVERIFY(run("1;"));
    }

    void whatFailsSaysWhere()
    {
        RyDialogDriver driver;
        QVERIFY(!run("Scene.find('hip').setValue('yrot', 20);\n\nmissing();"));
        QCOMPARE(driver.records().size(), size_t(1));
        const RyDialogRecord box = driver.records().front();
        QCOMPARE(box.title, QStringLiteral("Script Failed"));
        for (const char *words :
             {"test.rsx(3): ", "missing", "Edit > Restore to before Run test takes back what it did."})
            QVERIFY2(box.plainText().contains(QLatin1String(words)), qPrintable(box.plainText()));
        QVERIFY(!ScriptRun(m_window.get()).run(file(QStringLiteral("none.rsx"))));
        QVERIFY2(driver.records().back().plainText().contains(QLatin1String("there is no such file")),
                 qPrintable(driver.records().back().plainText()));
        QCOMPARE(driver.records().size(), size_t(2));
    }

private:
    bool run(const char *program)
    {
        QFile script(file(QStringLiteral("test.rsx")));
        if (!script.open(QIODevice::WriteOnly))
            return false;
        script.write(program);
        script.close();
        return ScriptRun(m_window.get()).run(script.fileName());
    }
    QAction *latest() const { return action("EditRestoreLatest"); }

    QString m_before;
};

RY_TEST(ScriptRunTest)
#include "tst_ScriptRun.moc"
