#include "foreign/ForeignStage.h"
#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/app/RyApp.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "ryhost/commands/HostFiles.h"

#include <QProgressDialog>
#include <QTimer>

#include <functional>
#include <set>

/// The window while the scene is built of a foreign file that the other process has read already.
class ForeignBuildingTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init()
    {
        m_stage = std::make_unique<ForeignStage>();
        QVERIFY(open());
        m_hero = m_stage->write(QStringLiteral("hero.fbx"), "take " + ForeignStage::sample().toUtf8());
    }
    void cleanup()
    {
        close();
        m_stage.reset();
        QCOMPARE(RyApp::busyCursorDepth(), 0);
    }

    /// Events arrive between one step and the next, and the bar moves.
    void theWindowLives()
    {
        std::set<int> seen;
        watch([&seen](const QProgressDialog &dialog) { seen.insert(dialog.value()); });
        QVERIFY(m_window->files()->openPath(m_hero));
        QVERIFY2(seen.size() >= 8, qPrintable(QString::number(seen.size())));
        QVERIFY(*seen.rbegin() > 900);
    }

    void cancelIsHeard()
    {
        const QString before = rySceneDump(*m_scene);
        QStringList posted;
        connect(m_window->files(), &HostFiles::messagePosted, this,
                [&posted](const QString &message) { posted.append(message); });
        watch([](QProgressDialog &dialog) { dialog.cancel(); });
        QVERIFY(!m_window->files()->openPath(m_hero));
        QCOMPARE(posted, QStringList{QStringLiteral("hero.fbx was not opened: it was cancelled.")});
        QCOMPARE(rySceneDump(*m_scene), before);
    }

private:
    /// In each turn of the event loop while the scene is built.
    void watch(const std::function<void(QProgressDialog &)> &use)
    {
        auto *turn = new QTimer(m_window.get());
        connect(turn, &QTimer::timeout, this, [this, use] {
            auto *dialog = m_window->findChild<QProgressDialog *>(QStringLiteral("ImportProgress"));
            constexpr int ProcessEnds = 700; // of a thousand
            if (dialog && dialog->value() > ProcessEnds && !dialog->wasCanceled())
                use(*dialog);
        });
        turn->start(0);
    }

    std::unique_ptr<ForeignStage> m_stage;
    QString m_hero;
};

RY_TEST(ForeignBuildingTest)
#include "tst_foreign_building.moc"
