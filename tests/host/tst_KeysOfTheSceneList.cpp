#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/panes/ScenePane.h"

#include <QLineEdit>
#include <QTreeView>

/// The scene list has the keys of the viewport that bring into view what is found in it.
class KeysOfTheSceneListTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(open());
        m_scene->setSelection({m_scene->findNode(QStringLiteral("lForearm"))});
        settle();
    }
    void cleanup() { close(); }

    void framesAsTheViewportDoes_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("selected");
        QTest::newRow("the selection") << int(Qt::Key_F) << true;
        QTest::newRow("everything") << int(Qt::Key_A) << false;
    }
    void framesAsTheViewportDoes()
    {
        QFETCH(int, key);
        QFETCH(bool, selected);
        m_window->viewport()->frameNodes(selected);
        const QPointF expected = place();
        m_window->viewport()->frameNodes(!selected);
        QVERIFY2(!isNear(place(), expected), "the two show the same");
        RyNode *const primary = m_scene->getPrimarySelection();
        QTreeView *tree = m_window->scenePane()->tree();
        tree->setFocus();
        QTRY_VERIFY(tree->hasFocus());
        QTest::keyClick(tree, Qt::Key(key));
        QVERIFY2(isNear(place(), expected), qPrintable(text(place()) + QStringLiteral(" and not ") + text(expected)));
        QVERIFY2(m_scene->getPrimarySelection() == primary, "the letter has looked for a name");
    }

    /// There they are letters of a name.
    void theFilterKeepsThem()
    {
        m_window->viewport()->frameNodes(false);
        const QPointF before = place();
        auto *filter = m_window->scenePane()->findChild<QLineEdit *>();
        filter->setFocus();
        QTRY_VERIFY(filter->hasFocus());
        QTest::keyClicks(filter, QStringLiteral("fa"));
        QCOMPARE(filter->text(), QStringLiteral("fa"));
        QVERIFY(isNear(place(), before));
        filter->clear();
    }

private:
    /// Where the end of the forearm is on the screen.
    QPointF place() const
    {
        QPointF place;
        m_window->viewport()->project(m_scene->findNode(QStringLiteral("lForearm"))->getWSEndPoint(), place);
        return place;
    }
    static bool isNear(const QPointF &a, const QPointF &b) { return (a - b).manhattanLength() < 0.5; }
    static QString text(const QPointF &place) { return QStringLiteral("%1, %2").arg(place.x()).arg(place.y()); }
};

RY_TEST(KeysOfTheSceneListTest)
#include "tst_KeysOfTheSceneList.moc"
