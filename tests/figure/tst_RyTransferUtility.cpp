#include "FigureScene.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/figure/RyTransferUtility.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

class RyTransferUtilityTest : public QObject
{
    Q_OBJECT

private slots:
    void bonesWithoutUseGo()
    {
        FigureScene scene;
        RyBone *hip = scene.addBone("hip", scene.figure, 0); // above a used one
        RyBone *spine = scene.addBone("spine", hip, 100);    // weights
        RyBone *neck = scene.addBone("neck", spine, 0);      // nothing
        scene.addBone("nub", neck, -1);                      // no binding
        RyBone *arm = scene.addBone("arm", hip, 0);          // a prop hangs two bones further down
        RyBone *wrist = scene.addBone("wrist", arm, -1);
        RyBone *tip = scene.addBone("tip", wrist, 0);
        wrist->addNodeChild(new RyNode);
        RyBone *leg = scene.addBone("leg", hip, 0);
        scene.addBone("foot", leg, 0);
        scene.figure->getSelectionMap()->addPair("legs", leg, true);
        scene.figure->getSelectionMap()->addPair("body", spine, true);
        tip->select(true);
        const QPointer<RyBone> gone(leg);

        QCOMPARE(RyTransferUtility::removeUnusedBones(scene.figure), 5);
        QCOMPARE(scene.boneNames(), (QStringList{"hip", "spine", "arm", "wrist"}));
        QCOMPARE(scene.skin->getNumBoneBindings(), 3);
        for (const RyBoneBinding *binding : scene.skin->bindings())
            QVERIFY(scene.boneNames().contains(binding->getBone()->getName()));
        QVERIFY(!gone);
        QCOMPARE(scene.figure->getSelectionMap()->getNumPairs(), 1);
        QCOMPARE(scene.figure->getSelectionMap()->findGroupForNode(spine), QString("body"));
        QVERIFY(!ryScene()->getPrimarySelection());
        QCOMPARE(RyTransferUtility::removeUnusedBones(scene.figure), 0);
    }

    void localAndScaleWeightsCountAsUse()
    {
        FigureScene scene;
        RyBone *bones[2] = {scene.addBone("a", scene.figure, -1), scene.addBone("b", scene.figure, -1)};
        for (int i = 0; i < 2; ++i) {
            auto *binding = new RyBoneBinding;
            binding->setBone(bones[i]);
            auto *map = new RyWeightMap;
            map->setAffected(4, {2}, {1});
            if (i == 0)
                binding->setLocalWeights(map, 2);
            else
                binding->setScaleWeights(map);
            scene.skin->addBoneBinding(binding);
        }
        QCOMPARE(RyTransferUtility::removeUnusedBones(scene.figure), 0);
        QCOMPARE(scene.boneNames(), (QStringList{"a", "b"}));
    }

    void bonesOfFiguresBelowAreTheirs()
    {
        FigureScene scene;
        RyBone *hip = scene.addBone("hip", scene.figure, 100);
        RyBone *moves = scene.addBone("moves", hip, -1); // bound by the inner skin alone
        RyBone *idle = scene.addBone("idle", hip, -1);   // bound there without weight
        auto *inner = new RyFigure;
        auto *object = new RyObject;
        auto *innerSkin = new RySkinBinding;
        object->addModifier(innerSkin);
        inner->setObject(object);
        scene.figure->addNodeChild(inner);
        ryScene()->addNode(inner);
        auto *own = new RyBone; // nobody binds it
        own->setName("own");
        inner->addNodeChild(own);
        ryScene()->addNode(own);
        for (RyBone *bone : {moves, idle}) {
            auto *binding = new RyBoneBinding;
            binding->setBone(bone);
            auto *map = new RyWeightMap;
            map->setAffected(4, {1}, {quint16(bone == moves ? 9 : 0)});
            binding->setWeights(map);
            innerSkin->addBoneBinding(binding);
        }
        QCOMPARE(RyTransferUtility::removeUnusedBones(scene.figure), 1);
        QCOMPARE(moves->getNodeParent(), static_cast<RyNode *>(hip));
        QVERIFY(!ryScene()->findNode("idle"));
        QCOMPARE(own->getNodeParent(), static_cast<RyNode *>(inner));
        QCOMPARE(innerSkin->getNumBoneBindings(), 1);
        QCOMPARE(innerSkin->bindings().front()->getBone(), moves);
        // Asked for itself, the inner figure has one too many.
        QCOMPARE(RyTransferUtility::removeUnusedBones(inner), 1);
        QCOMPARE(inner->getNumNodeChildren(), 0);
        QCOMPARE(innerSkin->getNumBoneBindings(), 1);
    }

    /// A bone without weights is of use where it moves what stays.
    void bonesThatMoveOthersStay()
    {
        FigureScene scene;
        RyBone *hip = scene.addBone("hip", scene.figure, 100);
        RyBone *group = scene.addBone("group", hip, -1); // above a bone that stays
        RyBone *control = scene.addBone("control", group, -1);
        RyBone *control2 = scene.addBone("control2", hip, 0); // moves one that moves
        RyBone *swell = scene.addBone("swell", hip, -1);      // a bulge
        RyBone *tilt = scene.addBone("tilt", hip, -1);        // a thing beside the figure
        RyBone *idle = scene.addBone("idle", hip, 0);         // two that move one another's values alone
        RyBone *idle2 = scene.addBone("idle2", hip, -1);
        RyBone *follows = scene.addBone("follows", hip, -1); // is moved itself
        RyBone *worn = scene.addBone("worn", hip, -1);       // moves an idle bone of a figure on this one
        auto *inner = new RyFigure;
        scene.figure->addNodeChild(inner);
        ryScene()->addNode(inner);
        auto *own = new RyBone;
        own->setName("own");
        inner->addNodeChild(own);
        ryScene()->addNode(own);
        auto *thing = new RyNode;
        ryScene()->addNode(thing);
        RyERCLink::create(control->getXRotControl(), hip->getXRotControl());
        RyERCLink::create(control2->getYRotControl(), control->getScaleControl());
        RyERCLink::create(tilt->getYRotControl(), thing->getOriginXControl());
        auto *bulge = new RyBulgeBinding(0);
        scene.skin->findBoneBinding(hip)->setBulgeBinding(0, bulge);
        RyERCLink::create(swell->getXRotControl(), bulge->getPosLeftBulgeController());
        RyERCLink::create(idle->getXRotControl(), idle2->getXRotControl());
        RyERCLink::create(idle2->getYRotControl(), idle->getYRotControl());
        RyERCLink::create(hip->getYRotControl(), follows->getYRotControl());
        RyERCLink::create(worn->getYRotControl(), own->getYRotControl());
        QCOMPARE(RyTransferUtility::removeUnusedBones(scene.figure), 3);
        QCOMPARE(scene.boneNames(),
                 (QStringList{"hip", "group", "control", "control2", "swell", "tilt", "worn", "own"}));
        QVERIFY(!ryScene()->findNode("idle") && !ryScene()->findNode("idle2") && !ryScene()->findNode("follows"));
    }

    void convertedPropKeepsItsBone()
    {
        FigureScene scene;
        RyBone *hip = scene.addBone("hip", scene.figure, 100);
        auto *prop = new RyNode;
        prop->setName("belt");
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        prop->setObject(object);
        hip->addNodeChild(prop);
        ryScene()->addNode(prop);
        RyFigure *belt = RyFigure::convertPropToFigure(prop, "buckle", true, true);
        QVERIFY(belt);
        QCOMPARE(scene.boneNames(), (QStringList{"hip", "buckle"}));
        QCOMPARE(RyTransferUtility::removeUnusedBones(scene.figure), 0);
        QCOMPARE(scene.boneNames(), (QStringList{"hip", "buckle"}));
        QCOMPARE(belt->getSkinBinding()->bindings().front()->getBone(), scene.figure->findBone("buckle"));
    }

    void nothingWithoutFigureOrSkin()
    {
        QCOMPARE(RyTransferUtility::removeUnusedBones(nullptr), 0);
        FigureScene scene;
        scene.addBone("bone", scene.figure, 0);
        scene.figure->setObject(nullptr);
        QCOMPARE(RyTransferUtility::removeUnusedBones(scene.figure), 0);
        QCOMPARE(scene.boneNames(), QStringList{"bone"});
    }

    void isNotRecordedAndLeavesOlderSteps()
    {
        FigureScene scene;
        RyBone *used = scene.addBone("used", scene.figure, 7);
        RyBone *unused = scene.addBone("unused", scene.figure, 0);
        {
            RyUndoStackHold hold;
            used->setLabel("Used");
            unused->setLabel("Unused");
            hold.accept("Label");
        }
        {
            RyUndoStackHold hold;
            QCOMPARE(RyTransferUtility::removeUnusedBones(scene.figure), 1);
            hold.accept("Nothing");
        }
        QCOMPARE(ryUndoStack()->entryCount(1), 0);
        ryUndoStack()->undo();
        ryUndoStack()->undo();
        QCOMPARE(used->getLabel(), QString("used"));
        QCOMPARE(scene.boneNames(), QStringList{"used"});
    }
};

RY_TEST(RyTransferUtilityTest)
#include "tst_RyTransferUtility.moc"
