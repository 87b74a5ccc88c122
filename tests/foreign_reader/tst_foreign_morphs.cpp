#include "evaluator/GltfFileReader.h"
#include "foreign/FbxSketch.h"
#include "foreign_reader/ConvertedFile.h"
#include "io/CharacterScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <algorithm>

namespace {

using Json = nlohmann::json;
using Numbers = std::vector<double>;

bool areNear(const Numbers &a, const Numbers &b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](double x, double y) { return std::abs(x - y) < 1e-5; });
}

QString textOf(const Numbers &numbers)
{
    QStringList all;
    for (const double number : numbers)
        all.append(QString::number(number));
    return all.join(QLatin1Char(' '));
}

#define COMPARE_NUMBERS(found, ...)                                                                                    \
    do {                                                                                                               \
        const Numbers foundNumbers = found;                                                                            \
        QVERIFY2(areNear(foundNumbers, Numbers __VA_ARGS__), qPrintable(textOf(foundNumbers)));                        \
    } while (false)

const Json &meshNamed(const ConvertedFile &file, const std::string &name)
{
    for (const Json &mesh : file.character->file.tree().at("meshes")) {
        if (mesh.at("name") == name)
            return mesh;
    }
    throw std::runtime_error("no mesh has this name");
}

QStringList morphNames(const Json &mesh)
{
    QStringList names;
    for (const Json &name : mesh.at("extras").at("targetNames"))
        names.append(QString::fromStdString(name.get<std::string>()));
    return names;
}

/// What a morph adds to the vertex at the upper left corner of a square, of 1.6 in its own space.
Numbers deltaAt(const ConvertedFile &file, const Json &mesh, size_t morph, const char *attribute)
{
    const Json &primitive = mesh.at("primitives")[0];
    const GltfTable places = file.character->file.accessorValues(primitive.at("attributes").at("POSITION").get<int>());
    const Json &target = primitive.at("targets")[morph];
    if (!target.contains(attribute))
        return {};
    const GltfTable deltas = file.character->file.accessorValues(target[attribute].get<int>());
    for (size_t i = 0; i < places.count; ++i) {
        if (places.row(i)[0] == 0.0 && places.row(i)[1] > 1.0)
            return {deltas.row(i), deltas.row(i) + 3};
    }
    return {};
}

/// Times and numbers of the one channel of weights.
std::pair<Numbers, Numbers> weightKeys(const ConvertedFile &file)
{
    std::pair<Numbers, Numbers> keys;
    const Json &clip = file.character->file.tree().at("animations")[0];
    for (const Json &channel : clip.at("channels")) {
        if (channel.at("target").at("path") != "weights")
            continue;
        const Json &sampler = clip.at("samplers")[channel.at("sampler").get<size_t>()];
        keys.first = file.character->file.accessorValues(sampler.at("input").get<int>()).values;
        keys.second = file.character->file.accessorValues(sampler.at("output").get<int>()).values;
    }
    return keys;
}

} // namespace

/// Shapes, start values and curves of morphs, as the files have them.
class ForeignMorphsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void clipOfSeveral();
    void clipOfMeshOnJoint();
    void sameNames();
    void inBetweens();
    void valuesOfMeshes();
    void normals();
    void textForm();
};

/// Each has keys at its own times; the last has none.
void ForeignMorphsTest::clipOfSeveral()
{
    FbxSketch sketch;
    const qint64 square = sketch.addSquare("Sheet", 0);
    const qint64 first = sketch.addMorph(square, "First", 10.0);
    sketch.addShape(first, "First", {10, 0, 0});
    const qint64 second = sketch.addMorph(square, "Second", 30.0);
    sketch.addShape(second, "Second", {0, 10, 0});
    sketch.addShape(sketch.addMorph(square, "Third", 50.0), "Third", {0, 0, 10});
    sketch.addCurve(first, "DeformPercent", "d|DeformPercent", {0.0, 1.0}, {0, 100});
    sketch.addCurve(second, "DeformPercent", "d|DeformPercent", {0.5, 1.5}, {20, 40});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(morphNames(meshNamed(file, "Sheet")).join(QLatin1Char(' ')), QStringLiteral("First Second Third"));
    COMPARE_NUMBERS(weightKeys(file).first, {0.0, 0.5, 1.0, 1.5});
    COMPARE_NUMBERS(weightKeys(file).second, {0.0, 0.2, 0.5, 0.5, 0.2, 0.5, 1.0, 0.3, 0.5, 1.0, 0.4, 0.5});
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

/// A joint's own mesh is shown by a node below it, which the clip has to drive.
void ForeignMorphsTest::clipOfMeshOnJoint()
{
    FbxSketch sketch;
    const qint64 square = sketch.addSquare("Plate", 0);
    const qint64 morph = sketch.addMorph(square, "Bulge", 0.0);
    sketch.addShape(morph, "Bulge", {0, 0, 10});
    sketch.addCurve(morph, "DeformPercent", "d|DeformPercent", {0.0, 1.0}, {0, 100});
    sketch.bind(sketch.addSquare("Skin", 0), square, 0.0);
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames(), QStringList(QStringLiteral("Plate")));
    const Json &tree = file.character->file.tree();
    QCOMPARE(tree.at("animations")[0].at("channels").size(), size_t(1));
    const auto node = tree.at("animations")[0].at("channels")[0].at("target").at("node").get<size_t>();
    QVERIFY(tree.at("nodes")[node].contains("mesh"));
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

void ForeignMorphsTest::sameNames()
{
    FbxSketch sketch;
    const qint64 square = sketch.addSquare("Sheet", 0);
    sketch.addShape(sketch.addMorph(square, "Smile", 40.0), "Smile", {0, 0, 20});
    const qint64 second = sketch.addMorph(square, "Smile", 70.0);
    sketch.addShape(second, "Smile", {0, 30, 0});
    sketch.addCurve(second, "DeformPercent", "d|DeformPercent", {0.0, 1.0}, {0, 100});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const Json &mesh = meshNamed(file, "Sheet");
    QCOMPARE(morphNames(mesh).join(QLatin1Char(' ')), QStringLiteral("Smile Smile2"));
    COMPARE_NUMBERS(mesh.at("weights").get<Numbers>(), {0.4, 0.7});
    COMPARE_NUMBERS(deltaAt(file, mesh, 0, "POSITION"), {0, 0, 20});
    COMPARE_NUMBERS(deltaAt(file, mesh, 1, "POSITION"), {0, 30, 0});
    COMPARE_NUMBERS(weightKeys(file).second, {0.4, 0.0, 0.4, 1.0});
    QVERIFY(file.notes.contains(QStringLiteral("\"Sheet\" has morphs of one name; 1 of them got numbers")));
}

/// The last shape of a channel is the morph; what a clip drives is counted by channels.
void ForeignMorphsTest::inBetweens()
{
    FbxSketch sketch;
    const qint64 square = sketch.addSquare("Sheet", 0);
    const qint64 first = sketch.addMorph(square, "Lid", 40.0);
    sketch.addShape(first, "LidHalf", {0, 0, 5});
    sketch.addShape(first, "Lid", {0, 0, 20});
    const qint64 second = sketch.addMorph(square, "Brow", 70.0);
    sketch.addShape(second, "Brow", {0, 30, 0});
    sketch.addCurve(second, "DeformPercent", "d|DeformPercent", {0.0, 1.0}, {0, 100});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const Json &mesh = meshNamed(file, "Sheet");
    QCOMPARE(morphNames(mesh).join(QLatin1Char(' ')), QStringLiteral("Lid Brow"));
    COMPARE_NUMBERS(mesh.at("weights").get<Numbers>(), {0.4, 0.7});
    COMPARE_NUMBERS(deltaAt(file, mesh, 0, "POSITION"), {0, 0, 20});
    COMPARE_NUMBERS(weightKeys(file).second, {0.4, 0.0, 0.4, 1.0});
    QVERIFY(file.notes.contains(QStringLiteral(
        "1 shapes that \"Sheet\" passes on its way to morphs are left out; a morph moves in a straight line")));
}

void ForeignMorphsTest::valuesOfMeshes()
{
    FbxSketch sketch;
    sketch.addShape(sketch.addMorph(sketch.addSquare("Face", 0), "Smile", 40.0), "Smile", {0, 0, 20});
    sketch.addShape(sketch.addMorph(sketch.addSquare("Beard", 0), "Smile", 70.0), "Smile", {0, 0, 20});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    COMPARE_NUMBERS(meshNamed(file, "Face").at("weights").get<Numbers>(), {0.4});
    COMPARE_NUMBERS(meshNamed(file, "Beard").at("weights").get<Numbers>(), {0.7});
}

/// They are there where a shape turns them, and for all morphs of the mesh then.
void ForeignMorphsTest::normals()
{
    FbxSketch sketch;
    const qint64 turned = sketch.addSquare("Turned", 0);
    sketch.addShape(sketch.addMorph(turned, "A", 0.0), "A", {0, 0, 20}, {0, 1, 0});
    sketch.addShape(sketch.addMorph(turned, "B", 0.0), "B", {0, 0, 20});
    sketch.addShape(sketch.addMorph(sketch.addSquare("Kept", 0), "A", 0.0), "A", {0, 0, 20});
    const TextFile text(QStringLiteral("a.fbx"), sketch.bytes());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const double diagonal = std::sqrt(0.5);
    COMPARE_NUMBERS(deltaAt(file, meshNamed(file, "Turned"), 0, "NORMAL"), {0.0, diagonal, diagonal - 1.0});
    COMPARE_NUMBERS(deltaAt(file, meshNamed(file, "Turned"), 1, "NORMAL"), {0.0, 0.0, 0.0});
    COMPARE_NUMBERS(deltaAt(file, meshNamed(file, "Kept"), 0, "NORMAL"), {});
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

/// Of which the values are not known; that is said.
void ForeignMorphsTest::textForm()
{
    FbxSketch sketch;
    sketch.addShape(sketch.addMorph(sketch.addSquare("Sheet", 0), "Wide", 40.0), "Wide", {5, 0, 0});
    const TextFile text(QStringLiteral("a.fbx"), sketch.text());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    COMPARE_NUMBERS(meshNamed(file, "Sheet").at("weights").get<Numbers>(), {0.0});
    QVERIFY2(file.notes.contains(QStringLiteral("The file is in text form, of which the values of morphs are not read: "
                                                "the morphs of \"Sheet\" start at 0. Binary FBX keeps them")),
             qPrintable(file.notes.join(QLatin1Char('\n'))));
}

RY_TEST(ForeignMorphsTest)
#include "tst_foreign_morphs.moc"
