#include "host/MenuStage.h"
#include "support/RyTest.h"

#include "rycore/scene/RyNode.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/commands/ActionSearch.h"

#include <QTreeView>

/// The search over actions, with the joint editor loaded.
class ActionSearchTest : public QObject, private MenuStage
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(openWithTools()); }
    void cleanupTestCase() { close(); }
    void init() { begin(); }

    void searchFinds_data()
    {
        QTest::addColumn<QString>("first");
        QTest::newRow("roll") << "Align Node";
        QTest::newRow("symmetrize") << "Mirror Joints...";
        QTest::newRow("parent") << "Reparent Bone...";
        QTest::newRow("add") << "Create Child Bone...";
        QTest::newRow("new") << "Create Child Bone...";
        QTest::newRow("extrude") << "Create Child Bone...";
        QTest::newRow("remove") << "Delete Bone";
        QTest::newRow("subdivide") << "Split Bone";
        QTest::newRow("copy") << "Duplicate Bones";
        QTest::newRow("freeze") << "Memorize Figure Rigging";
        QTest::newRow("apply rest pose") << "Memorize Figure Rigging";
        QTest::newRow("reset") << "Restore Figure Rigging";
        QTest::newRow("euler") << "XYZ";
        QTest::newRow("rotation mode") << "XYZ";
        QTest::newRow("Selected Node") << "Selected Node(s) Attributes...";
        QTest::newRow("further down the bone hierarchy") << "Propagate Translations";
        QTest::newRow("wirefr") << "Wireframe";
        QTest::newRow("theme") << "Dark Look";
    }

    void searchFinds()
    {
        QFETCH(QString, first);
        // As if everything could run: what is disabled otherwise goes last of its kind.
        QList<RyAction *> disabled;
        for (RyAction *action : m_window->getActionMgr()->getActions()) {
            if (!action->isEnabled())
                disabled.append(action);
            action->setEnabled(true);
        }
        QStringList names;
        for (const CommandList::Command &command :
             m_window->actionSearch()->commands().find(QString::fromLatin1(QTest::currentDataTag())))
            names.append(command.name);
        for (RyAction *action : disabled)
            action->setEnabled(false);
        QVERIFY2(names.mid(0, 5).contains(first), qPrintable(names.join(QStringLiteral(", "))));
    }

    void searchWithTheKeyboard_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("F3") << int(Qt::Key_F3) << Qt::KeyboardModifiers();
        QTest::newRow("Ctrl+Shift+P") << int(Qt::Key_P)
                                      << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::ShiftModifier);
    }

    void searchWithTheKeyboard()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        RyNode *forearm = ryScene()->findNode(QStringLiteral("lForearm"));
        ryScene()->setSelection({forearm});
        m_window->viewport()->setFocus();
        forearm->setRotationOrder(RyRotationOrder(0));
        QTest::keyClick(m_window.get(), Qt::Key(key), modifiers);
        ActionSearch *search = m_window->actionSearch();
        QTRY_VERIFY(search->hasFocus());
        QVERIFY(search->results()->isVisible());
        const int all = search->results()->model()->rowCount();
        QVERIFY(all > 50);
        type(QStringLiteral("rotation order"));
        QAbstractItemModel *rows = search->results()->model();
        for (int i = 0; i < 6; ++i)
            QCOMPARE(rows->index(i, 1).data().toString(), QStringLiteral("Joint Editor > Rotation Order"));
        QVERIFY(rows->rowCount() < all / 4);
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        QCOMPARE(search->results()->currentIndex().data().toString(), QStringLiteral("YXZ"));
        QCOMPARE(search->text(), QStringLiteral("rotation order"));
        QCOMPARE(m_window->statusBar()->currentMessage(),
                 QStringLiteral("Modifies the rotation order of the selected node."));
        bool isBack = false;
        const auto watch = connect(qApp, &QApplication::focusChanged, this,
                                   [&](QWidget *, QWidget *now) { isBack = isBack || now == m_window->viewport(); });
        press(Qt::Key_Return);
        QTRY_COMPARE(forearm->getRotationOrder().order(), 2);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Rotation Order YXZ"));
        QVERIFY(search->text().isEmpty());
        QVERIFY(!search->results()->isVisible());
        // Where no window manager runs, the list that closes may take the keyboard along later.
        QTRY_VERIFY(isBack);
        disconnect(watch);
    }

    void searchShowsWhyNot()
    {
        ActionSearch *search = m_window->actionSearch();
        search->begin();
        type(QStringLiteral("align all"));
        const QAbstractItemModel *rows = search->results()->model();
        QCOMPARE(rows->rowCount(), 1);
        QCOMPARE(rows->index(0, 0).data().toString(), QStringLiteral("Align All Bones"));
        QVERIFY(!(rows->flags(rows->index(0, 0)) & Qt::ItemIsEnabled));
        QCOMPARE(rows->index(0, 1).data().toString(),
                 QStringLiteral("Joint Editor > Align - Select a bone or a figure first."));
        press(Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(m_window->statusBar()->currentMessage(), QStringLiteral("Select a bone or a figure first."));
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(search->text(), QStringLiteral("align all"));
        press(Qt::Key_Escape);
        QVERIFY(search->text().isEmpty());
        search->begin();
        type(QStringLiteral("xyzzy"));
        QCOMPARE(search->results()->model()->index(0, 0).data().toString(), QStringLiteral("No command is called so."));
        press(Qt::Key_Escape);
        QVERIFY(!search->results()->isVisible());
    }

    void searchShowsKeys()
    {
        ActionSearch *search = m_window->actionSearch();
        search->begin();
        type(QStringLiteral("joint editor"));
        const QAbstractItemModel *rows = search->results()->model();
        QCOMPARE(rows->index(0, 0).data().toString(), QStringLiteral("Joint Editor"));
        QCOMPARE(rows->index(0, 1).data().toString(), QStringLiteral("Tools"));
        QCOMPARE(rows->index(0, 2).data().toString(),
                 QKeySequence(QStringLiteral("Alt+Shift+J")).toString(QKeySequence::NativeText));
        press(Qt::Key_Escape);
    }

private:
    /// Keys go to the list while it is open, as a window system would send them.
    QWidget *keyboard() const
    {
        ActionSearch *search = m_window->actionSearch();
        return search->results()->isVisible() ? static_cast<QWidget *>(search->results()) : search;
    }
    void type(const QString &text)
    {
        for (const QChar &letter : text)
            QTest::keyClick(keyboard(), letter.toLatin1());
    }
    void press(Qt::Key key) { QTest::keyClick(keyboard(), key); }
};

RY_TEST(ActionSearchTest)
#include "tst_ActionSearch.moc"
