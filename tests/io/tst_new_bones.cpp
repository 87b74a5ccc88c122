#include "evaluator/GltfEvaluator.h"
#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QTemporaryDir>

/// Bones that were made in the program below a figure of the file become nodes and joints of that file.
class NewBonesTest : public QObject
{
    Q_OBJECT

private:
    QString sample() const { return QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb"); }

    RyBone *addBone(RyScene &scene, RyNode *parent, const QString &name, const RyVec3 &way)
    {
        auto *bone = new RyBone;
        bone->setName(name);
        bone->setOrigin(parent->getEndPoint(), true);
        bone->setEndPoint(parent->getEndPoint() + way, true);
        bone->setOrientation(RyQuat(RyVec3(1, 2, 3), 0.7f), true);
        parent->addNodeChild(bone);
        scene.addNode(bone);
        RySkinBinding *skin = RySkinBinding::findSkinFromNode(parent);
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        auto *map = new RyWeightMap(name);
        map->setNumWeights(skin->bindings().front()->getWeights()->getNumWeights());
        binding->setWeights(map);
        skin->addBoneBinding(binding);
        return bone;
    }

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void newBonesComeBack()
    {
        QTemporaryDir folder;
        const QString out = folder.filePath(QStringLiteral("more.glb"));
        RyScene scene;
        QString error;
        QVERIFY2(RySceneFile::open(&scene, sample(), &error), qPrintable(error));
        RyNode *hand = scene.findNode(QStringLiteral("lHand"));
        const size_t before = scene.getSkeletons().front()->getAllBones().size();
        const auto restOf = [](const RyScene &of) {
            return qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(of.getSkeletons().front()))
                ->getFacetMesh()
                ->getPositions();
        };
        const std::vector<RyVec3> rest = restOf(scene);
        RyBone *first = addBone(scene, hand, QStringLiteral("prop"), {3, 1, -2});
        RyBone *second = addBone(scene, first, QStringLiteral("tip"), {0, 4, 0});
        first->getXRotControl()->setValue(30.0f);
        const RyMatrix4 firstPlace = first->getWSTransform();
        const RyMatrix4 secondPlace = second->getWSTransform();
        const RyVec3 origin = first->getOrigin();
        const RyVec3 end = first->getEndPoint();
        QStringList messages;
        QVERIFY2(RySceneFile::save(&scene, out, &error, &messages), qPrintable(error));
        QVERIFY2(messages.isEmpty(), qPrintable(messages.join(QLatin1Char('\n'))));

        const GltfEvaluator file(out.toStdString());
        QCOMPARE(file.joints(0).size(), before + 2);
        QCOMPARE(file.parent(file.node("tip")), file.node("prop"));
        // The posed bones stand in the file where the scene has them, in metres.
        const Eigen::Vector3d at = file.worldPosition(file.node("tip"));
        const RyVec3 shown = second->getWSPos();
        QVERIFY((at * 100.0 - Eigen::Vector3d(shown.x, shown.y, shown.z)).norm() < 2e-3);

        RyScene again;
        QVERIFY2(RySceneFile::open(&again, out, &error, &messages), qPrintable(error));
        QCOMPARE(again.getSkeletons().front()->getAllBones().size(), before + 2);
        RyNode *prop = again.findNode(QStringLiteral("prop"));
        RyNode *tip = again.findNode(QStringLiteral("tip"));
        QVERIFY(prop && tip);
        QCOMPARE(prop->getNodeParent(), again.findNode(QStringLiteral("lHand")));
        QCOMPARE(tip->getNodeParent(), prop);
        QVERIFY((prop->getOrigin() - origin).length() < 1e-3f);
        QVERIFY((prop->getEndPoint() - end).length() < 1e-3f);
        for (int i = 0; i < 16; ++i) {
            QVERIFY(std::abs(prop->getWSTransform().data()[i] - firstPlace.data()[i]) < 2e-3f);
            QVERIFY(std::abs(tip->getWSTransform().data()[i] - secondPlace.data()[i]) < 2e-3f);
        }
        const std::vector<RyVec3> restAgain = restOf(again);
        QCOMPARE(restAgain.size(), rest.size());
        for (size_t v = 0; v < rest.size(); ++v)
            QVERIFY((restAgain[v] - rest[v]).length() < 1e-3f);
    }
};

RY_TEST(NewBonesTest)
#include "tst_new_bones.moc"
