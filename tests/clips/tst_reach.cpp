#include "SketchTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/gltf/save/RyGltfReach.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <algorithm>

using nlohmann::json;

/// How far things stand from the bones that move them, which says how exact the bones' rotations have to be.
class ReachTest : public SketchTest
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void vertices()
    {
        m_sketch->bind();
        open();
        RyGltfReach reach;
        for (RyBone *bone : m_character->bones()) {
            const double own = farthestVertex(*bone);
            QVERIFY(own > 10.0);
            QVERIFY(reach.of(*bone) >= own);
        }
        // Nothing hangs on the left hand that is farther off, or it would be no measure.
        RyBone *hand = boneOf(ClipSketch::LeftHand);
        const double end = double((hand->getEndPoint() - hand->getOrigin()).length());
        QVERIFY(std::abs(reach.of(*hand) - std::max(end, farthestVertex(*hand))) < 1e-3);
    }

    /// A bone reaches as far as the bones below it, bent in any way.
    void bonesBelow()
    {
        m_sketch->bind();
        open();
        RyGltfReach reach;
        for (RyBone *bone : m_character->bones()) {
            const auto *above = qobject_cast<const RyBone *>(bone->getNodeParent());
            if (above) {
                const double apart = double((bone->getOrigin() - above->getOrigin()).length());
                QVERIFY(reach.of(*above) >= apart + reach.of(*bone) - 1e-6);
            }
        }
    }

    /// A stick of eight metres in the right hand, of a figure that is shown at half its size.
    void things()
    {
        m_sketch->node(ClipSketch::Prop)["scale"] = {0.3, 4.0, 0.3};
        m_sketch->bind();
        open();
        m_character->scene.getSkeletons()[0]->getScaleControl()->setValue(0.5f);
        RyGltfReach reach;
        const double stick = reach.of(*boneOf(ClipSketch::RightHand));
        QVERIFY2(stick > 790.0 && stick < 830.0, qPrintable(QString::number(stick)));
        QVERIFY(reach.of(*boneOf(ClipSketch::LeftHand)) < 200.0);
    }

    /// The height is that of the mesh; a figure that lies has its length instead.
    void heights_data()
    {
        QTest::addColumn<bool>("isFlat");
        QTest::newRow("standing") << false;
        QTest::newRow("flat") << true;
    }
    void heights()
    {
        QFETCH(bool, isFlat);
        m_sketch->bind();
        const int position = m_sketch->tree["meshes"][1]["primitives"][0]["attributes"]["POSITION"];
        json &accessor = m_sketch->tree["accessors"][size_t(position)];
        for (size_t i = 0; isFlat && i < accessor["count"].get<size_t>(); ++i)
            m_sketch->set(position, 3 * i + 1, 0.5f);
        if (isFlat)
            accessor["min"][1] = accessor["max"][1] = 0.5f;
        const auto extent = [&accessor](size_t axis) {
            return 100.0 * (accessor["max"][axis].get<double>() - accessor["min"][axis].get<double>());
        };
        open();
        RyGltfReach reach;
        const double height = reach.heightOf(*m_character->scene.getSkeletons()[0]);
        QVERIFY(std::abs(height - (isFlat ? std::max(extent(0), extent(2)) : extent(1))) < 0.01);
        QCOMPARE(reach.heightOf(*boneOf(ClipSketch::Spine)), height);
    }

private:
    /// Of those that a bone weighs, centimetres.
    static double farthestVertex(const RyBone &bone)
    {
        const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(bone.getSkeleton()));
        const RyWeightMap *map = RySkinBinding::findSkinFromNode(&bone)->findBoneBinding(&bone)->getWeights();
        double farthest = 0.0;
        for (int i = 0; i < map->getNumAffected(); ++i) {
            const RyVec3 position = shape->getFacetMesh()->getPositions()[size_t(map->getAffectedIndices()[i])];
            farthest = std::max(farthest, double((position - bone.getOrigin()).length()));
        }
        return farthest;
    }
};

RY_TEST(ReachTest)
#include "tst_reach.moc"
