#include "support/RyTest.h"

#include "tool/RyToolScene.h"

#include "pluginsource/RyJointTools/pane/RyJointToolNodeFilter.h"
#include "rycore/ui/RySceneSelectionDropDown.h"

class RyJointToolNodeFilterTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { fill(); }
    void cleanup() { m_scene.reset(); }

    void accepts_data()
    {
        QTest::addColumn<QString>("primary");
        QTest::addColumn<QStringList>("expected");
        const QStringList figure = {"figure", "hip", "lThigh", "lShin", "lFoot", "rThigh"};
        QTest::newRow("nothing") << QString() << QStringList{"figure", "hip",  "lThigh", "lShin", "lFoot",
                                                             "rThigh", "prop", "other",  "spine", "charm"};
        QTest::newRow("bone") << "lShin" << figure;
        QTest::newRow("figure") << "figure" << figure;
        QTest::newRow("other figure") << "spine" << QStringList{"other", "spine"};
        QTest::newRow("prop") << "prop" << QStringList{"prop"};
        // It hangs on a bone of a figure and is none.
        QTest::newRow("prop on a bone") << "charm" << QStringList{"charm"};
    }
    void accepts()
    {
        QFETCH(QString, primary);
        QFETCH(QStringList, expected);
        ryScene()->setSelection({});
        if (!primary.isEmpty())
            ryScene()->setSelection({m_scene->prop, ryScene()->findNode(primary)});
        RyJointToolNodeFilter filter;
        filter.refresh();
        QStringList accepted;
        for (RyNode *node : ryScene()->getNodes()) {
            if (filter.accept(node))
                accepted.append(node->getName());
        }
        accepted.sort();
        expected.sort();
        QCOMPARE(accepted, expected);
        // The list of the drop-down is made of the same.
        const RySceneSelectionDropDown list(std::make_unique<RyJointToolNodeFilter>());
        QCOMPARE(int(list.offeredNodes().size()), expected.size());
    }

    void looksWhenItIsRefreshed()
    {
        m_scene->select(m_scene->lShin);
        RyJointToolNodeFilter filter;
        filter.refresh();
        m_scene->select(m_scene->prop);
        QVERIFY(filter.accept(m_scene->hip));
        QVERIFY(!filter.accept(m_scene->prop));
        filter.refresh();
        QVERIFY(!filter.accept(m_scene->hip));
        QVERIFY(filter.accept(m_scene->prop));
    }

    void nodesMayGo()
    {
        m_scene->select(m_scene->lShin);
        RyJointToolNodeFilter filter;
        filter.refresh();
        ryScene()->removeNode(m_scene->figure);
        ryUndoStack()->clearAll();
        QVERIFY(filter.accept(m_scene->prop));
    }

private:
    void fill()
    {
        m_scene = std::make_unique<RyToolScene>();
        auto *other = new RyFigure;
        other->setName("other");
        RyToolScene::makeBone(other, "spine", {0, 10, 0}, {0, 20, 0});
        ryScene()->addNode(other);
        auto *charm = new RyNode;
        charm->setName("charm");
        m_scene->lFoot->addNodeChild(charm);
        ryScene()->addNode(charm);
    }
    std::unique_ptr<RyToolScene> m_scene;
};

RY_TEST(RyJointToolNodeFilterTest)
#include "tst_RyJointToolNodeFilter.moc"
