#include "evaluator/GltfFileReader.h"
#include "foreign_reader/ConvertedFile.h"
#include "io/CharacterScene.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <array>
#include <set>

namespace {

using Json = nlohmann::json;
/// Where a vertex lies and what a morph adds to it.
using Moved = std::array<double, 6>;

/// What is said of numbers or words after them: how many there are, and what each is called.
QByteArray accessor(const QByteArray &id, int count, int stride)
{
    static const QByteArray names[] = {"<param name=\"X\" type=\"float\"/>", "<param name=\"Y\" type=\"float\"/>",
                                       "<param name=\"Z\" type=\"float\"/>"};
    QByteArray all = "<technique_common><accessor source=\"#" + id + "-a\" count=\"" + QByteArray::number(count) +
                     "\" stride=\"" + QByteArray::number(stride) + "\">";
    for (int i = 0; i < std::min(stride, 3); ++i)
        all += names[i];
    return all + "</accessor></technique_common></source>";
}

QByteArray floats(const QByteArray &id, const QByteArray &numbers, int stride)
{
    const int count = numbers.simplified().count(' ') + 1;
    return "<source id=\"" + id + "\"><float_array id=\"" + id + "-a\" count=\"" + QByteArray::number(count) + "\">" +
           numbers + "</float_array>" + accessor(id, count / stride, stride);
}

QByteArray words(const QByteArray &kind, const QByteArray &id, const QByteArray &list)
{
    const int count = list.count(' ') + 1;
    return "<source id=\"" + id + "\"><" + kind + " id=\"" + id + "-a\" count=\"" + QByteArray::number(count) + "\">" +
           list + "</" + kind + '>' + accessor(id, count, 1);
}

/// Lips: an upper and a lower square that meet at y = 1 and are not joined, and a triangle in a list of its own. The
/// second number of each corner is one of a normal.
QByteArray geometry(const QByteArray &id, const QByteArray &name, const QByteArray &points)
{
    return "<geometry id=\"" + id + "\" name=\"" + name + "\"><mesh>" + floats(id + "-p", points, 3) +
           floats(id + "-n", "0 0 1", 3) + "<vertices id=\"" + id + "-v\"><input semantic=\"POSITION\" source=\"#" +
           id + "-p\"/></vertices><triangles count=\"1\"><input semantic=\"NORMAL\" source=\"#" + id +
           "-n\" offset=\"0\"/><input semantic=\"VERTEX\" source=\"#" + id +
           "-v\" offset=\"1\"/><p>0 8 0 9 0 0</p></triangles><polylist count=\"2\"><input semantic=\"VERTEX\" "
           "source=\"#" +
           id + "-v\" offset=\"0\"/><input semantic=\"NORMAL\" source=\"#" + id +
           "-n\" offset=\"1\"/><vcount>4 4</vcount><p>0 0 1 0 2 0 3 0 4 0 5 0 6 0 7 0</p></polylist></mesh></geometry>";
}

constexpr char Base[] = "0 0 0 1 0 0 1 1 0 0 1 0 0 1 0 1 1 0 1 2 0 0 2 0 0 -1 0 1 -1 0";
constexpr char Open[] = "0 0 0 1 0 0 1 0.75 0 0 0.75 0 0 1.5 0 1 1.5 0 1 2 0 0 2 0 0 -1 0 1 -1 0";
constexpr char OpenDeltas[] = "0 0 0 0 0 0 0 -0.25 0 0 -0.25 0 0 0.5 0 0 0.5 0 0 0 0 0 0 0 0 0 0 0 0 0";
constexpr char Wide[] = "0 0 0 1 0 0 1 1 0 0 1 0 0 1 0 1 1 0 1 2 0 0 2 0 0 -1 3 1 -1 3";
constexpr char WideDeltas[] = "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 3 0 0 3";

QByteArray lips(bool isRelative, bool isSkinned, const QByteArray &behind = QByteArray(),
                const QByteArray &more = QByteArray())
{
    const QByteArray one = "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1";
    QByteArray all =
        "<?xml version=\"1.0\"?><COLLADA xmlns=\"http://www.collada.org/2005/11/COLLADASchema\" version=\"1.4.1\">"
        "<asset><unit meter=\"1\"/><up_axis>Y_UP</up_axis></asset>" +
        behind + "<library_geometries>" + geometry("lips", "Lips", Base) +
        geometry("lips-open", "Open", isRelative ? OpenDeltas : Open) +
        geometry("lips-wide", "", QByteArray(isRelative ? WideDeltas : Wide) + more) +
        "</library_geometries><library_controllers><controller id=\"mo\"><morph source=\"#lips\" method=\"" +
        (isRelative ? "RELATIVE" : "NORMALIZED") + "\">" + words("IDREF_array", "mo-t", "lips-open lips-wide") +
        floats("mo-w", "0.25 0", 1) +
        "<targets><input semantic=\"MORPH_TARGET\" source=\"#mo-t\"/><input semantic=\"MORPH_WEIGHT\" "
        "source=\"#mo-w\"/></targets></morph></controller><controller id=\"sk\"><skin source=\"#mo\">" +
        words("Name_array", "sk-j", "jaw") + floats("sk-b", one, 16) + floats("sk-w", "1", 1) +
        "<joints><input semantic=\"JOINT\" source=\"#sk-j\"/><input semantic=\"INV_BIND_MATRIX\" source=\"#sk-b\"/>"
        "</joints><vertex_weights count=\"10\"><input semantic=\"JOINT\" source=\"#sk-j\" offset=\"0\"/><input "
        "semantic=\"WEIGHT\" source=\"#sk-w\" offset=\"1\"/><vcount>1 1 1 1 1 1 1 1 1 1</vcount><v>0 0 0 0 0 0 0 0 0 0 "
        "0 0 0 0 0 0 0 0 0 0</v></vertex_weights></skin></controller></library_controllers>"
        "<library_visual_scenes><visual_scene id=\"s\"><node id=\"jaw\" sid=\"jaw\" name=\"Jaw\" type=\"JOINT\"/>"
        "<node id=\"m\" name=\"Mouth\"><instance_controller url=\"#" +
        (isSkinned ? "sk" : "mo") +
        "\"/></node></visual_scene></library_visual_scenes><scene><instance_visual_scene "
        "url=\"#s\"/></scene></COLLADA>";
    return all;
}

/// What vertices a morph of the file's only mesh moves, of all its primitives.
std::multiset<Moved> movedBy(const ConvertedFile &file, size_t morph)
{
    std::multiset<Moved> all;
    const GltfEvaluator &judged = file.character->file;
    for (const Json &primitive : judged.tree().at("meshes")[0].at("primitives")) {
        const GltfTable places = judged.accessorValues(primitive.at("attributes").at("POSITION").get<int>());
        const GltfTable deltas = judged.accessorValues(primitive.at("targets")[morph].at("POSITION").get<int>());
        for (size_t i = 0; i < places.count; ++i) {
            const auto *place = places.row(i), *delta = deltas.row(i);
            if (delta[0] != 0.0 || delta[1] != 0.0 || delta[2] != 0.0)
                all.insert({place[0], place[1], place[2], delta[0], delta[1], delta[2]});
        }
    }
    return all;
}

} // namespace

/// Morphs of Collada files: what the importers' library drops comes from the text.
class ColladaMorphsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void comeAlong_data();
    void comeAlong();
    void losses_data();
    void losses();
    void withoutEnd_data();
    void withoutEnd();
};

void ColladaMorphsTest::comeAlong_data()
{
    QTest::addColumn<bool>("isRelative");
    QTest::addColumn<bool>("isSkinned");
    QTest::newRow("where it ends up, alone") << false << false;
    QTest::newRow("where it ends up, below a skin") << false << true;
    QTest::newRow("what is added, alone") << true << false;
    QTest::newRow("what is added, below a skin") << true << true;
}

void ColladaMorphsTest::comeAlong()
{
    QFETCH(bool, isRelative);
    QFETCH(bool, isSkinned);
    const TextFile text(QStringLiteral("a.dae"), lips(isRelative, isSkinned));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const Json &mesh = file.character->file.tree().at("meshes")[0];
    QCOMPARE(file.character->file.tree().at("meshes").size(), size_t(1));
    QCOMPARE(QString::fromStdString(mesh.at("extras").at("targetNames").dump()),
             QStringLiteral("[\"Open\",\"lips-wide\"]"));
    QCOMPARE(QString::fromStdString(mesh.at("weights").dump()), QStringLiteral("[0.25,0.0]"));
    // Points that lie at one place go different ways.
    const std::multiset<Moved> opened{
        {0, 1, 0, 0, -0.25, 0}, {0, 1, 0, 0, 0.5, 0}, {1, 1, 0, 0, -0.25, 0}, {1, 1, 0, 0, 0.5, 0}};
    QVERIFY(movedBy(file, 0) == opened);
    const std::multiset<Moved> widened{{0, -1, 0, 0, 0, 3}, {1, -1, 0, 0, 0, 3}};
    QVERIFY(movedBy(file, 1) == widened);
    QVERIFY2(file.notes.filter(QStringLiteral("orph")).isEmpty(), qPrintable(file.notes.join(QLatin1Char('\n'))));
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

void ColladaMorphsTest::losses_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("morphs");
    QTest::addColumn<QString>("note");
    const QString misfit = QStringLiteral("Morphs of these meshes do not fit their polygons and are left out: lips. "
                                          "Export glTF 2.0 or binary FBX from the program that made the file to keep "
                                          "them");
    const QString driven = QStringLiteral("Clips of Collada files that drive morphs are left out. Export glTF 2.0 or "
                                          "binary FBX from the program that made the file to keep them");
    const auto replaced = [](const QByteArray &what, const QByteArray &by) {
        return lips(false, false).replace(what, by);
    };
    QTest::newRow("one target of another size") << lips(false, false, QByteArray(), " 0 0 0") << 1 << misfit;
    QTest::newRow("no target is there") << replaced("lips-open lips-wide", "lips-shut lips-thin") << 0 << misfit;
    QTest::newRow("points that do not exist") << replaced("id=\"lips-p-a\"", "id=\"elsewhere\"") << -1 << QString();
    const QByteArray clip = "<library_animations><animation id=\"an\">" + floats("an-i", "0 1", 1) +
                            floats("an-o", "0 1", 1) + words("Name_array", "an-k", "LINEAR LINEAR") +
                            "<sampler id=\"an-s\"><input semantic=\"INPUT\" source=\"#an-i\"/><input "
                            "semantic=\"OUTPUT\" source=\"#an-o\"/><input semantic=\"INTERPOLATION\" "
                            "source=\"#an-k\"/></sampler><channel source=\"#an-s\" target=\"mo-w(0)\"/></animation>"
                            "</library_animations>";
    QTest::newRow("a clip drives them") << lips(false, false, clip) << 2 << driven;
}

/// What does not come along is said; the mesh is there all the same.
void ColladaMorphsTest::losses()
{
    QFETCH(QByteArray, content);
    QFETCH(int, morphs);
    QFETCH(QString, note);
    const TextFile text(QStringLiteral("a.dae"), content);
    const ConvertedFile file(text.path);
    if (morphs < 0) { // a file that is broken is refused, and not more
        QVERIFY(!file.reason.isEmpty());
        return;
    }
    QVERIFY2(file.character, qPrintable(file.reason));
    const Json &mesh = file.character->file.tree().at("meshes")[0];
    QCOMPARE(mesh.contains("weights") ? int(mesh.at("weights").size()) : 0, morphs);
    QVERIFY2(file.notes.contains(note), qPrintable(file.notes.join(QLatin1Char('\n'))));
}

void ColladaMorphsTest::withoutEnd_data()
{
    QTest::addColumn<QByteArray>("piece");
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<bool>("isRead");
    QTest::newRow("tags") << QByteArray("<controller ") << QByteArray() << false;
    QTest::newRow("controllers") << QByteArray("<controller>") << QByteArray() << false;
    QTest::newRow("controllers in one another") << QByteArray("<controller>") << QByteArray("</controller>") << false;
    // Those of the morphs are taken out.
    QTest::newRow("channels") << QByteArray("<channel target=\"mo/a\">") << QByteArray() << true;
    QTest::newRow("controllers that are shown")
        << QByteArray("<instance_controller url=\"#mo\">") << QByteArray() << false;
}

/// What is begun thousands of times in a broken file is not looked for in all of it each time.
void ColladaMorphsTest::withoutEnd()
{
    QFETCH(QByteArray, piece);
    QFETCH(QByteArray, end);
    QFETCH(bool, isRead);
    const TextFile text(QStringLiteral("a.dae"), lips(false, false) + piece.repeated(400000) + end);
    const ConvertedFile file(text.path);
    QCOMPARE(bool(file.character), isRead);
    QCOMPARE(file.reason.contains(QStringLiteral("it cannot be read (")), !isRead);
}

RY_TEST(ColladaMorphsTest)
#include "tst_collada_morphs.moc"
