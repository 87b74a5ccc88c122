#include "evaluator/GltfFileReader.h"
#include "foreign/FbxSketch.h"
#include "foreign/ForeignSketch.h"
#include "foreign_reader/ConvertedFile.h"
#include "io/CharacterScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryforeign/RyForeignRead.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace {

using Json = nlohmann::json;
using Numbers = std::vector<double>;

/// A bone that moves a square, and one above it.
struct Figure
{
    FbxSketch sketch;
    qint64 upper = 0;

    explicit Figure(const FbxSketch::Properties &properties = {})
    {
        const qint64 lower = sketch.addLimb("Lower", 0, {});
        FbxSketch::Properties all = properties;
        all.push_back(FbxSketch::vector("Lcl Translation", 0, 80, 0));
        upper = sketch.addLimb("Upper", lower, all);
        const qint64 square = sketch.addSquare("Sheet", 0);
        sketch.bind(square, lower, 0, {0, 1});
        sketch.bind(square, upper, 80, {2, 3});
    }
};

/// Times and numbers of the channel of a clip that drives a joint; empty where there is none.
std::pair<Numbers, Numbers> keysOf(const ConvertedFile &file, size_t clip, const char *path,
                                   const char *joint = "Upper")
{
    const GltfEvaluator &judged = file.character->file;
    const Json &animation = judged.tree().at("animations")[clip];
    for (const Json &channel : animation.at("channels")) {
        const Json &target = channel.at("target");
        if (target.at("path") != path || judged.nodeName(target.at("node").get<int>()) != joint)
            continue;
        const Json &sampler = animation.at("samplers")[channel.at("sampler").get<size_t>()];
        return {judged.accessorValues(sampler.at("input").get<int>()).values,
                judged.accessorValues(sampler.at("output").get<int>()).values};
    }
    return {};
}

bool isNear(const Numbers &a, const Numbers &b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (!(std::abs(a[i] - b[i]) < 1e-5))
            return false;
    }
    return true;
}

} // namespace

Q_DECLARE_METATYPE(Numbers)

/// Clips of foreign files, and what of a file does not come along.
class ForeignClipsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void twoOfOneName();
    void scales();
    void curvesOfTheirOwn();
    void takesOfTheirOwn_data();
    void takesOfTheirOwn();
    void takeInText();
    void curvesOfCollada();
    void leftOut_data();
    void leftOut();
    void ownProperties();
    void leftOutOfText();
    void leftOutOfCollada();
};

/// Each has its own keys; both keep the name.
void ForeignClipsTest::twoOfOneName()
{
    Figure figure;
    figure.sketch.startClip("Wave");
    figure.sketch.addCurve(figure.upper, "Lcl Translation", "d|X", {0.0, 1.0}, {0, 10});
    figure.sketch.startClip("Wave");
    figure.sketch.addCurve(figure.upper, "Lcl Translation", "d|X", {0.0, 2.0}, {0, -30});
    const TextFile text(QStringLiteral("a.fbx"), figure.sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const Json &clips = file.character->file.tree().at("animations");
    QCOMPARE(clips.size(), size_t(2));
    for (const Json &clip : clips)
        QCOMPARE(QString::fromStdString(clip.at("name").get<std::string>()), QStringLiteral("Wave"));
    const auto first = keysOf(file, 0, "translation"), second = keysOf(file, 1, "translation");
    QVERIFY(!first.first.empty() && !second.first.empty());
    QVERIFY(std::abs(first.first.back() - 1.0) < 1e-5 && std::abs(second.first.back() - 2.0) < 1e-5);
    const Numbers firstEnd(first.second.end() - 3, first.second.end()),
        secondEnd(second.second.end() - 3, second.second.end());
    QVERIFY(isNear(firstEnd, {10, 80, 0}));
    QVERIFY(isNear(secondEnd, {-30, 80, 0}));
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

/// A curve of one axis leaves the others as the node has them.
void ForeignClipsTest::scales()
{
    Figure figure({FbxSketch::vector("Lcl Scaling", 1, 1.5, 1)});
    figure.sketch.addCurve(figure.upper, "Lcl Scaling", "d|X", {0.0, 0.5, 1.0}, {1, 2, 0.5});
    const TextFile text(QStringLiteral("a.fbx"), figure.sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const auto keys = keysOf(file, 0, "scale");
    QVERIFY(isNear(keys.first, {0.0, 0.5, 1.0}));
    QVERIFY(isNear(keys.second, {1, 1.5, 1, 2, 1.5, 1, 0.5, 1.5, 1}));
}

/// Of one node: before its first key and after its last one a curve has what stands there.
void ForeignClipsTest::curvesOfTheirOwn()
{
    Figure figure;
    figure.sketch.addCurve(figure.upper, "Lcl Translation", "d|X", {0.0, 1.0, 2.0}, {0, 10, 20});
    figure.sketch.addCurve(figure.upper, "Lcl Translation", "d|Y", {0.5, 1.5}, {80, 90});
    figure.sketch.addCurve(figure.upper, "Lcl Scaling", "d|X", {0.75, 1.25}, {1, 2});
    const TextFile text(QStringLiteral("a.fbx"), figure.sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const Numbers all{0.0, 0.5, 0.75, 1.0, 1.25, 1.5, 2.0};
    const auto places = keysOf(file, 0, "translation"), scales = keysOf(file, 0, "scale");
    QVERIFY(isNear(places.first, all));
    QVERIFY(isNear(places.second, {0, 80, 0, 5, 80, 0, 7.5, 82.5, 0, 10, 85, 0, 12.5, 87.5, 0, 15, 90, 0, 20, 90, 0}));
    QVERIFY(isNear(scales.first, all));
    QVERIFY(isNear(scales.second, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1.5, 1, 1, 2, 1, 1, 2, 1, 1, 2, 1, 1}));
}

void ForeignClipsTest::takesOfTheirOwn_data()
{
    QTest::addColumn<Numbers>("seconds");
    QTest::addColumn<Numbers>("range"); // none where the file says none
    QTest::addColumn<Numbers>("times");
    QTest::newRow("late") << Numbers{2.0, 3.5} << Numbers() << Numbers{0.0, 1.5};
    QTest::newRow("before 0") << Numbers{-1.0, 0.5} << Numbers() << Numbers{0.0, 1.5};
    QTest::newRow("late in its range") << Numbers{2.0, 3.5} << Numbers{1.5, 4.0} << Numbers{0.0, 1.5};
    QTest::newRow("keys around its range") << Numbers{2.0, 3.5} << Numbers{3.0, 3.25} << Numbers{0.0, 1.5};
}

/// Each begins at 0 with its first key, and has all of them, whatever range the file says.
void ForeignClipsTest::takesOfTheirOwn()
{
    QFETCH(Numbers, seconds);
    QFETCH(Numbers, range);
    QFETCH(Numbers, times);
    Figure figure;
    figure.sketch.startClip("First");
    figure.sketch.addCurve(figure.upper, "Lcl Translation", "d|X", {0.0, 1.0}, {0, 10});
    figure.sketch.startClip("Second", range);
    figure.sketch.addCurve(figure.upper, "Lcl Translation", "d|X", seconds, {5, -30});
    const TextFile text(QStringLiteral("a.fbx"), figure.sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QVERIFY(isNear(keysOf(file, 0, "translation").first, {0.0, 1.0}));
    const auto keys = keysOf(file, 1, "translation");
    QVERIFY(isNear(keys.first, times));
    QVERIFY(isNear(keys.second, {5, 80, 0, -30, 80, 0}));
}

void ForeignClipsTest::takeInText()
{
    Figure figure;
    figure.sketch.startClip("Take", {-2.0, -1.0});
    figure.sketch.addCurve(figure.upper, "Lcl Translation", "d|X", {1.0, 2.0}, {0, 10});
    const TextFile text(QStringLiteral("a.fbx"), figure.sketch.text());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const auto keys = keysOf(file, 0, "translation");
    QVERIFY(isNear(keys.first, {0.0, 1.0}));
    QVERIFY(isNear(keys.second, {0, 80, 0, 10, 80, 0}));
}

/// As those of FBX: straight lines, and what stands at the first and the last key beyond them.
void ForeignClipsTest::curvesOfCollada()
{
    QByteArray content = ForeignSketch::collada();
    const int from = content.indexOf("<animation id="), to = content.indexOf("</library_animations>");
    QByteArray bend = content.mid(from, to - from); // of 45 degrees, from 0 to 1
    QByteArray rise = bend;
    bend.replace("LINEAR LINEAR", "LINEAR STEP");
    rise.replace("bend", "rise").replace("count=\"2\">0 1<", "count=\"2\">0.5 1.5<").replace(">0 45<", ">0.8 1<");
    rise.replace("lower/turn.ANGLE", "lower/place.Y");
    const TextFile text(QStringLiteral("a.dae"), content.replace(from, to - from, bend + rise));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const auto places = keysOf(file, 0, "translation", "lower"), turns = keysOf(file, 0, "rotation", "lower");
    QVERIFY(isNear(places.first, {0.0, 0.5, 1.0, 1.5}));
    QVERIFY(isNear(places.second, {0, 0.8, 0, 0, 0.8, 0, 0, 0.9, 0, 0, 1.0, 0}));
    QVERIFY(isNear(turns.first, {0.0, 0.5, 1.0, 1.5}));
    const double half = 22.5 * M_PI / 360.0, whole = 2.0 * half;
    QVERIFY(isNear(turns.second, {0, 0, 0, 1, std::sin(half), 0, 0, std::cos(half), std::sin(whole), 0, 0,
                                  std::cos(whole), std::sin(whole), 0, 0, std::cos(whole)}));
}

void ForeignClipsTest::leftOut_data()
{
    QTest::addColumn<int>("constraints");
    QTest::addColumn<bool>("hasOwn");
    QTest::addColumn<QStringList>("notes");
    QTest::newRow("nothing") << 0 << false << QStringList();
    QTest::newRow("constraints")
        << 2 << false
        << QStringList{QStringLiteral(
               "Constraints are left out; what they move stays where the file shows it: Hold 1, Hold 2")};
    QTest::newRow("many") << 12 << false
                          << QStringList{QStringLiteral(
                                 "Constraints are left out; what they move stays where the file shows it: Hold 1, Hold "
                                 "2, Hold 3, Hold 4, Hold 5, Hold 6, Hold 7, Hold 8, Hold 9, Hold 10 and 2 more")};
    QTest::newRow("properties") << 0 << true
                                << QStringList{QStringLiteral(
                                       "Properties that were added to nodes are left out: stiffness of Upper")};
}

void ForeignClipsTest::leftOut()
{
    QFETCH(int, constraints);
    QFETCH(bool, hasOwn);
    QFETCH(QStringList, notes);
    Figure figure(hasOwn ? FbxSketch::Properties{FbxSketch::ownProperty("stiffness", 0.5)} : FbxSketch::Properties());
    for (int i = 1; i <= constraints; ++i)
        figure.sketch.addConstraint(("Hold " + std::to_string(i)).c_str());
    const TextFile text(QStringLiteral("a.fbx"), figure.sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.notes.filter(QStringLiteral("left out")), notes);
}

/// By their names: they are what somebody misses. Those of many nodes are counted, and a few stand for all.
void ForeignClipsTest::ownProperties()
{
    FbxSketch sketch;
    FbxSketch::Properties properties{FbxSketch::ownProperty("side", 1.0)};
    const qint64 root = sketch.addLimb("Root", 0, properties);
    for (int i = 1; i <= 11; ++i)
        properties.push_back(FbxSketch::ownProperty(("p" + std::to_string(i)).c_str(), 0.5));
    properties.push_back(FbxSketch::vector("Lcl Translation", 0, 80, 0));
    sketch.addLimb("Spine", root, properties);
    sketch.addLimb("Tail", root, {FbxSketch::ownProperty("p2", 2.0), FbxSketch::ownProperty("side", 2.0)});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(
        file.notes.filter(QStringLiteral("left out")),
        QStringList{QStringLiteral("Properties that were added to nodes are left out: side of 3 nodes, p1 of Spine, "
                                   "p2 of 2 nodes, p3 of Spine, p4 of Spine, p5 of Spine, p6 of Spine, p7 of Spine, "
                                   "p8 of Spine, p9 of Spine and 2 more")});
}

void ForeignClipsTest::leftOutOfText()
{
    const TextFile text(QStringLiteral("a.fbx"),
                        "; FBX 7.4.0 project file\nFBXHeaderExtension:  {\nFBXHeaderVersion: 1003\nFBXVersion: "
                        "7400\n}\nObjects:  {\nModel: 1, \"Model::Hip\", \"LimbNode\" {\n}\nConstraint: 2, "
                        "\"Constraint::Aim\", \"Aim\" {\n}\n}\nConnections:  {\nC: \"OO\",1,0\n}\n");
    RyForeignRequest request;
    request.path = text.path;
    RyForeignResult file;
    QVERIFY2(ryReadForeign(request, file), qPrintable(file.error));
    QVERIFY2(file.notes.contains(
                 QStringLiteral("Constraints are left out; what they move stays where the file shows it: Aim")),
             qPrintable(file.notes.join(QLatin1Char('\n'))));
}

void ForeignClipsTest::leftOutOfCollada()
{
    const TextFile text(
        QStringLiteral("a.dae"),
        "<?xml version=\"1.0\"?><COLLADA xmlns=\"http://www.collada.org/2005/11/COLLADASchema\" version=\"1.4.1\">"
        "<asset><unit meter=\"1\"/><up_axis>Y_UP</up_axis></asset><library_physics_models><physics_model id=\"pm\"/>"
        "</library_physics_models><library_visual_scenes><visual_scene id=\"s\"><node id=\"hip\" name=\"Hip\" "
        "type=\"JOINT\"><extra><technique profile=\"rigger\"><node name=\"not one\"/><layer>3</layer></technique>"
        "<technique profile=\"other\"/></extra><node id=\"knee\" name=\"Knee\" type=\"JOINT\"/></node>"
        "</visual_scene></library_visual_scenes><scene><instance_visual_scene url=\"#s\"/></scene></COLLADA>");
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames(), (QStringList{QStringLiteral("Hip"), QStringLiteral("Knee")}));
    QCOMPARE(file.notes.filter(QStringLiteral("left out")),
             (QStringList{QStringLiteral("What these programs keep aside in a Collada file is left out: rigger, other"),
                          QStringLiteral("These parts of the Collada file are left out: library_physics_models")}));
}

RY_TEST(ForeignClipsTest)
#include "tst_foreign_clips.moc"
