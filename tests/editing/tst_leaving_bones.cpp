#include "support/RyTest.h"

#include "EditingStage.h"
#include "RigChecks.h"
#include "addProp.h"
#include "support/checkUndo.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyJointMaker.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

namespace {

/// A lantern in the hand of a figure, and a bone of the figure that hangs on the lantern.
struct LanternRig
{
    explicit LanternRig(const char *file)
        : stage(QStringLiteral(RY_SOURCE_DIR "/resources/samples/%1.glb").arg(QLatin1String(file)))
    {
        figure = ryScene()->getSkeletons().front();
        hand = figure->findBone(QStringLiteral("lHand"));
        QVERIFY(hand);
        lantern = ryAddProp(hand, QStringLiteral("lantern"));
        lantern->getYRotControl()->setValue(20.0f);
        flame = new RyBone;
        flame->setName(QStringLiteral("flame"));
        lantern->addNodeChild(flame);
        ryScene()->addNode(flame);
        flame->setOrigin(hand->getOrigin() + RyVec3(0, 5, 0), true);
        flame->setEndPoint(hand->getOrigin() + RyVec3(0, 9, 1), true);
    }
    RyBoneBinding *bind()
    {
        auto *binding = new RyBoneBinding;
        binding->setBone(flame);
        RySkinBinding::findSkin(figure)->addBoneBinding(binding);
        return binding;
    }
    QString convert(bool inherits)
    {
        stage.select({lantern});
        return stage.run("RyJEConvertPropToFigureAction",
                         {{QStringLiteral("ConvertPropToFigureInheritParentSkeletonCbx"),
                           inherits ? QStringLiteral("true") : QStringLiteral("false")},
                          {QStringLiteral("ConvertPropToFigureGeneralRBtn"), QStringLiteral("true")}});
    }

    EditingStage stage;
    RySkeleton *figure = nullptr;
    RyBone *hand = nullptr, *flame = nullptr;
    RyNode *lantern = nullptr;
};

int totalOf(const RyWeightMap *map)
{
    int total = 0;
    for (int i = 0; map && i < map->getNumAffected(); ++i)
        total += map->getAffectedWeights()[i];
    return total;
}

} // namespace

/// A prop that becomes a figure of its own takes the bones along that hang on it.
class LeavingBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void theHandHoldsWhatTheyHeld();
    void parametricJointsGo();
    void bonesOfAJoinedFigureStay();
};

void LeavingBonesTest::theHandHoldsWhatTheyHeld()
{
    LanternRig rig("mannequin");
    RySkinBinding *skin = RySkinBinding::findSkin(rig.figure);
    RyBoneBinding *flame = rig.bind(), *hand = skin->findBoneBinding(rig.hand);
    QVERIFY(hand);
    // Half of what the hand holds.
    RyWeightMap *ofHand = hand->getWeights();
    QVERIFY(ofHand);
    std::vector<int> indices(ofHand->getAffectedIndices(), ofHand->getAffectedIndices() + ofHand->getNumAffected());
    std::vector<quint16> half, rest;
    for (int i = 0; i < ofHand->getNumAffected(); ++i) {
        half.push_back(ofHand->getAffectedWeights()[i] / 2);
        rest.push_back(quint16(ofHand->getAffectedWeights()[i] - half.back()));
    }
    auto *given = new RyWeightMap;
    given->setAffected(ofHand->getNumWeights(), indices, half);
    const int before = totalOf(ofHand);
    ofHand->beginEdit();
    ofHand->setAffected(ofHand->getNumWeights(), indices, rest);
    ofHand->finishEdit();
    flame->setWeights(given);
    rig.figure->getSelectionMap()->addPair(QStringLiteral("wick"), rig.flame, false);
    ryUndoStack()->clearAll();
    rig.stage.select({rig.lantern});
    const QString dump = rig.stage.dump();

    QCOMPARE(rig.convert(false), QString());
    QVERIFY(rig.flame->getSkeleton() != rig.figure);
    QVERIFY(!skin->findBoneBinding(rig.flame));
    QCOMPARE(totalOf(skin->findBoneBinding(rig.hand)->getWeights()), before);
    QCOMPARE(rig.figure->getSelectionMap()->findPair(rig.flame), -1);
    for (const RySkeleton *figure : ryScene()->getSkeletons()) {
        QCOMPARE(RigChecks::bindingsHaveBones(*figure), QString());
        QCOMPARE(RigChecks::pairsHaveNodes(*figure), QString());
    }
    checkLastStep(dump);
}

void LeavingBonesTest::parametricJointsGo()
{
    LanternRig rig("parametric");
    RyLegacyBinding *binding = RyLegacyBinding::findBinding(rig.figure);
    QVERIFY(binding);
    RyLegacyJointMaker(rig.flame, RyLegacyJointMaker::Side::ByDirection).make(rig.hand, true);
    QVERIFY(binding->findJoint(rig.flame));
    ryUndoStack()->clearAll();
    rig.stage.select({rig.lantern});
    const QString dump = rig.stage.dump();
    QCOMPARE(rig.convert(false), QString());
    QVERIFY(!binding->findJoint(rig.flame));
    QVERIFY(binding->findJoint(rig.hand));
    checkLastStep(dump);
}

void LeavingBonesTest::bonesOfAJoinedFigureStay()
{
    LanternRig rig("mannequin");
    rig.bind();
    QCOMPARE(rig.convert(true), QString());
    QCOMPARE(rig.flame->getSkeleton(), rig.figure);
    QVERIFY(RySkinBinding::findSkin(rig.figure)->findBoneBinding(rig.flame));
}

RY_TEST(LeavingBonesTest)

#include "tst_leaving_bones.moc"
