#include "FigureScene.h"
#include "addProp.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "support/RyTest.h"

class FigureToPropTest : public QObject
{
    Q_OBJECT

private slots:
    void propsThatJoinedBecomePropsAgain()
    {
        FigureScene scene;
        RyBone *hip = scene.addBone("hip", scene.figure, 65535);
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
        mesh->setFacets({{{0, 1, 2, -1}, -1}});
        RyFigure *joined = RyFigure::convertPropToFigure(addProp("ring", mesh, hip), "band", true, true);
        QVERIFY(joined && joined->getAllBones().empty());
        RyBone *band = scene.figure->findBone("band");
        QVERIFY(band);
        RyObject *object = joined->getObject();
        ryUndoStack()->clearAll();
        const QString dump = rySceneDump(*ryScene());
        RyNode *prop = RySkeleton::convertFigureToProp(scene.figure, "statue");
        QVERIFY(prop && !band->getScene() && !joined->getScene());
        QVERIFY(ryScene()->getSkeletons().empty());
        const RyNode *ring = ryScene()->findNode("ring");
        QVERIFY(ring && ring->getObject() == object && ring->getNodeParent() == prop);
        QVERIFY(object->getModifiers().empty());
        QCOMPARE(ryUndoStack()->count(), 1);
        const QString converted = rySceneDump(*ryScene());
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(*ryScene()), dump);
        ryUndoStack()->redo();
        QCOMPARE(rySceneDump(*ryScene()), converted);
    }

    void becomesAPropWithTheGeometryAtRest()
    {
        FigureScene scene;
        RyBone *hip = scene.addBone("hip", scene.figure, 65535);
        RyBone *hand = scene.addBone("hand", hip, 0);
        auto *ring = new RyNode;
        ring->setName("ring");
        ring->getZTransControl()->setValue(2);
        hand->addNodeChild(ring);
        ryScene()->addNode(ring);
        auto *shirt = new RyFigure;
        shirt->setName("shirt");
        shirt->setFollowTarget(scene.figure);
        ryScene()->addNode(shirt);
        hip->getXRotControl()->setValue(25);
        scene.figure->getYTransControl()->setValue(4);
        RyERCLink::create(hip->getXRotControl(), shirt->getXRotControl());
        RyERCLink::create(shirt->getZRotControl(), scene.figure->getZRotControl());
        ryScene()->setSelection({shirt, hand, scene.figure});
        RyObject *object = scene.figure->getObject();
        const std::vector<RyVec3> rest = object->getCurrentShape()->getGeometry()->getPositions();
        const RyVec3 ringPlace = ring->getWSPos();
        const RyAffine world = scene.figure->worldMap();
        const QString dump = rySceneDump(*ryScene());

        RyNode *prop = RySkeleton::convertFigureToProp(scene.figure, "statue");
        QVERIFY(prop && !qobject_cast<RySkeleton *>(prop) && prop->getScene() == ryScene());
        QCOMPARE(prop->getName(), QString("statue"));
        QCOMPARE(prop->getObject(), object);
        QVERIFY(object->getModifiers().empty());
        QVERIFY(object->getDeformedPositions() == rest);
        QVERIFY((prop->worldMap().mapPoint(rest[1]) - world.mapPoint(rest[1])).length() < 1e-4f);
        QVERIFY(!hip->getScene() && !hand->getScene() && !scene.figure->getScene());
        QCOMPARE(ring->getNodeParent(), prop);
        QVERIFY((ring->getWSPos() - ringPlace).length() < 1e-4f);
        QVERIFY(!shirt->getFollowTarget());
        QVERIFY(shirt->getXRotControl()->getControllerLinks().empty());
        QCOMPARE(prop->getZRotControl()->getControllerLinks()[0]->getController(), shirt->getZRotControl());
        QVERIFY((ryScene()->selectedNodeListIterator() == std::vector<RyNode *>{shirt, prop}));
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), QString("Convert Figure to Prop"));

        const QString converted = rySceneDump(*ryScene());
        for (int round = 0; round < 2; ++round) {
            ryUndoStack()->undo();
            QCOMPARE(rySceneDump(*ryScene()), dump);
            ryUndoStack()->redo();
            QCOMPARE(rySceneDump(*ryScene()), converted);
        }
        // Bones that only the step holds go with it, without moving anything.
        const QPointer<RyBone> gone(hip);
        ryUndoStack()->clearAll();
        QVERIFY(!gone);
        QCOMPARE(rySceneDump(*ryScene()), converted);
    }

    void nullGivesNull()
    {
        FigureScene scene;
        QVERIFY(!RySkeleton::convertFigureToProp(nullptr, "x"));
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void charactersThereAndBack_data()
    {
        QTest::addColumn<QString>("file");
        for (const char *name :
             {"CesiumMan.glb", "Fox.glb", "RiggedSimple.gltf", "mh_default_rig.glb", "kaykit_knight.glb"})
            QTest::newRow(name) << QString(name);
    }
    void charactersThereAndBack()
    {
        QFETCH(QString, file);
        if (ryModel(file).isEmpty())
            QSKIP("no models on this machine");
        FigureScene empty;
        QString error;
        QVERIFY2(RySceneFile::open(ryScene(), ryModel(file), &error), qPrintable(error));
        QVERIFY(!ryScene()->getSkeletons().empty());
        RySkeleton *figure = ryScene()->getSkeletons().front();
        figure->select(true);
        QStringList dumps{rySceneDump(*ryScene())};
        RyNode *prop = RySkeleton::convertFigureToProp(figure, figure->getName());
        QVERIFY(prop);
        dumps << rySceneDump(*ryScene());
        RyFigure *again = RyFigure::convertPropToFigure(prop, "root", true, true);
        QVERIFY(again && again->getAllBones().size() == 1);
        dumps << rySceneDump(*ryScene());
        QVERIFY(dumps[0] != dumps[1] && dumps[1] != dumps[2]);
        QCOMPARE(ryUndoStack()->count(), 2);
        for (int round = 0; round < 2; ++round) {
            for (int step = 1; step >= 0; --step) {
                ryUndoStack()->undo();
                QCOMPARE(rySceneDump(*ryScene()), dumps[step]);
            }
            for (int step = 1; step <= 2; ++step) {
                ryUndoStack()->redo();
                QCOMPARE(rySceneDump(*ryScene()), dumps[step]);
            }
        }
    }
};

RY_TEST(FigureToPropTest)
#include "tst_figureToProp.moc"
