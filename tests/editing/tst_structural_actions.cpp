#include "support/RyTest.h"

#include "EditingStage.h"
#include "RigChecks.h"
#include "io/CharacterScene.h"
#include "support/RyValidator.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <functional>

namespace {

constexpr int BonesForEach = 5;

/// One of the actions that change which bones there are, with what its dialog is given.
struct Structural
{
    const char *name;
    const char *action;
    bool withoutSkin; ///< works on a figure without a skin too
};

const Structural structurals[] = {
    {"create child", "RyJECreateBoneAction", true}, {"create sibling", "RyJECreateSiblingBoneAction", false},
    {"split", "RyJESplitBoneAction", false},        {"duplicate", "RyJEDuplicateBonesAction", false},
    {"delete", "RyJEDeleteBoneAction", true},       {"delete unused", "RyJEDeleteUnusedBonesAction", true},
    {"reparent", "RyJEReparentBoneAction", true},   {"rename", "RyJERenameNodeAction", true},
};

/// Bones spread over a figure, the first and the last among them.
std::vector<RyBone *> someBones(const EditingStage &stage, int count)
{
    const std::vector<RyBone *> bones = stage.bones();
    std::vector<RyBone *> chosen;
    for (int i = 0; i < count && !bones.empty(); ++i) {
        RyBone *bone = bones[size_t(i) * (bones.size() - 1) / size_t(std::max(1, count - 1))];
        if (std::find(chosen.begin(), chosen.end(), bone) == chosen.end())
            chosen.push_back(bone);
    }
    return chosen;
}

/// A node of the figure that the bone can hang on and does not: a sister of its parent or else the figure's first bone.
RyNode *otherParent(const RyBone *bone)
{
    RyNode *best = nullptr;
    for (RyBone *candidate : bone->getSkeleton()->getAllBones()) {
        const RyNode *above = candidate;
        while (above && above != bone)
            above = above->getNodeParent();
        if (above || candidate == bone->getNodeParent())
            continue;
        if (!best || candidate->getNodeParent() == bone->getNodeParent()->getNodeParent())
            best = candidate;
    }
    return best;
}

QString runOn(EditingStage &stage, const Structural &structural, RyBone *bone, int number)
{
    stage.select({bone});
    const QString action = QLatin1String(structural.action);
    const QString name = QStringLiteral("fresh_%1_").arg(number);
    if (action == QLatin1String("RyJECreateBoneAction")) {
        return stage.run(structural.action, {{QStringLiteral("JointEditorCreateBoneNameLEdit"), name},
                                             {QStringLiteral("JointEditorCreateBoneLabelLEdit"), name}});
    }
    if (action == QLatin1String("RyJERenameNodeAction"))
        return stage.run(structural.action, {{QStringLiteral("name"), name}, {QStringLiteral("label"), name}});
    if (action == QLatin1String("RyJEDeleteUnusedBonesAction"))
        return stage.run(structural.action, {}, {{QStringLiteral("Remove Unused Bones"), QStringLiteral("Yes")}});
    if (action == QLatin1String("RyJEReparentBoneAction")) {
        const RyNode *parent = otherParent(bone);
        if (!parent)
            return {};
        return stage.run(structural.action, {{QStringLiteral("NodeDlgTree"), parent->getName()}},
                         {{QStringLiteral("Reparenting Warning"), QStringLiteral("Ok")}});
    }
    return stage.run(structural.action);
}

} // namespace

/// The actions that change which bones a figure has, on every character with joints.
class StructuralActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void eachBone_data() { characters(); }
    void eachBone();
    void savedAndReopened_data() { characters(); }
    void savedAndReopened();
    void deletedWeightsGoToTheReceiver_data();
    void deletedWeightsGoToTheReceiver();

private:
    void characters()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("structural");
        QStringList files = {QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb")};
        for (const QString &name : characterNames()) {
            if (!ryModel(name).isEmpty())
                files.append(ryModel(name));
        }
        for (const QString &path : qAsConst(files)) {
            for (int i = 0; i < int(std::size(structurals)); ++i)
                QTest::addRow("%s, %s", qPrintable(QFileInfo(path).fileName()), structurals[i].name) << path << i;
        }
    }
};

void StructuralActionsTest::eachBone()
{
    QFETCH(QString, path);
    QFETCH(int, structural);
    EditingStage stage(path);
    const int bones = int(someBones(stage, BonesForEach).size());
    for (int i = 0; i < bones; ++i) {
        // Going back makes other bones of the same names.
        RyBone *bone = someBones(stage, BonesForEach)[size_t(i)];
        const QString name = bone->getName();
        stage.select({bone});
        const QString before = stage.dump();
        auto sums = RigChecks::allWeightSums(*ryScene());
        if (QLatin1String(structurals[structural].action) == QLatin1String("RyJEDeleteBoneAction") &&
            !RigChecks::receiverOf(bone))
            sums.clear(); // its weights go with it
        const int points = ryRestorePoints()->count();
        const QString refusal = runOn(stage, structurals[structural], bone, i);
        QVERIFY2(refusal.isEmpty(), qPrintable(name + QStringLiteral(": ") + refusal));
        const QString wrong = RigChecks::check(*ryScene(), sums);
        QVERIFY2(wrong.isEmpty(), qPrintable(name + QStringLiteral(": ") + wrong));
        if (ryRestorePoints()->count() > points)
            QVERIFY(ryRestorePoints()->restore(0));
        else
            ryUndoStack()->undo();
        QCOMPARE(stage.dump(), before);
    }
}

void StructuralActionsTest::savedAndReopened()
{
    QFETCH(QString, path);
    QFETCH(int, structural);
    EditingStage stage(path);
    for (int i = 0; i < BonesForEach; ++i) {
        const std::vector<RyBone *> bones = someBones(stage, BonesForEach);
        if (size_t(i) < bones.size() && bones.size() > 1)
            runOn(stage, structurals[structural], bones[size_t(i)], i);
    }
    stage.select({});
    QTemporaryDir folder;
    // A figure without a name is called after its file.
    const QString out = folder.filePath(QFileInfo(path).fileName());
    QString error;
    QVERIFY2(RySceneFile::save(ryScene(), out, &error), qPrintable(error));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, out, &error), qPrintable(error));
    QVERIFY(sameDumps(rySceneDump(again), stage.dump()));
    const QByteArray bytes = bytesOf(out);
    QVERIFY2(RySceneFile::save(&again, out, &error), qPrintable(error));
    QVERIFY(bytes == bytesOf(out));
    const RyValidation validation = ryValidate(out);
    if (!validation.available)
        QSKIP("the glTF validator is not installed here");
    QVERIFY2(validation.errors <= ryValidate(path).errors, qPrintable(validation.report));
}

void StructuralActionsTest::deletedWeightsGoToTheReceiver_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("mannequin") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
    for (const QString &name : characterNames()) {
        if (!ryModel(name).isEmpty())
            QTest::newRow(qPrintable(name)) << ryModel(name);
    }
}

void StructuralActionsTest::deletedWeightsGoToTheReceiver()
{
    QFETCH(QString, path);
    EditingStage stage(path);
    const int count = int(someBones(stage, BonesForEach).size());
    for (int i = 0; i < count; ++i) {
        RyBone *bone = someBones(stage, BonesForEach)[size_t(i)];
        RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
        const RyBoneBinding *own = skin ? skin->findBoneBinding(bone) : nullptr;
        if (!own || !own->getWeights())
            continue;
        const RyBone *receiver = RigChecks::receiverOf(bone);
        if (!receiver)
            continue;
        const auto weightOf = [&](const RyBone *of, int vertex) {
            return int(skin->findBoneBinding(of)->getWeights()->getWeight(vertex));
        };
        const int vertices = own->getWeights()->getNumWeights();
        std::vector<int> expected(static_cast<size_t>(vertices));
        for (int v = 0; v < vertices; ++v)
            expected[size_t(v)] = std::min(weightOf(bone, v) + weightOf(receiver, v), 65535);
        stage.select({bone});
        const QString refusal = stage.run("RyJEDeleteBoneAction");
        QVERIFY2(refusal.isEmpty(), qPrintable(refusal));
        for (int v = 0; v < vertices; ++v) {
            if (weightOf(receiver, v) != expected[size_t(v)])
                QFAIL(qPrintable(QStringLiteral("vertex %1 of \"%2\": %3 instead of %4")
                                     .arg(v)
                                     .arg(receiver->getName())
                                     .arg(weightOf(receiver, v))
                                     .arg(expected[size_t(v)])));
        }
        QVERIFY(ryRestorePoints()->restore(0));
    }
}

RY_TEST(StructuralActionsTest)

#include "tst_structural_actions.moc"
