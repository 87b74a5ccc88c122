#include "host/WindowStage.h"
#include "io/FigureSketch.h"
#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/panes/ClipBar.h"
#include "ryhost/panes/ClipList.h"
#include "ryhost/panes/ClipPane.h"
#include "ryhost/panes/ScenePane.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>

/// Clips in the scene list: by mouse and by key, with what edits, undo and other files do to them.
class ClipPaneTest : public QObject, private WindowStage
{
    Q_OBJECT
public:
    ClipPaneTest() : WindowStage(Plugins::All) {}

private slots:
    void init()
    {
        QVERIFY(open());
        settle();
    }
    void cleanup() { close(); }

    void listsTheClips()
    {
        QCOMPARE(rows(), QStringList({"mannequin", " wave 2.50 s", " walk 1.00 s"}));
        QVERIFY(pane()->isVisible());
        QVERIFY(merge());
        QCOMPARE(rows(), QStringList({"mannequin", " wave 2.50 s", " walk 1.00 s", "root", " turning 1.00 s"}));
        figure()->setLabel(QStringLiteral("Dummy"));
        QCOMPARE(rows().first(), QStringLiteral("Dummy"));
        findChild<QLineEdit>("SceneFilter")->setText(QStringLiteral("WAL"));
        QCOMPARE(rows(), QStringList({"Dummy", " walk 1.00 s"}));
        findChild<QLineEdit>("SceneFilter")->clear();
        m_scene->removeNode(figure());
        settle();
        QCOMPARE(rows(), QStringList({"root", " turning 1.00 s"}));
        m_scene->removeNode(figure());
        settle();
        QCOMPARE(rows(), QStringList());
        QVERIFY(!pane()->isVisible());
        QVERIFY(!action("ClipPlay")->isEnabled());
        QCOMPARE(action("ClipPlay")->property("unavailableReason").toString(),
                 QStringLiteral("There is no clip in the scene."));
    }

    void playsByMouse()
    {
        const QString dump = rySceneDump(*m_scene);
        click(QStringLiteral("walk"));
        QVERIFY(player()->isPlaying());
        QCOMPARE(player()->clip()->name(), QStringLiteral("walk"));
        QTRY_VERIFY(findChild<QSlider>("ClipTimeSlider")->value() > 3);
        QCOMPARE(findChild<QSlider>("ClipTimeSlider")->maximum(), 30);
        QCOMPARE(findChild<QLabel>("ClipLastFrame")->text(), QStringLiteral("/ 30"));
        click(QStringLiteral("walk"));
        QVERIFY(player()->isShowing() && !player()->isPlaying());
        click(QStringLiteral("wave"));
        QVERIFY(player()->isPlaying());
        QCOMPARE(findChild<QSlider>("ClipTimeSlider")->maximum(), 75);
        QTest::mouseClick(findChild<QToolButton>("ClipStopBtn"), Qt::LeftButton);
        QVERIFY(!player()->isShowing());
        QCOMPARE(rySceneDump(*m_scene), dump);
    }

    void playsByKeys()
    {
        QTest::keyClick(m_window.get(), Qt::Key_Space, Qt::ControlModifier);
        QVERIFY(player()->isPlaying());
        QCOMPARE(player()->clip()->name(), QStringLiteral("wave"));
        QTest::keyClick(m_window.get(), Qt::Key_Space, Qt::ControlModifier);
        QVERIFY(!player()->isPlaying() && player()->isShowing());
        QTest::keyClick(m_window.get(), Qt::Key_Space, Qt::ControlModifier);
        QVERIFY(player()->isPlaying());
        QTest::keyClick(m_window.get(), Qt::Key_Period, Qt::ControlModifier);
        QVERIFY(!player()->isPlaying());
        findChild<QSpinBox>("ClipFrameFld")->setValue(40);
        QTest::keyClick(m_window.get(), Qt::Key_Period, Qt::ControlModifier);
        QTest::keyClick(m_window.get(), Qt::Key_Period, Qt::ControlModifier);
        QTest::keyClick(m_window.get(), Qt::Key_Comma, Qt::ControlModifier);
        QCOMPARE(player()->time(), 41.0 / 30.0);
        QSlider *slider = findChild<QSlider>("ClipTimeSlider");
        slider->setFocus();
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(player()->time(), 42.0 / 30.0);
        QTest::keyClick(slider, Qt::Key_End);
        QCOMPARE(player()->time(), 2.5);
        QTest::keyClick(list(), Qt::Key_Down); // past the figure
        QTest::keyClick(list(), Qt::Key_End);
        QTest::keyClick(list(), Qt::Key_Return);
        QCOMPARE(player()->clip()->name(), QStringLiteral("walk"));
        QTest::keyClick(list(), Qt::Key_Space);
        QVERIFY(!player()->isPlaying());
        QTest::keyClick(list(), Qt::Key_Escape);
        QVERIFY(!player()->isShowing());
        for (const char *name : {"ClipStop", "ClipPreviousFrame", "ClipNextFrame"})
            QVERIFY2(!action(name)->isEnabled(), name);
        QVERIFY(!slider->isEnabled());
    }

    /// Without a chosen row, that of the selected figure.
    void playsTheSelectedFigure()
    {
        QVERIFY(merge());
        m_scene->setSelection({m_scene->findNode(QStringLiteral("high"))});
        action("ClipPlay")->trigger();
        QCOMPARE(player()->clip()->name(), QStringLiteral("turning"));
        QCOMPARE(bold(), QStringList(QStringLiteral("turning")));
    }

    void loopsAndSpeeds()
    {
        QVERIFY(player()->loops());
        action("ClipLoop")->setChecked(false);
        QVERIFY(!player()->loops());
        auto *speed = findChild<QComboBox>("ClipSpeedCmb");
        QCOMPARE(speed->currentText(), QStringLiteral("1 x"));
        speed->setCurrentIndex(speed->findText(QStringLiteral("4 x")));
        QCOMPARE(player()->speed(), 4.0);
        click(QStringLiteral("walk"));
        QTRY_VERIFY(!player()->isPlaying());
        QCOMPARE(player()->time(), 1.0);
        QCOMPARE(findChild<QSlider>("ClipTimeSlider")->value(), 30);
        // From the end it starts again.
        QTest::keyClick(m_window.get(), Qt::Key_Space, Qt::ControlModifier);
        QVERIFY(player()->isPlaying() && player()->time() < 1.0);
    }

    void editsPutItAway()
    {
        m_scene->setSelection({});
        const QString dump = rySceneDump(*m_scene);
        RyNode *elbow = m_scene->findNode(QStringLiteral("lForearm"));
        const RyVec3 rest = elbow->getWSPos();
        click(QStringLiteral("wave"));
        player()->pause();
        player()->setTime(1.0);
        QVERIFY((elbow->getWSPos() - rest).length() > 5.0);
        m_scene->setSelection({elbow});
        QVERIFY(player()->isShowing());
        QCOMPARE(bold(), QStringList(QStringLiteral("wave")));
        {
            RyUndoStackHold hold;
            elbow->getXRotControl()->setValue(10.0f);
            hold.accept(QStringLiteral("Pose"));
        }
        QVERIFY(!player()->isShowing());
        QCOMPARE(elbow->getWSPos(), rest);
        QCOMPARE(bold(), QStringList());
        click(QStringLiteral("wave"));
        action("EditUndo")->trigger();
        QVERIFY(!player()->isShowing());
        m_scene->setSelection({});
        QCOMPARE(rySceneDump(*m_scene), dump);
    }

private:
    RyClipPlayer *player() const { return m_scene->getClipPlayer(); }
    ClipPane *pane() const { return m_window->scenePane()->clips(); }
    ClipList *list() const { return pane()->list(); }
    RySkeleton *figure() const { return m_scene->getSkeletons().front(); }
    template<typename W>
    W *findChild(const char *name) const
    {
        return m_window->findChild<W *>(QString::fromLatin1(name));
    }

    bool merge()
    {
        FigureSketch sketch;
        sketch.addTurningClip(1);
        sketch.tree["animations"][0]["name"] = "turning";
        RySceneFile::Options options;
        options.merge = true;
        QString error;
        const bool merged =
            RySceneFile::open(m_scene, sketch.write(file(QStringLiteral("second.gltf"))), options, &error);
        settle();
        return merged;
    }

    /// Those that can be seen, indented by a blank for each level.
    QStringList rows() const
    {
        QStringList result;
        for (QModelIndex index = list()->model()->index(0, 0); index.isValid(); index = list()->indexBelow(index)) {
            const QString length = index.siblingAtColumn(ClipList::LengthColumn).data().toString();
            result.append((index.parent().isValid() ? QStringLiteral(" ") : QString()) + index.data().toString() +
                          (length.isEmpty() ? QString() : QStringLiteral(" ") + length));
        }
        return result;
    }

    QStringList bold() const
    {
        QStringList result;
        for (QModelIndex index = list()->model()->index(0, 0); index.isValid(); index = list()->indexBelow(index)) {
            if (index.data(Qt::FontRole).value<QFont>().bold())
                result.append(index.data().toString());
        }
        return result;
    }

    void click(const QString &name)
    {
        for (QModelIndex index = list()->model()->index(0, 0); index.isValid(); index = list()->indexBelow(index)) {
            if (index.data().toString() != name)
                continue;
            list()->scrollTo(index);
            QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, list()->visualRect(index).center());
            return;
        }
        QFAIL("no such clip");
    }
};

RY_TEST(ClipPaneTest)
#include "tst_ClipPane.moc"
