#include "foreign_reader/ConvertedFile.h"
#include "io/CharacterScene.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <QRegularExpression>

namespace {

/// A square, 1.6 units high, that two of four joints move; two joints have one name. Beside the skeleton, a node that
/// is no joint hangs on it.
QByteArray square(const QByteArray &metre, const QByteArray &up)
{
    const bool isZUp = up == "Z_UP";
    const QByteArray corners =
        isZUp ? "-0.8 0 0 0.8 0 0 0.8 0 1.6 -0.8 0 1.6" : "-0.8 0 0 0.8 0 0 0.8 1.6 0 -0.8 1.6 0";
    const QByteArray step = isZUp ? "0 0 0.8" : "0 0.8 0";
    const QByteArray back = isZUp ? "1 0 0 0 0 1 0 0 0 0 1 -0.8 0 0 0 1" : "1 0 0 0 0 1 0 -0.8 0 0 1 0 0 0 0 1";
    return "<?xml version=\"1.0\"?><COLLADA xmlns=\"http://www.collada.org/2005/11/COLLADASchema\" version=\"1.4.1\">"
           "<asset><unit meter=\"" +
           metre + "\"/><up_axis>" + up +
           "</up_axis></asset>"
           "<library_geometries><geometry id=\"g\" name=\"Sheet\"><mesh><source id=\"p\"><float_array id=\"pa\" "
           "count=\"12\">" +
           corners +
           "</float_array><technique_common><accessor source=\"#pa\" count=\"4\" stride=\"3\"><param name=\"X\" "
           "type=\"float\"/><param name=\"Y\" type=\"float\"/><param name=\"Z\" type=\"float\"/></accessor>"
           "</technique_common></source><vertices id=\"v\"><input semantic=\"POSITION\" source=\"#p\"/></vertices>"
           "<polylist count=\"1\"><input semantic=\"VERTEX\" source=\"#v\" offset=\"0\"/><vcount>4</vcount>"
           "<p>0 1 2 3</p></polylist></mesh></geometry></library_geometries>"
           "<library_controllers><controller id=\"c\"><skin source=\"#g\"><bind_shape_matrix>1 0 0 0 0 1 0 0 0 0 1 0 0 "
           "0 "
           "0 1</bind_shape_matrix><source id=\"j\"><Name_array id=\"ja\" count=\"2\">low high</Name_array>"
           "<technique_common><accessor source=\"#ja\" count=\"2\" stride=\"1\"><param name=\"JOINT\" type=\"name\"/>"
           "</accessor></technique_common></source><source id=\"b\"><float_array id=\"ba\" count=\"32\">1 0 0 0 0 1 0 "
           "0 "
           "0 0 1 0 0 0 0 1 " +
           back +
           "</float_array><technique_common><accessor source=\"#ba\" count=\"2\" stride=\"16\"><param "
           "name=\"TRANSFORM\" type=\"float4x4\"/></accessor></technique_common></source><source id=\"w\">"
           "<float_array id=\"wa\" count=\"3\">1 0.25 0.75</float_array><technique_common><accessor source=\"#wa\" "
           "count=\"3\" stride=\"1\"><param name=\"WEIGHT\" type=\"float\"/></accessor></technique_common></source>"
           "<joints><input semantic=\"JOINT\" source=\"#j\"/><input semantic=\"INV_BIND_MATRIX\" source=\"#b\"/>"
           "</joints><vertex_weights count=\"4\"><input semantic=\"JOINT\" source=\"#j\" offset=\"0\"/><input "
           "semantic=\"WEIGHT\" source=\"#w\" offset=\"1\"/><vcount>1 1 2 2</vcount><v>0 0 0 0 0 1 1 2 0 1 1 2</v>"
           "</vertex_weights></skin></controller></library_controllers>"
           "<library_visual_scenes><visual_scene id=\"s\" name=\"Stage\"><node id=\"rig\" name=\"Rig\">"
           "<node id=\"id-low\" sid=\"low\" name=\"Bone\" type=\"JOINT\"><node id=\"id-high\" sid=\"high\" "
           "name=\"Bone\" type=\"JOINT\"><translate>" +
           step + "</translate><node id=\"id-tip\" sid=\"tip\" name=\"Tip\" type=\"JOINT\"><translate>" + step +
           "</translate><node id=\"id-tip-end\" name=\"Tip_end\" type=\"JOINT\"><translate>" + step +
           "</translate></node></node></node><node id=\"id-hook\" name=\"Hook\"/></node></node>"
           "<node id=\"m\" name=\"Sheet\"><instance_controller url=\"#c\"><skeleton>#id-low</skeleton>"
           "</instance_controller></node></visual_scene></library_visual_scenes>"
           "<scene><instance_visual_scene url=\"#s\"/></scene></COLLADA>";
}

} // namespace

/// Names, joints, unit and axes of Collada files.
class ColladaFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void namesAndJoints();
    void unitAndAxes_data();
    void unitAndAxes();
    void weights();
    void morphs_data();
    void morphs();
    void nodesWithoutIds();
    void onlyTheFilesOwnUnitCounts();
};

void ColladaFilesTest::namesAndJoints()
{
    const TextFile text(QStringLiteral("Banner.dae"), square("1", "Y_UP"));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    // No ids, the second of two equal names numbered; the tip moves nothing and is a bone, what marks its end is none.
    QCOMPARE(file.boneNames(), (QStringList{QStringLiteral("Bone"), QStringLiteral("Bone2"), QStringLiteral("Tip")}));
    QCOMPARE(file.bone(QStringLiteral("Tip"))->getSkeleton()->getName(), QStringLiteral("Rig"));
    QVERIFY((file.bone(QStringLiteral("Tip"))->getEndPoint() - RyVec3(0, 240, 0)).length() < 1e-3f);
    QVERIFY((file.bone(QStringLiteral("Bone2"))->getOrigin() - RyVec3(0, 80, 0)).length() < 1e-3f);
    for (const RyBone *bone : file.character->bones())
        QVERIFY(!bone->isPosed());
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

void ColladaFilesTest::unitAndAxes_data()
{
    QTest::addColumn<QByteArray>("metre");
    QTest::addColumn<QByteArray>("up");
    QTest::addColumn<double>("chosen");
    QTest::addColumn<float>("height");
    QTest::newRow("metres") << QByteArray("1") << QByteArray("Y_UP") << 0.0 << 160.0f;
    QTest::newRow("two metres, Z up") << QByteArray("2") << QByteArray("Z_UP") << 0.0 << 320.0f;
    QTest::newRow("a wrong unit") << QByteArray("0.01") << QByteArray("Y_UP") << 0.0 << 160.0f;
    QTest::newRow("a chosen unit") << QByteArray("0.01") << QByteArray("Z_UP") << 30.0 << 48.0f;
}

void ColladaFilesTest::unitAndAxes()
{
    QFETCH(QByteArray, metre);
    QFETCH(QByteArray, up);
    QFETCH(double, chosen);
    QFETCH(float, height);
    const TextFile text(QStringLiteral("a.dae"), square(metre, up));
    const ConvertedFile file(text.path, chosen);
    QVERIFY2(file.character, qPrintable(file.reason));
    const RyVec3 tip = file.bone(QStringLiteral("Tip"))->getOrigin();
    QVERIFY2((tip - RyVec3(0, height, 0)).length() < 1e-3f, qPrintable(QString::number(tip.y)));
    QVERIFY(std::abs(file.character->height - double(height)) < 1e-3);
}

void ColladaFilesTest::weights()
{
    const TextFile text(QStringLiteral("a.dae"), square("1", "Y_UP"));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const GltfEvaluator &judged = file.character->file;
    QCOMPARE(judged.primitives().size(), size_t(1));
    const auto points = judged.restPositions(judged.primitives()[0]);
    const auto influences = judged.influences(judged.primitives()[0]);
    QCOMPARE(points.size(), size_t(4));
    for (size_t i = 0; i < points.size(); ++i) {
        double high = 0.0;
        for (const GltfInfluence &influence : influences[i]) {
            if (judged.nodeName(judged.parent(influence.joint)) == "Bone")
                high += influence.weight;
        }
        QCOMPARE(high, points[i].y() > 1.0 ? 0.75 : 0.0);
    }
}

void ColladaFilesTest::morphs_data()
{
    QTest::addColumn<QByteArray>("skinned");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("below a skin") << QByteArray("#mo") << QByteArray("#c");
    QTest::newRow("beside a skin") << QByteArray("#g") << QByteArray("#c");
    QTest::newRow("alone") << QByteArray("#g") << QByteArray("#mo");
}

/// The importers' library leaves such meshes out or refuses the file.
void ColladaFilesTest::morphs()
{
    QFETCH(QByteArray, skinned);
    QFETCH(QByteArray, shown);
    QByteArray content = square("1", "Y_UP");
    content.replace("<skin source=\"#g\">", "<skin source=\"" + skinned + "\">");
    content.replace("<instance_controller url=\"#c\">", "<instance_controller url=\"" + shown + "\">");
    content.replace("<library_controllers>",
                    "<library_controllers><controller id=\"mo\" name=\"Wide\"><morph source=\"#g\" "
                    "method=\"RELATIVE\"><source id=\"mt\"><IDREF_array id=\"mta\" count=\"1\">g</IDREF_array>"
                    "<technique_common><accessor source=\"#mta\" count=\"1\" stride=\"1\"><param "
                    "name=\"MORPH_TARGET\" type=\"IDREF\"/></accessor></technique_common></source><source id=\"mw\">"
                    "<float_array id=\"mwa\" count=\"1\">0.25</float_array><technique_common><accessor "
                    "source=\"#mwa\" count=\"1\" stride=\"1\"><param name=\"MORPH_WEIGHT\" type=\"float\"/>"
                    "</accessor></technique_common></source><targets><input semantic=\"MORPH_TARGET\" "
                    "source=\"#mt\"/><input semantic=\"MORPH_WEIGHT\" source=\"#mw\"/></targets></morph>"
                    "</controller>");
    const TextFile text(QStringLiteral("a.dae"), content);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.character->bones().size(), size_t(3));
    QCOMPARE(file.character->file.primitives().size(), size_t(1));
    QCOMPARE(file.character->file.restPositions(file.character->file.primitives()[0]).size(), size_t(4));
    const auto &mesh = file.character->file.tree().at("meshes")[0];
    QCOMPARE(mesh.contains("weights"), true);
    QCOMPARE(QString::fromStdString(mesh.at("extras").at("targetNames").dump()), QStringLiteral("[\"Sheet\"]"));
}

/// They are told apart by their places: names and joints stay, one that only an instance brings along too.
void ColladaFilesTest::nodesWithoutIds()
{
    QByteArray content = square("1", "Y_UP");
    content.replace("<node id=\"id-tip\" sid=\"tip\" name=\"Tip\"", "<node name=\"Tip\"");
    content.replace("<node id=\"id-hook\" name=\"Hook\"/>",
                    "<node/><node name=\"Hook\"><instance_node url=\"#lent\"/></node>");
    content.replace("<library_visual_scenes>", "<library_nodes><node id=\"lent\" name=\"Lent\"><node name=\"Inner\"/>"
                                               "</node></library_nodes><library_visual_scenes>");
    const TextFile text(QStringLiteral("Banner.dae"), content);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames(), (QStringList{QStringLiteral("Bone"), QStringLiteral("Bone2"), QStringLiteral("Tip")}));
    QStringList nodes;
    for (const nlohmann::json &node : file.character->file.tree()["nodes"])
        nodes.append(QString::fromStdString(node["name"].get<std::string>()));
    for (const char *name : {"Tip", "Hook", "Lent", "Inner"})
        QVERIFY2(nodes.contains(QLatin1String(name)), qPrintable(nodes.join(QLatin1Char(' '))));
    QCOMPARE(nodes.filter(QStringLiteral("$")), QStringList());
    QCOMPARE(nodes.filter(QRegularExpression(QStringLiteral("^Node \\d+$"))).size(), 1);
}

/// A library's, an extra's and a second one do not.
void ColladaFilesTest::onlyTheFilesOwnUnitCounts()
{
    QByteArray content = square("0.01", "Y_UP");
    content.replace("</asset>", "<extra><unit meter=\"3\"/></extra></asset>");
    content.replace("<library_controllers>", "<library_controllers><asset><unit meter=\"5\"/></asset>");
    content.replace("<scene>", "<extra><technique profile=\"X\"><unit meter=\"7\"/><node name=\"None\"/></technique>"
                               "</extra><scene>");
    const TextFile text(QStringLiteral("a.dae"), content);
    const ConvertedFile file(text.path, 30.0);
    QVERIFY2(file.character, qPrintable(file.reason));
    const RyVec3 tip = file.bone(QStringLiteral("Tip"))->getOrigin();
    QVERIFY2((tip - RyVec3(0, 48, 0)).length() < 1e-3f, qPrintable(QString::number(tip.y)));
}

RY_TEST(ColladaFilesTest)
#include "tst_collada_files.moc"
