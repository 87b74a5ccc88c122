#include "support/RyTest.h"

#include "EditingStage.h"
#include "addProp.h"
#include "io/CharacterScene.h"
#include "support/checkUndo.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/restore/RyRestorePoints.h"

namespace {

/// A prop on a bone that joined the bone's figure, with a bone of its own besides.
struct JoinedRig
{
    explicit JoinedRig(const QString &rigging)
        : stage(QStringLiteral(RY_SOURCE_DIR "/resources/samples/%1.glb")
                    .arg(rigging == QLatin1String("Legacy") ? "parametric" : "mannequin"))
    {
        outer = ryScene()->getSkeletons().front();
        RyNode *prop = ryAddProp(outer->getAllBones().back(), QStringLiteral("sleeve"));
        stage.select({prop});
        const QString why =
            stage.run("RyJEConvertPropToFigureAction",
                      {{QStringLiteral("ConvertPropToFigureInheritParentSkeletonCbx"), QStringLiteral("true")},
                       {QStringLiteral("ConvertPropToFigure%1RBtn").arg(rigging), QStringLiteral("true")}});
        QCOMPARE(why, QString());
        sleeve = qobject_cast<RySkeleton *>(ryScene()->findNode(QStringLiteral("sleeve")));
        QVERIFY(sleeve);
        cuff = outer->findBone(QStringLiteral("Bone")); // as one is called that nobody gave a name
        QVERIFY(cuff);
        cuff->setName(QStringLiteral("cuff"));
        own = new RyBone;
        own->setName(QStringLiteral("own"));
        sleeve->addNodeChild(own);
        ryScene()->addNode(own);
        ryUndoStack()->clearAll();
        stage.select({outer});
    }
    RySkinBinding *skin() const { return RySkinBinding::findSkin(sleeve); }

    EditingStage stage;
    RySkeleton *outer = nullptr, *sleeve = nullptr;
    RyBone *cuff = nullptr, *own = nullptr;
};

RyWeightMap *mapOf(const std::vector<quint16> &weights)
{
    auto *map = new RyWeightMap;
    map->setAffected(4, {0, 1, 2, 3}, weights);
    return map;
}

std::vector<quint16> weightsOf(const RyWeightMap *map)
{
    std::vector<quint16> weights;
    for (int vertex = 0; map && vertex < map->getNumWeights(); ++vertex)
        weights.push_back(map->getWeight(vertex));
    return weights;
}

} // namespace

/// What becomes of a figure with bones of its own when the one that it joined goes.
class JoinedRigsTest : public QObject
{
    Q_OBJECT

private slots:
    void ownBonesHoldWhatTheOthersHeld_data();
    void ownBonesHoldWhatTheOthersHeld();
    void parametricJointsOfOthersGo();
};

void JoinedRigsTest::ownBonesHoldWhatTheOthersHeld_data()
{
    QTest::addColumn<QString>("rigging");
    QTest::addColumn<bool>("isBound");
    for (const char *rigging : {"Korvex", "General"}) {
        for (const bool isBound : {false, true})
            QTest::addRow("%s, own bone %s", rigging, isBound ? "bound" : "free") << rigging << isBound;
    }
}

void JoinedRigsTest::ownBonesHoldWhatTheOthersHeld()
{
    QFETCH(QString, rigging);
    QFETCH(bool, isBound);
    JoinedRig rig(rigging);
    const bool isLocal = rigging == QLatin1String("Korvex");
    const auto give = [isLocal](RyBoneBinding *binding, const std::vector<quint16> &weights) {
        if (!isLocal)
            return binding->setWeights(mapOf(weights));
        binding->setScaleWeights(mapOf(weights));
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(mapOf(weights), axis);
    };
    give(rig.skin()->findBoneBinding(rig.cuff), {65535, 40000, 20000, 0});
    if (isBound) {
        auto *binding = new RyBoneBinding;
        binding->setBone(rig.own);
        give(binding, {0, 25535, 45535, 65535});
        rig.skin()->addBoneBinding(binding);
    }
    rig.sleeve->getSelectionMap()->addPair(QStringLiteral("band"), rig.cuff, false);
    const QString before = rig.stage.dump();
    const int points = ryRestorePoints()->count();

    QCOMPARE(rig.stage.run("RyJEConvertFigureToPropAction"), QString());
    QVERIFY(rig.sleeve->getScene() && rig.own->getScene() && !rig.cuff->getScene());
    QCOMPARE(rig.skin()->getNumBoneBindings(), 1);
    const RyBoneBinding *binding = rig.skin()->findBoneBinding(rig.own);
    QVERIFY(binding);
    // All of each vertex that somebody held; alone the bone holds it fully.
    const std::vector<quint16> wanted = {65535, 65535, 65535, quint16(isBound ? 65535 : 0)};
    QVERIFY(weightsOf(isLocal ? binding->getLocalWeights(1) : binding->getWeights()) == wanted);
    QCOMPARE(rig.sleeve->getSelectionMap()->findPair(rig.cuff), -1);
    QVERIFY(!rig.stage.dump().contains(QLatin1String("cuff")));
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryRestorePoints()->count(), points); // the step takes back all of it
    checkLastStep(before);

    rig.stage.select({});
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.glb"));
    QString error;
    QVERIFY2(RySceneFile::save(ryScene(), path, &error), qPrintable(error));
    CharacterScene again(path);
    QVERIFY(sameDumps(rySceneDump(again.scene), rig.stage.dump()));
}

void JoinedRigsTest::parametricJointsOfOthersGo()
{
    JoinedRig rig(QStringLiteral("Legacy"));
    RyLegacyBinding *binding = RyLegacyBinding::findBinding(rig.sleeve);
    QVERIFY(binding && binding->findJoint(rig.cuff));
    const QString before = rig.stage.dump();
    QCOMPARE(rig.stage.run("RyJEConvertFigureToPropAction"), QString());
    QVERIFY(rig.sleeve->getScene() && rig.own->getScene());
    QVERIFY(binding->joints().empty());
    QVERIFY(!rig.stage.dump().contains(QLatin1String("cuff")));
    checkLastStep(before);
}

RY_TEST(JoinedRigsTest)

#include "tst_joined_rigs.moc"
