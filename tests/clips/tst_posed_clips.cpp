#include "ClipEdits.h"
#include "SketchTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

using nlohmann::json;

/// The pose of a joint is edited that clips do not drive, and the rest of the one above it.
class PosedClipsTest : public SketchTest
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { ryUndoStack()->clearAll(); }

    /// What no clip drives is the edited pose: the node says it, and no clip gets a key against it.
    void editedPose_data()
    {
        QTest::addColumn<QString>("edited");
        for (const char *edited : {"translation", "rotation", "scale", "z scale", "inherits scale"})
            QTest::newRow(edited) << QString::fromLatin1(edited);
    }
    void editedPose()
    {
        QFETCH(QString, edited);
        m_sketch->bind();
        const size_t clip = m_sketch->addClip("around");
        for (const int node : {ClipSketch::Hips, ClipSketch::LeftHand, ClipSketch::RightArm})
            m_sketch->drive(clip, node, "rotation", "LINEAR");
        open();
        RyBone *arm = boneOf(ClipSketch::LeftArm);
        if (edited == QLatin1String("translation"))
            arm->getYTransControl()->setValue(arm->getYTransControl()->getValue() + 11.0f);
        else if (edited == QLatin1String("rotation"))
            arm->getXRotControl()->setValue(arm->getXRotControl()->getValue() + 40.0f);
        else if (edited == QLatin1String("scale"))
            arm->getScaleControl()->setValue(1.3f);
        else if (edited == QLatin1String("z scale"))
            arm->getZScaleControl()->setValue(1.3f);
        else {
            boneOf(ClipSketch::Spine)->getScaleControl()->setValue(1.3f);
            arm->setInheritScale(false);
        }
        ClipEdits::turnAtRandom({boneOf(ClipSketch::Spine)}, m_random);
        const GltfEvaluator after(save());
        QCOMPARE(m_messages, QStringList());
        const json &channels = after.tree()["animations"][0]["channels"];
        QCOMPARE(channels.size(), size_t(3));
        QVERIFY(after.tree()["nodes"][ClipSketch::LeftArm] != m_sketch->node(ClipSketch::LeftArm));
    }
};

RY_TEST(PosedClipsTest)
#include "tst_posed_clips.moc"
