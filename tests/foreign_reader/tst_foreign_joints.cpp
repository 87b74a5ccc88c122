#include "evaluator/GltfFileReader.h"
#include "foreign/FbxSketch.h"
#include "foreign_reader/ConvertedFile.h"
#include "io/CharacterScene.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <cmath>

namespace {

FbxRecord place(double x, double y, double z)
{
    return FbxSketch::vector("Lcl Translation", x, y, z);
}

} // namespace

/// Bones of FBX files that say little of them, or the same of two.
class ForeignJointsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void skeletonBesideMesh();
    void skeletonBesideFigure();
    void sameNames();
    void sameNamesInText();
    void namesWithoutClass();
    void scaledToNothing();
};

/// A prop and bones that it does not follow.
void ForeignJointsTest::skeletonBesideMesh()
{
    FbxSketch sketch;
    sketch.addSquare("Sheet", 0);
    const qint64 low = sketch.addLimb("Low", 0, {place(0, 10, 0)});
    sketch.addLimb("High", low, {place(0, 80, 0)});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames(), (QStringList{QStringLiteral("Low"), QStringLiteral("High")}));
    QVERIFY((file.bone(QStringLiteral("High"))->getOrigin() - RyVec3(0, 90, 0)).length() < 1e-3f);
}

void ForeignJointsTest::skeletonBesideFigure()
{
    FbxSketch sketch;
    const qint64 square = sketch.addSquare("Sheet", 0);
    const qint64 low = sketch.addLimb("Low", 0, {place(0, 10, 0)});
    sketch.addLimb("High", low, {place(0, 80, 0)});
    sketch.bind(square, sketch.addLimb("Hand", 0, {place(0, 20, 0)}), 20.0);
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QStringList names = file.boneNames();
    names.sort();
    QCOMPARE(names.join(QLatin1Char(' ')), QStringLiteral("Hand High Low"));
    QVERIFY(file.bone(QStringLiteral("Hand"))->getSkeleton() != file.bone(QStringLiteral("Low"))->getSkeleton());
    QCOMPARE(file.bone(QStringLiteral("High"))->getSkeleton(), file.bone(QStringLiteral("Low"))->getSkeleton());
}

/// Two arms call their bones the same. Each mesh follows its own, and the clip bends the second alone.
void ForeignJointsTest::sameNames()
{
    FbxSketch sketch;
    const qint64 left = sketch.addLimb("Bone", 0, {place(0, 20, 0)});
    const qint64 right = sketch.addLimb("Bone", 0, {place(0, 50, 0)});
    sketch.addLimb("Bone", right, {place(0, 30, 0)});
    sketch.bind(sketch.addSquare("LeftSheet", 0), left, 20.0);
    sketch.bind(sketch.addSquare("RightSheet", 0), right, 50.0);
    sketch.addCurve(right, "Lcl Rotation", "d|X", {0.0, 1.0}, {0, 90});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const nlohmann::json &tree = file.character->file.tree();
    std::map<std::string, size_t> jointOf;
    for (const nlohmann::json &node : tree.at("nodes")) {
        if (node.contains("mesh"))
            jointOf[node.at("name")] = tree.at("skins")[node.at("skin").get<size_t>()].at("joints")[0].get<size_t>();
    }
    QCOMPARE(tree.at("nodes")[jointOf["LeftSheet"]].at("translation")[1].get<double>(), 20.0);
    QCOMPARE(tree.at("nodes")[jointOf["RightSheet"]].at("translation")[1].get<double>(), 50.0);
    for (const char *mesh : {"LeftSheet", "RightSheet"})
        QCOMPARE(tree.at("nodes")[jointOf[mesh]].at("name").get<std::string>(), std::string("Bone"));
    QCOMPARE(file.character->bones().size(), size_t(3));
    for (const RyBone *bone : file.character->bones())
        QVERIFY(!bone->isPosed());
    for (const nlohmann::json &channel : tree.at("animations")[0].at("channels"))
        QCOMPARE(channel.at("target").at("node").get<size_t>(), jointOf["RightSheet"]);
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

void ForeignJointsTest::sameNamesInText()
{
    FbxSketch sketch;
    sketch.addLimb("Bone", 0, {});
    const qint64 bone = sketch.addLimb("Bone", 0, {place(0, 40, 0)});
    sketch.bind(sketch.addSquare("Sheet", 0), bone, 40.0);
    const TextFile text(QStringLiteral("a.fbx"), sketch.text());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames(), QStringList(QStringLiteral("Bone")));
    QVERIFY((file.character->bones().front()->getOrigin() - RyVec3(0, 40, 0)).length() < 1e-3f);
    QVERIFY(!file.character->bones().front()->isPosed()); // as the first would be
}

/// As few programs write them: they are names all the same.
void ForeignJointsTest::namesWithoutClass()
{
    FbxSketch sketch;
    sketch.addLimb("Bone", 0, {});
    const qint64 bone = sketch.addLimb("Bone", 0, {place(0, 40, 0)});
    sketch.bind(sketch.addSquare("Sheet", 0), bone, 40.0);
    sketch.addConstraint("Aim");
    const QByteArray content = sketch.bytes()
                                   .replace(QByteArray("Bone\0\1Model", 11), "Bone of him")
                                   .replace(QByteArray("Aim\0\1Constraint", 15), "Aim at the moon");
    const TextFile text(QStringLiteral("a.fbx"), content);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames(), (QStringList{QStringLiteral("Bone of him"), QStringLiteral("Bone of him")}));
    float heights = 0.0f;
    for (const RyBone *each : file.character->bones()) {
        QVERIFY(!each->isPosed()); // as the first would be where it is taken for the second
        heights += each->getOrigin().y;
    }
    QVERIFY(std::abs(heights - 40.0f) < 1e-3f);
    QCOMPARE(file.notes.filter(QStringLiteral("Constraints")).join(QString()).section(QLatin1Char(' '), -4),
             QStringLiteral("Aim at the moon"));
}

/// A bone without weights that the file hides by its scale.
void ForeignJointsTest::scaledToNothing()
{
    FbxSketch sketch;
    const qint64 low = sketch.addLimb("Low", 0, {place(0, 20, 0)});
    const qint64 high = sketch.addLimb("High", low, {place(0, 60, 0), FbxSketch::vector("Lcl Scaling", 0, 0, 0)});
    sketch.addLimb("Top", high, {place(0, 30, 0)});
    sketch.bind(sketch.addSquare("Sheet", 0), low, 20.0);
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QVERIFY((file.bone(QStringLiteral("High"))->getOrigin() - RyVec3(0, 80, 0)).length() < 1e-3f);
    QVERIFY((file.bone(QStringLiteral("Top"))->getOrigin() - RyVec3(0, 110, 0)).length() < 1e-3f);
    QVERIFY(file.notes.contains(QStringLiteral("\"High\" is scaled to nothing; it rests without that scale")));
}

RY_TEST(ForeignJointsTest)
#include "tst_foreign_joints.moc"
