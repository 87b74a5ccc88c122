#include "evaluator/GltfClipEvaluator.h"
#include "evaluator/GltfFileReader.h"
#include "foreign_reader/ConvertedFile.h"
#include "foreign_reader/FbxFormula.h"
#include "foreign_reader/JudgedFigure.h"
#include "io/CharacterScene.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyBlender.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <QFileInfo>

#include <functional>
#include <iostream>
#include <limits>

namespace {

using Vector = FbxFormula::Vector;
using Formula = FbxFormula;

constexpr int FrameRate = 24; // of the keys: those between are on straight lines, and on arcs where things turn

/// Two limbs, the upper one driven by a clip, and a square below a node of its own that both move.
struct Arm
{
    Formula lower, upper, sheet;
    bool isScaled = true; // by the clip, too
    Arm()
    {
        lower.translation = {3, 10, -4};
        lower.rotation = {5, -10, 15};
        upper.translation = {2, 80, 1};
        upper.rotation = {20, 30, -25};
    }

    /// As the clip of one second shows the upper limb.
    Formula upperAt(double seconds) const
    {
        Formula at = upper;
        const double k = 4.0 * seconds;
        at.translation += Vector(2 * k, -3 * k, k * k);
        at.rotation += Vector(20 * k, -15 * k, 12 * k);
        if (isScaled)
            at.scaling += Vector(0.2 * k, 0.1 * k, -0.1 * k);
        return at;
    }

    FbxSketch sketch() const
    {
        FbxSketch sketch;
        const qint64 low = sketch.addLimb("Lower", 0, lower.properties());
        const qint64 high = sketch.addLimb("Upper", low, upper.properties());
        const qint64 square = sketch.addSquare("Sheet", 0, sheet.properties());
        const Eigen::Affine3d lowLink = lower.local(), highLink = lowLink * upper.local();
        const auto asWritten = [](const Eigen::Affine3d &map) {
            return FbxSketch::Deltas(map.data(), map.data() + 16);
        };
        sketch.bind(square, low, asWritten(lowLink), asWritten(lowLink.inverse() * sheet.local()), {0, 1});
        sketch.bind(square, high, asWritten(highLink), asWritten(highLink.inverse() * sheet.local()), {2, 3});
        const auto addCurves = [&](const char *property, Vector Formula::*value) {
            const char *parts[] = {"d|X", "d|Y", "d|Z"};
            for (int axis = 0; axis < 3; ++axis) {
                std::vector<double> times;
                std::vector<float> numbers;
                for (int key = 0; key <= FrameRate; ++key) {
                    times.push_back(double(key) / FrameRate);
                    numbers.push_back(float((upperAt(times.back()).*value)[axis]));
                }
                sketch.addCurve(high, property, parts[axis], times, numbers);
            }
        };
        addCurves("Lcl Translation", &Formula::translation);
        addCurves("Lcl Rotation", &Formula::rotation);
        if (isScaled)
            addCurves("Lcl Scaling", &Formula::scaling);
        return sketch;
    }

    std::vector<Vector> corners(const Formula &shown) const
    {
        const Eigen::Affine3d bound = sheet.local() * sheet.geometric();
        const Eigen::Affine3d moved = lower.local() * shown.local() * (lower.local() * upper.local()).inverse() * bound;
        return {bound * Vector(0, 0, 0), bound * Vector(160, 0, 0), moved * Vector(160, 160, 0),
                moved * Vector(0, 160, 0)};
    }
};

struct Row
{
    const char *name;
    bool isSeen; // by the other program, which knows no bones that are scaled at rest, nor their PostRotation in clips
    Arm arm;
};

} // namespace

Q_DECLARE_METATYPE(Arm)
Q_DECLARE_METATYPE(Vector)

/// Nodes of FBX files are turned and scaled about points of their own, in orders of their own, under clips too: where
/// the format's formula says, there they stand.
class FbxTransformsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void stand_data();
    void stand();
    void propWithAnOffset();
    void scaledToNothing_data();
    void scaledToNothing();
    void scaledOtherwise_data();
    void scaledOtherwise();
    void asSeenElsewhere_data();
    void asSeenElsewhere();

private:
    static std::vector<Row> rows();
    static double largestGap(const std::vector<Vector> &wanted, const std::vector<Vector> &found);

    QTemporaryDir m_folder;
};

std::vector<Row> FbxTransformsTest::rows()
{
    std::vector<Row> all;
    const auto row = [&all](const char *name, bool isSeen, const std::function<void(Arm &)> &change) {
        all.push_back({name, isSeen, {}});
        change(all.back().arm);
    };
    const auto turns = [](Formula &node) {
        node.preRotation = {10, 40, -30};
        node.postRotation = {-20, 15, 50};
    };
    const auto rotationPivots = [](Formula &node) {
        node.rotationPivot = {4, -12, 7};
        node.rotationOffset = {1, 5, -3};
    };
    const auto scalingPivots = [](Formula &node) {
        node.scaling = {1.2, 0.8, 1.1};
        node.scalingPivot = {-6, 9, 3};
        node.scalingOffset = {2, -4, 8};
    };
    row("plain", true, [](Arm &) {});
    const char *orders[] = {"XZY", "YZX", "YXZ", "ZXY", "ZYX"};
    for (int order = 1; order <= 5; ++order)
        row(orders[order - 1], true, [order](Arm &arm) { arm.lower.order = arm.upper.order = order; });
    row("turned before", true, [](Arm &arm) { arm.upper.preRotation = {10, 40, -30}; });
    row("turned before and after", false, [&](Arm &arm) { turns(arm.upper); });
    row("turned, but not active", true, [&](Arm &arm) {
        turns(arm.upper);
        arm.upper.order = 3;
        arm.upper.isActive = false;
    });
    row("rotation pivot", true, [&](Arm &arm) { rotationPivots(arm.upper); });
    row("scaling pivot", false, [&](Arm &arm) { scalingPivots(arm.upper); });
    row("all of a bone", false, [&](Arm &arm) {
        for (Formula *node : {&arm.lower, &arm.upper}) {
            turns(*node);
            rotationPivots(*node);
            node->order = 4;
        }
        scalingPivots(arm.upper);
    });
    row("pivots without a scale in the clip", false, [&](Arm &arm) {
        rotationPivots(arm.upper);
        scalingPivots(arm.upper);
        arm.isScaled = false;
    });
    row("mirrored about a point", false, [&](Arm &arm) {
        rotationPivots(arm.upper);
        scalingPivots(arm.upper);
        arm.upper.scaling = {-1.2, 0.8, 1.1};
        arm.isScaled = false;
    });
    row("mesh with pivots", true, [&](Arm &arm) {
        arm.sheet.translation = {4, 5, 6};
        arm.sheet.rotation = {10, 20, 30};
        turns(arm.sheet);
        rotationPivots(arm.sheet);
        scalingPivots(arm.sheet);
    });
    row("mesh with an offset", true, [](Arm &arm) {
        arm.sheet.translation = {4, 5, 6};
        arm.sheet.geometricTranslation = {3, -7, 11};
        arm.sheet.geometricRotation = {10, 20, 30};
        arm.sheet.geometricScaling = {1.1, 0.9, 1.2};
    });
    return all;
}

void FbxTransformsTest::stand_data()
{
    QTest::addColumn<Arm>("arm");
    QTest::addColumn<bool>("isText");
    for (const Row &row : rows()) {
        QTest::newRow(row.name) << row.arm << false;
        QTest::newRow((std::string(row.name) + ", as text").c_str()) << row.arm << true;
    }
}

double FbxTransformsTest::largestGap(const std::vector<Vector> &wanted, const std::vector<Vector> &found)
{
    double largest = 0.0;
    for (size_t i = 0; i < wanted.size(); ++i)
        largest = std::max(largest, (wanted[i] - found[i]).norm());
    return largest / 160.0;
}

void FbxTransformsTest::stand()
{
    QFETCH(Arm, arm);
    QFETCH(bool, isText);
    const TextFile text(QStringLiteral("a.fbx"), isText ? arm.sketch().text() : arm.sketch().bytes());
    const ConvertedFile file(text.path, 1.0);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(ryValidate(file.glb).errors, 0);
    const GltfEvaluator &judged = file.character->file;
    const GltfPrimitive &primitive = judged.primitives().front();
    const auto shown = [&](const GltfPose &pose) {
        std::vector<Vector> all;
        for (const Vector &point : judged.positions(primitive, pose))
            all.push_back(100.0 * point);
        return all;
    };
    const std::vector<Vector> wanted = arm.corners(arm.upper), found = shown({});
    QCOMPARE(found.size(), wanted.size());
    const double rest = largestGap(wanted, found);
    std::vector<Vector> heads;
    for (const char *name : {"Lower", "Upper"}) {
        const RyVec3 origin = file.bone(QString::fromLatin1(name))->getOrigin();
        heads.emplace_back(origin.x, origin.y, origin.z);
    }
    const double bones =
        largestGap({arm.lower.local().translation(), (arm.lower.local() * arm.upper.local()).translation()}, heads);
    QVERIFY(judged.tree().contains("animations"));
    const GltfClipEvaluator clip(judged, 0);
    QCOMPARE(clip.leftOut(), std::vector<std::string>());
    double frames = 0.0;
    for (int frame = 0; frame < 10; ++frame) {
        const double seconds = frame / 9.0;
        frames = std::max(frames, largestGap(arm.corners(arm.upperAt(seconds)), shown(clip.pose(seconds))));
    }
    std::cout << QTest::currentDataTag() << ": rest " << rest << " heads " << bones << " frames " << frames
              << " of the height\n";
    QVERIFY2(rest < 1e-4, qPrintable(QString::number(rest)));
    QVERIFY2(bones < 1e-4, qPrintable(QString::number(bones)));
    QVERIFY2(frames < 1e-3, qPrintable(QString::number(frames)));
}

/// Which moves what the node shows, and nothing below it.
void FbxTransformsTest::propWithAnOffset()
{
    Formula prop;
    prop.translation = {4, 5, 6};
    prop.rotation = {10, 20, 30};
    prop.rotationPivot = {1, 2, 3};
    prop.geometricTranslation = {3, -7, 11};
    prop.geometricRotation = {30, 20, 10};
    prop.geometricScaling = {1.1, 0.9, 1.2};
    FbxSketch sketch;
    const qint64 lower = sketch.addSquare("Prop", 0, prop.properties());
    Formula child;
    child.translation = {20, 0, 0};
    sketch.addSquare("Child", lower, child.properties());
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path, 1.0);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(ryValidate(file.glb).errors, 0);
    const GltfEvaluator &judged = file.character->file;
    QCOMPARE(judged.primitives().size(), size_t(2));
    const Eigen::Affine3d shows[] = {prop.local() * prop.geometric(), prop.local() * child.local()};
    for (const GltfPrimitive &primitive : judged.primitives()) {
        const Eigen::Affine3d &map = shows[judged.nodeName(primitive.node) == "Prop" ? 0 : 1];
        std::vector<Vector> found;
        for (const Vector &point : judged.positions(primitive, {}))
            found.push_back(100.0 * point);
        QCOMPARE(found.size(), size_t(4));
        QVERIFY(largestGap({map * Vector(0, 0, 0), map * Vector(160, 0, 0), map * Vector(160, 160, 0),
                            map * Vector(0, 160, 0)},
                           found) < 1e-4);
    }
}

void FbxTransformsTest::scaledToNothing_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("nothing") << 0.0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
}

/// Nobody knows how such a node is turned; what its clip says of its place is kept.
void FbxTransformsTest::scaledToNothing()
{
    QFETCH(double, scale);
    Arm arm;
    FbxSketch sketch;
    const qint64 low = sketch.addLimb("Lower", 0, arm.lower.properties());
    arm.upper.scaling = {scale, scale, scale};
    arm.upper.rotationPivot = {1, 2, 3};
    const qint64 high = sketch.addLimb("Upper", low, arm.upper.properties());
    sketch.bind(sketch.addSquare("Sheet", 0), low, 0.0);
    sketch.addCurve(high, "Lcl Translation", "d|X", {0.0, 1.0}, {0, 10});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path, 1.0);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(ryValidate(file.glb).errors, 0);
    const GltfClipEvaluator clip(file.character->file, 0);
    QCOMPARE(clip.leftOut(), std::vector<std::string>());
    const int upper = file.character->nodeOf(file.bone(QStringLiteral("Upper")));
    const auto xAt = [&](double time) {
        return file.character->file.worldMatrices(clip.pose(time))[size_t(upper)](0, 3);
    };
    QVERIFY(std::abs(xAt(1.0) - xAt(0.0)) > 0.01);
}

void FbxTransformsTest::scaledOtherwise_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Vector>("top"); // scale of the parent's parent
    QTest::addColumn<Vector>("parent");
    QTest::addColumn<Vector>("inClip"); // of the parent
    QTest::addColumn<bool>("isTold");
    const Vector none = Vector::Ones(), even = Vector::Constant(2.0), uneven(1.0, 2.0, 1.0);
    QTest::newRow("usual") << 1 << uneven << uneven << uneven << false;
    QTest::newRow("not of the parent") << 2 << none << even << even << true;
    QTest::newRow("not of the parent, which is not scaled") << 2 << uneven << none << none << false;
    QTest::newRow("not of the parent, scaled by the clip") << 2 << none << none << even << true;
    QTest::newRow("apart") << 0 << none << uneven << uneven << true;
    QTest::newRow("apart from all above") << 0 << uneven << none << none << true;
    QTest::newRow("apart, but alike along all axes") << 0 << even << even << none << false;
    QTest::newRow("apart, uneven in the clip") << 0 << even << even << uneven << true;
}

/// All are scaled along with what is above them; where the file means it otherwise, somebody is told.
void FbxTransformsTest::scaledOtherwise()
{
    QFETCH(int, type);
    QFETCH(Vector, top);
    QFETCH(Vector, parent);
    QFETCH(Vector, inClip);
    QFETCH(bool, isTold);
    const auto scaling = [](const Vector &v) { return FbxSketch::vector("Lcl Scaling", v.x(), v.y(), v.z()); };
    FbxSketch sketch;
    const qint64 high = sketch.addLimb("Bone", 0, {FbxSketch::vector("Lcl Rotation", 10, 40, -30), scaling(top)});
    const qint64 middle = sketch.addLimb("Middle", high, {scaling(parent)});
    const qint64 low = sketch.addLimb("Bone", middle, {FbxSketch::wholeNumber("InheritType", type, "enum")});
    sketch.bind(sketch.addSquare("Sheet", 0), low, 0.0);
    const char *axes[] = {"d|X", "d|Y", "d|Z"};
    for (int axis = 0; axis < 3; ++axis)
        sketch.addCurve(middle, "Lcl Scaling", axes[axis], {0.0, 1.0}, {float(parent[axis]), float(inClip[axis])});
    const QString note = QStringLiteral("Nodes below scaled ones have ways of their own to take on that scale "
                                        "(InheritType), and are scaled along like all others; applying the scales in "
                                        "the program that made the file would help: Bone");
    for (const QByteArray &content : {sketch.bytes(), sketch.text()}) {
        const TextFile text(QStringLiteral("a.fbx"), content);
        const ConvertedFile file(text.path, 1.0);
        QVERIFY2(file.character, qPrintable(file.reason));
        QCOMPARE(file.notes.filter(QStringLiteral("scale")), isTold ? QStringList(note) : QStringList());
    }
}

/// Nothing to do where the other program is not installed.
void FbxTransformsTest::asSeenElsewhere_data()
{
    QTest::addColumn<QString>("path");
    if (!RyBlender::whyNot().isEmpty())
        return;
    for (const Row &row : rows()) {
        if (row.isSeen)
            QTest::newRow(row.name) << m_folder.filePath(QString::fromLatin1(row.name) + QStringLiteral(".fbx"));
    }
}

void FbxTransformsTest::asSeenElsewhere()
{
    QFETCH(QString, path);
    if (!QFileInfo::exists(path)) { // all at once: the other program takes long to start
        QStringList arguments{QStringLiteral("--python"),
                              QStringLiteral(RY_SOURCE_DIR "/tests/foreign_reader/blender_figures.py"),
                              QStringLiteral("--"), QStringLiteral("judge")};
        for (const Row &row : rows()) {
            QFile file(m_folder.filePath(QString::fromLatin1(row.name) + QStringLiteral(".fbx")));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(row.arm.sketch().bytes()) > 0);
            arguments << file.fileName() << file.fileName() + QStringLiteral(".json");
        }
        QString output;
        QVERIFY2(RyBlender::run(arguments, &output), qPrintable(output));
    }
    const ConvertedFile converted(path);
    QVERIFY2(converted.character, qPrintable(converted.reason));
    JudgedFigure judged(path + QStringLiteral(".json"), converted);
    const JudgedFigure::Differences found = judged.compare();
    QCOMPARE(judged.missing, QStringList());
    QCOMPARE(judged.bonesCompared, 2);
    QCOMPARE(judged.verticesCompared, 4);
    QCOMPARE(judged.framesCompared, 10);
    std::cout << QTest::currentDataTag() << ": heads " << found.heads << " weights " << found.weights << " rest "
              << found.rest << " poses " << found.poses << " frames " << found.frames << " of the height\n";
    QVERIFY2(found.heads < 1e-4, qPrintable(QString::number(found.heads)));
    QVERIFY2(found.weights < 1e-3, qPrintable(QString::number(found.weights)));
    QVERIFY2(found.rest < 1e-4, qPrintable(QString::number(found.rest) + found.farthest));
    QVERIFY2(found.poses < 1e-3, qPrintable(QString::number(found.poses)));
    QVERIFY2(found.frames < 1e-3, qPrintable(QString::number(found.frames)));
}

RY_TEST(FbxTransformsTest)
#include "tst_fbx_transforms.moc"
