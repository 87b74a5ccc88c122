#include "foreign/ForeignStage.h"
#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/HostFiles.h"

#include <QFileInfo>
#include <QProgressDialog>
#include <QTimer>

/// Files dropped onto the window faster than they are asked about and read: each waits for the one before.
class DroppedFilesTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init()
    {
        m_stage = std::make_unique<ForeignStage>();
        QVERIFY(open());
        m_opened.clear();
        m_most = m_depth = 0;
        connect(m_window->files(), &HostFiles::pathChanged, this,
                [this] { m_opened.append(QFileInfo(m_window->files()->path()).fileName()); });
        m_prop = path(QStringLiteral("prop.glb"));
        QVERIFY(QFile::copy(ForeignStage::sample(), m_prop));
        m_hero = m_stage->write(QStringLiteral("hero.fbx"), "take " + ForeignStage::sample().toUtf8());
        m_slow = m_stage->write(QStringLiteral("slow.fbx"), "slow");
    }
    void cleanup()
    {
        close();
        m_stage.reset();
    }

    void oneAfterTheOther_data()
    {
        QTest::addColumn<bool>("foreignFirst");
        QTest::newRow("glTF, then FBX") << false;
        QTest::newRow("FBX, then glTF") << true; // its reading handles events
    }
    /// Both arrive before the first is looked at.
    void oneAfterTheOther()
    {
        QFETCH(bool, foreignFirst);
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Unsaved Changes"), QStringLiteral("Discard"));
        countBoxes(driver);
        drop({foreignFirst ? m_hero : m_prop});
        drop({foreignFirst ? m_prop : m_hero});
        const QStringList expected{QFileInfo(foreignFirst ? m_hero : m_prop).fileName(),
                                   QFileInfo(foreignFirst ? m_prop : m_hero).fileName()};
        QTRY_COMPARE(m_opened, expected);
        QCOMPARE(m_window->windowTitle(), QStringLiteral("%1[*] - ryhost").arg(expected.last()));
        // What was read from a foreign file is in no file yet, so that leaving it is asked about.
        QCOMPARE(driver.boxes().size(), size_t(foreignFirst ? 1 : 0));
        QCOMPARE(m_window->isWindowModified(), !foreignFirst);
        settle();
        QCOMPARE(m_opened, expected);
    }

    void whileTheFirstIsAskedAbout_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<QStringList>("opened");
        QTest::addColumn<int>("boxes");
        const QString discard = QStringLiteral("Discard"), cancel = QStringLiteral("Cancel");
        const QString prop = QStringLiteral("prop.glb"), hero = QStringLiteral("hero.fbx");
        QTest::newRow("both") << discard << cancel << QStringList{prop, hero} << 1;
        QTest::newRow("only the second") << cancel << discard << QStringList{hero} << 2;
        QTest::newRow("neither") << cancel << cancel << QStringList() << 2;
    }
    /// Boxes do not lie over each other, and the answer to one is none to the other.
    void whileTheFirstIsAskedAbout()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(QStringList, opened);
        QFETCH(int, boxes);
        bend();
        const QString before = rySceneDump(*m_scene);
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Unsaved Changes"), first);
        driver.setAnswer(QStringLiteral("Unsaved Changes"), second);
        countBoxes(driver);
        bool isDropped = false;
        connect(&driver, &RyDialogDriver::opened, this, [this, &isDropped] {
            if (isDropped)
                return;
            isDropped = true;
            drop({m_hero});
            // Enough for the second to be looked at beneath the first.
            for (int i = 0; i < 5; ++i)
                QCoreApplication::processEvents();
        });
        drop({m_prop});
        QTRY_COMPARE(int(driver.boxes().size()), boxes);
        QTRY_COMPARE(m_opened, opened);
        QTest::qWait(400); // nothing comes after
        QCOMPARE(int(driver.boxes().size()), boxes);
        QCOMPARE(m_opened, opened);
        QCOMPARE(m_most, 1);
        QVERIFY2(driver.errors().isEmpty(), qPrintable(driver.errors().join(u'\n')));
        if (opened.isEmpty()) {
            QCOMPARE(rySceneDump(*m_scene), before);
            QVERIFY(m_window->isWindowModified() && ryUndoStack()->canUndo());
        }
    }

    /// The window takes nothing while it reads; what was dropped before waits until the reading has ended.
    void whileTheFirstIsRead()
    {
        bool isRefused = false;
        QStringList meanwhile;
        QTimer::singleShot(600, this, [&] {
            auto *progress = m_window->findChild<QProgressDialog *>(QStringLiteral("ImportProgress"));
            QVERIFY(progress);
            isRefused = !wouldTake({m_prop});
            drop({m_prop}); // a program that does not heed the refusal
            meanwhile = m_opened;
            progress->cancel();
        });
        drop({m_slow});
        drop({m_hero});
        QTRY_COMPARE(m_opened, QStringList{QStringLiteral("hero.fbx")});
        QVERIFY(isRefused);
        QCOMPARE(meanwhile, QStringList());
        QTest::qWait(400);
        QCOMPARE(m_opened, QStringList{QStringLiteral("hero.fbx")});
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.fbx[*] - ryhost"));
    }

    /// Several at once are one scene; those of the next drop are another.
    void severalAtOnce()
    {
        drop({m_prop, m_hero});
        QTRY_COMPARE(m_window->windowTitle(), QStringLiteral("prop.glb + 1 file[*] - ryhost"));
        QCOMPARE(m_scene->getSkeletons().size(), size_t(2));
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Unsaved Changes"), QStringLiteral("Discard"));
        drop({m_hero});
        drop({m_prop, m_hero, m_prop});
        QTRY_COMPARE(m_window->windowTitle(), QStringLiteral("prop.glb + 2 files[*] - ryhost"));
        QCOMPARE(m_scene->getSkeletons().size(), size_t(3));
        QCOMPARE(m_opened,
                 (QStringList{QStringLiteral("prop.glb"), QStringLiteral("hero.fbx"), QStringLiteral("prop.glb")}));
    }

private:
    QString path(const QString &name) const { return m_stage->path(name); }
    /// How many boxes are open at once.
    void countBoxes(const RyDialogDriver &driver)
    {
        connect(&driver, &RyDialogDriver::opened, this, [this](QDialog *dialog) {
            m_most = std::max(m_most, ++m_depth);
            connect(dialog, &QDialog::finished, this, [this] { --m_depth; });
        });
    }

    std::unique_ptr<ForeignStage> m_stage;
    QStringList m_opened;
    QString m_prop;
    QString m_hero;
    QString m_slow;
    int m_most = 0;
    int m_depth = 0;
};

RY_TEST(DroppedFilesTest)
#include "tst_dropped_files.moc"
