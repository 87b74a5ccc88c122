#include "CharacterScene.h"
#include "ObjSketch.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

using nlohmann::json;

/// OBJ files that are not as they should be, and edits that change what is written of them.
class ObjFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void materialsThatAreMissing();
    void textAndItsFiles();
    void otherGroups();
    void facetInOtherGroup();
    void movedVertices();
    void orderThatDoesNotFit();
    void oneVertexFacets();
    void manyMaterials();
    void damagedAtRandom();

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    QTemporaryDir m_folder;
};

/// Nothing outside of the folder is read, whatever the names look like; each is told with its reason.
void ObjFilesTest::materialsThatAreMissing()
{
    const QTemporaryDir folder;
    QVERIFY(ObjSketch::put(folder, QStringLiteral("above.mtl"), "newmtl a\nKd 1 0 0\n"));
    QVERIFY(ObjSketch::put(folder, QStringLiteral("above.png"), ObjSketch::picture(7)));
    QVERIFY(ObjSketch::put(
        folder, QStringLiteral("in/good one.mtl"),
        "newmtl a\nmap_Kd ../above.png\nnewmtl b\nmap_Kd C:\\above.png\nnewmtl c\nmap_Kd " +
            folder.filePath(QStringLiteral("above.png")).toUtf8() +
            "\nnewmtl d\nmap_Kd gone.png\nnewmtl e\nmap_Kd good one.mtl\nnewmtl f\nmap_Kd pic\\50%25.png\n"
            "newmtl\nKd x\nd nan\nmap_Kd\nKd"));
    QVERIFY(ObjSketch::put(folder, QStringLiteral("in/pic/50%25.png"), ObjSketch::picture(99)));
    QVERIFY(ObjSketch::put(folder, QStringLiteral("in/x.obj"),
                           "mtllib ../above.mtl\nmtllib " + folder.filePath(QStringLiteral("above.mtl")).toUtf8() +
                               "\nmtllib ..\\above.mtl\nmtllib gone.mtl\nmtllib pic\nmtllib good one.mtl\n"
                               "v 0 0 0\nv 1 0 0\nv 0 1.5 0\n"
                               "usemtl a\nf 1 2 3\nusemtl b\nf 1 2 3\nusemtl c\nf 1 2 3\nusemtl d\nf 1 2 3\n"
                               "usemtl e\nf 1 2 3\nusemtl f\nf 1 2 3\nusemtl g\nf 1 2 3\n"));
    RyScene scene;
    QString error;
    QStringList messages;
    QVERIFY2(RySceneFile::open(&scene, folder.filePath(QStringLiteral("in/x.obj")), &error, &messages),
             qPrintable(error));
    const auto isTold = [&messages](const QString &what, const QString &why) {
        return std::any_of(messages.begin(), messages.end(),
                           [&](const QString &message) { return message.contains(what) && message.contains(why); });
    };
    QVERIFY(isTold(QStringLiteral("library \"../above.mtl\""), QStringLiteral("leads out of the folder")));
    QVERIFY(isTold(QStringLiteral("library \"/"), QStringLiteral("is not relative")));
    QVERIFY(isTold(QStringLiteral("library \"gone.mtl\""), QStringLiteral("does not exist")));
    QVERIFY(isTold(QStringLiteral("library \"pic\""), QStringLiteral("is not a file")));
    QVERIFY(isTold(QStringLiteral("picture \"../above.png\""), QStringLiteral("leads out of the folder")));
    QVERIFY(isTold(QStringLiteral("picture \"C:/above.png\""), QStringLiteral("does not name a file beside")));
    QVERIFY(isTold(QStringLiteral("picture \"/"), QStringLiteral("is not relative")));
    QVERIFY(isTold(QStringLiteral("picture \"gone.png\""), QStringLiteral("does not exist")));
    QVERIFY(isTold(QStringLiteral("picture \"good one.mtl\""), QStringLiteral("no picture")));
    QVERIFY(isTold(QStringLiteral("material \"g\""), QStringLiteral("in no material library")));
    QCOMPARE(messages.size(), 10);
    const RyMeshParts &parts = *shapeOf(scene)->getParts();
    QCOMPARE(parts.parts.size(), size_t(7));
    for (size_t p = 0; p < 7; ++p)
        QCOMPARE(parts.looks[p].texture.isNull(), p != 5);
    QCOMPARE(parts.looks[5].picture, ObjSketch::picture(99));
}

/// An OBJ file that stays one keeps its text; in another folder its library and pictures come along.
void ObjFilesTest::textAndItsFiles()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    const QTemporaryDir other;
    QVERIFY(ObjSketch::put(other, QStringLiteral("sub/more.mtl"), "newmtl cloth\nKd 1 0 0\n"));
    QVERIFY2(RySceneFile::save(&scene, other.filePath(QStringLiteral("same.obj")), &error), qPrintable(error));
    QCOMPARE(bytesOf(other.filePath(QStringLiteral("same.obj"))), ObjSketch::text());
    QCOMPARE(bytesOf(other.filePath(QStringLiteral("my materials.mtl"))), ObjSketch::library());
    QCOMPARE(bytesOf(other.filePath(QStringLiteral("textures/the skin.png"))), ObjSketch::picture(20));
    // What was there stays.
    QCOMPARE(bytesOf(other.filePath(QStringLiteral("sub/more.mtl"))), QByteArray("newmtl cloth\nKd 1 0 0\n"));
    // A figure made of it is still that text.
    ObjSketch::convert(scene);
    QStringList messages;
    QVERIFY2(RySceneFile::save(&scene, path("figure.obj"), &error, &messages), qPrintable(error));
    QCOMPARE(bytesOf(path("figure.obj")), ObjSketch::text());
    QCOMPARE(messages.filter(QStringLiteral("bones and weights")).size(), 1);
}

/// Facets that changed their group make a new text, beside which a library of others stays.
void ObjFilesTest::otherGroups()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    RyFacetMesh &mesh = *shapeOf(scene)->getFacetMesh();
    mesh.createFaceGroup(QStringLiteral("new\none\\"));
    mesh.deselectAllFacets();
    RyIndexList facets;
    facets.append(1);
    mesh.selectFacetsByIndexList(facets, true);
    mesh.addSelectedFacetsToGroup(QStringLiteral("new\none\\"));
    const QTemporaryDir other;
    QVERIFY(ObjSketch::put(other, QStringLiteral("grouped.mtl"), "newmtl of somebody\nNs 100\n"));
    QVERIFY(ObjSketch::put(other, QStringLiteral("the_skin.png"), ObjSketch::picture(111)));
    const QString saved = other.filePath(QStringLiteral("grouped.obj"));
    for (int round = 0; round < 2; ++round) {
        QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
        QCOMPARE(QDir(other.path()).entryList(QDir::Files, QDir::Name),
                 (QStringList{"cloth.png", "grouped.mtl", "grouped.obj", "grouped_2.mtl", "the_skin.png",
                              "the_skin_2.png"}));
    }
    QCOMPARE(bytesOf(other.filePath(QStringLiteral("grouped.mtl"))), QByteArray("newmtl of somebody\nNs 100\n"));
    QCOMPARE(bytesOf(other.filePath(QStringLiteral("the_skin.png"))), ObjSketch::picture(111));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
    const RyFacetMesh &back = *shapeOf(again)->getFacetMesh();
    QCOMPARE(back.getFaceGroup(back.getFacet(1).group)->getName(), QStringLiteral("new_one_"));
    QCOMPARE(back.getFaceGroup(back.getFacet(0).group)->getName(), QStringLiteral("body"));
    QCOMPARE(back.getNumFacets(), mesh.getNumFacets());
}

/// Groups that are those of the file, with a facet in another one of them.
void ObjFilesTest::facetInOtherGroup()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    RyFacetMesh &mesh = *shapeOf(scene)->getFacetMesh();
    RyIndexList facets;
    facets.append(1);
    mesh.selectFacetsByIndexList(facets, true);
    mesh.addSelectedFacetsToGroup(QStringLiteral("hand left"));
    QVERIFY2(RySceneFile::save(&scene, path("moved.obj"), &error), qPrintable(error));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, path("moved.obj"), &error), qPrintable(error));
    const RyFacetMesh &back = *shapeOf(again)->getFacetMesh();
    QCOMPARE(back.getFaceGroup(back.getFacet(1).group)->getName(), QStringLiteral("hand left"));
    QCOMPARE(back.getFaceGroup(back.getFacet(0).group)->getName(), QStringLiteral("body"));
}

/// Normals of the file stay where the facets do, and are worked out where a vertex has moved.
void ObjFilesTest::movedVertices()
{
    const QTemporaryDir folder;
    // Two sheets with one normal each that is not theirs.
    QVERIFY(ObjSketch::put(folder, QStringLiteral("sheets.obj"),
                           "# units: m\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 3 0 0\nv 4 0 0\nv 4 1 0\nv 3 1 0\n"
                           "vn 0 0.6 0.8\nf 1//1 2//1 3//1 4//1\nf 5//1 6//1 7//1 8//1\n"));
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, folder.filePath(QStringLiteral("sheets.obj")), &error), qPrintable(error));
    RyFacetMesh &mesh = *shapeOf(scene)->getFacetMesh();
    std::vector<RyVec3> positions = mesh.getPositions();
    for (int v : {4, 5})
        positions[size_t(v)].z += 100.0f; // the second sheet stands at 45 degrees
    mesh.setPositions(positions);
    QVERIFY2(RySceneFile::save(&scene, path("sheets.glb"), &error), qPrintable(error));
    const GltfEvaluator file(path("sheets.glb").toStdString());
    const std::string bytes =
        file.accessorBytes(file.tree()["meshes"][0]["primitives"][0]["attributes"]["NORMAL"].get<int>());
    std::vector<float> normals(bytes.size() / 4);
    std::memcpy(normals.data(), bytes.data(), bytes.size());
    QCOMPARE(normals.size(), size_t(24));
    for (size_t v = 0; v < 8; ++v) {
        QVERIFY(std::abs(normals[3 * v + 1] - (v < 4 ? 0.6f : 0.70710678f)) < 1e-5f);
        QVERIFY(std::abs(normals[3 * v + 2] - (v < 4 ? 0.8f : 0.70710678f)) < 1e-5f);
    }
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, path("sheets.glb"), &error), qPrintable(error));
    QVERIFY(sameDumps(plainDump(again), plainDump(scene)));
}

/// An order that does not fit is told and left out, with the facets part by part and nothing else lost.
void ObjFilesTest::orderThatDoesNotFit()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    QVERIFY2(RySceneFile::save(&scene, path("ordered.gltf"), &error), qPrintable(error));
    json tree = GltfEvaluator(path("ordered.gltf").toStdString()).tree();
    json &order = tree["extras"]["RYHOST_rigging"]["figures"][0]["order"];
    QCOMPARE(order, json({0, 4, 1, 3, 0, 3, 2, 1, 1, 6, 3, 3}));
    const json orders[] = {json({0, 3, 1, 4, 0, 3, 2, 1, 1, 6, 3, 3}), // within a quad
                           json({0, 4, 1, 3, 0, 3, 2, 1, 1, 6}),       // too few
                           json({0, 4, 1, 3, 0, 3, 2, 1, 1, 6, 3, 3, 3, 1}),
                           json({0, 4, 1}),
                           json({-1, 4}),
                           json({4, 1}),
                           json({0, -3}),
                           json({"a", 1}),
                           json::object()};
    for (const json &wrong : orders) {
        order = wrong;
        QVERIFY(ObjSketch::put(m_folder, QStringLiteral("wrong.gltf"), QByteArray::fromStdString(tree.dump())));
        RyScene again;
        QStringList messages;
        QVERIFY2(RySceneFile::open(&again, path("wrong.gltf"), &error, &messages), qPrintable(error));
        QVERIFY2(messages.filter(QStringLiteral("order of the facets")).size() == 1, wrong.dump().c_str());
        QCOMPARE(quadCount(*shapeOf(again)->getFacetMesh()), ObjSketch::Quads);
        QVERIFY(shapeOf(again)->getParts()->order.empty());
        QVERIFY(shapeOf(again)->getParts()->fits(*shapeOf(again)->getFacetMesh()));
    }
}

/// Facets without an extent are facets all the same.
void ObjFilesTest::oneVertexFacets()
{
    const QByteArray vertices = "# units: m\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 0\n";
    for (const QByteArray &coordinates : {QByteArray(), QByteArray("vt 0.5 0.5\nusemtl a\n")}) {
        const QByteArray corner = coordinates.isEmpty() ? "1" : "1/1";
        const QByteArray facet = "f " + corner + ' ' + corner + ' ' + corner;
        const QTemporaryDir folder;
        QVERIFY(ObjSketch::put(folder, QStringLiteral("x.obj"),
                               vertices + coordinates + facet + '\n' + facet + ' ' + corner + '\n' + facet +
                                   "\nf 1 2 3 4\nf 1 3 4\nf 1 1 2 2\n"));
        RyScene scene;
        QString error;
        QVERIFY2(RySceneFile::open(&scene, folder.filePath(QStringLiteral("x.obj")), &error), qPrintable(error));
        QVERIFY2(RySceneFile::save(&scene, path("points.glb"), &error), qPrintable(error));
        RyScene again;
        QVERIFY2(RySceneFile::open(&again, path("points.glb"), &error), qPrintable(error));
        const RyFacetMesh &back = *shapeOf(again)->getFacetMesh();
        QCOMPARE(back.getNumVertices(), 5);
        QCOMPARE(back.getNumFacets(), 6);
        for (int f = 0; f < 6; ++f)
            QCOMPARE(back.getFacet(f).count(), shapeOf(scene)->getFacetMesh()->getFacet(f).count());
        QVERIFY(sameDumps(plainDump(again).section(QStringLiteral("    part"), 0, 0),
                          plainDump(scene).section(QStringLiteral("    part"), 0, 0)));
    }
}

/// A material for every facet costs no more than its facets.
void ObjFilesTest::manyMaterials()
{
    constexpr int Count = 4000;
    QByteArray text = "# units: m\nvt 0.1 0.2\n";
    for (int i = 0; i <= Count; ++i)
        text += QStringLiteral("v %1 0 0\nv %1 1.7 0.1\n").arg(i * 0.001).toLatin1();
    for (int i = 0; i < Count; ++i) {
        const int v = 2 * ((i * 7) % Count) + 1;
        text +=
            QStringLiteral("usemtl m%1\nf %2/1 %3 %4 %5\n").arg(i).arg(v).arg(v + 1).arg(v + 3).arg(v + 2).toLatin1();
    }
    const QTemporaryDir folder;
    QVERIFY(ObjSketch::put(folder, QStringLiteral("many.obj"), text));
    RyScene scene;
    QString error;
    QStringList messages;
    QElapsedTimer timer;
    timer.start();
    QVERIFY2(RySceneFile::open(&scene, folder.filePath(QStringLiteral("many.obj")), &error, &messages),
             qPrintable(error));
    QVERIFY2(messages.size() <= 102, qPrintable(QString::number(messages.size())));
    size_t splits = 0;
    for (const RyMeshPart &part : shapeOf(scene)->getParts()->parts)
        splits += part.vertexOfSplit.size();
    QVERIFY(splits <= size_t(4 * Count + 2 * (Count + 1)));
    QVERIFY2(RySceneFile::save(&scene, path("many.glb"), &error), qPrintable(error));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, path("many.glb"), &error), qPrintable(error));
    QVERIFY(sameDumps(plainDump(again), plainDump(scene)));
    QVERIFY2(RySceneFile::save(&again, path("many.obj"), &error), qPrintable(error));
    QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
}

/// Whatever a text or its library says, the file is opened or refused, and what was opened can be saved.
void ObjFilesTest::damagedAtRandom()
{
    std::mt19937 random(ryTestSeed());
    const QTemporaryDir folder;
    ObjSketch::write(folder);
    const auto damage = [&random](QByteArray text) {
        for (unsigned i = 0; i <= random() % 4; ++i) {
            const int at = int(random() % unsigned(text.size()));
            switch (random() % 4) {
            case 0:
                text[at] = " \n/-0129\\ev\0fd.%\x1a"[random() % 17];
                break;
            case 1:
                text.remove(at, 1 + int(random() % 9));
                break;
            case 2:
                text.insert(at, text.mid(int(random() % unsigned(text.size())), 1 + int(random() % 40)));
                break;
            default:
                text.insert(at, QByteArray("1e30 nan -1 99999999999 -s 1 ../ -mm ").mid(int(random() % 30), 9));
            }
        }
        return text;
    };
    int opened = 0;
    for (int round = 0; round < 300; ++round) {
        QVERIFY(ObjSketch::put(folder, QStringLiteral("my materials.mtl"), damage(ObjSketch::library())));
        QVERIFY(ObjSketch::put(folder, QStringLiteral("sketch.obj"),
                               round % 3 ? damage(ObjSketch::text()) : ObjSketch::text()));
        RyScene scene;
        QString error;
        if (!RySceneFile::open(&scene, folder.filePath(QStringLiteral("sketch.obj")), &error)) {
            QVERIFY(error.contains(QStringLiteral("sketch.obj")));
            continue;
        }
        ++opened;
        const RyFacetShape *shape = shapeOf(scene);
        QVERIFY(!shape->getParts() || shape->getParts()->fits(*shape->getFacetMesh()));
        if (shape->getFacetMesh()->getNumFacets() == 0)
            continue;
        const QString saved = folder.filePath(QStringLiteral("damaged.glb"));
        QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
        RyScene again;
        QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
        QCOMPARE(shapeOf(again)->getFacetMesh()->getNumFacets(), shape->getFacetMesh()->getNumFacets());
        QVERIFY2(RySceneFile::save(&again, folder.filePath(QStringLiteral("damaged.obj")), &error), qPrintable(error));
        RyScene last;
        QVERIFY2(RySceneFile::open(&last, folder.filePath(QStringLiteral("damaged.obj")), &error), qPrintable(error));
        QCOMPARE(shapeOf(last)->getFacetMesh()->getNumFacets(), shape->getFacetMesh()->getNumFacets());
    }
    qInfo("%d of 300 were opened", opened);
    QVERIFY(opened > 100);
}

RY_TEST(ObjFilesTest)
#include "tst_obj_files.moc"
