#include "evaluator/GltfFileReader.h"
#include "foreign_reader/ConvertedFile.h"
#include "io/CharacterScene.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryforeign/RyForeignRead.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include <QFile>

#include <cstring>
#include <set>

/// FBX files: whole characters, and the same with bytes of them changed.
class FbxFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { ryUndoStack()->clearAll(); }
    void character_data();
    void character();
    void surfaceStays();
    void polygonsStay();
    void bonesThatNoClusterNames();
    void morphStartsWhereTheFileSays();
    void savesLikeAnyOther();
    void cancelled();
    void refused_data();
    void refused();

private:
    static QByteArray bytes(const QString &path);
    QByteArray m_character;
};

QByteArray FbxFilesTest::bytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void FbxFilesTest::initTestCase()
{
    const QString path = ryModel(QStringLiteral("foreign/mh_clip_morph.fbx"));
    if (path.isEmpty())
        QSKIP("the characters are not there");
    m_character = bytes(path);
}

void FbxFilesTest::character_data()
{
    QTest::addColumn<int>("bones");
    QTest::addColumn<int>("influences");
    QTest::addColumn<int>("clips");
    QTest::addColumn<QString>("figure");
    QTest::addColumn<float>("height");
    QTest::addColumn<QString>("posedBones");
    QTest::newRow("arnaud.fbx") << 53 << 5 << 0 << QStringLiteral("Hips") << 184.8f << QString();
    QTest::newRow("foreign/mh_clip_morph.fbx") << 31 << 7 << 1 << QStringLiteral("Rig") << 167.0f
                                               << QStringLiteral("LeftArm LeftForeArm Head RightArm RightForeArm");
}

void FbxFilesTest::character()
{
    QFETCH(int, bones);
    QFETCH(int, influences);
    QFETCH(int, clips);
    QFETCH(QString, figure);
    QFETCH(float, height);
    const ConvertedFile file(ryModel(QTest::currentDataTag()));
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames().size(), bones);
    QCOMPARE(int(file.character->file.counts().maxInfluences), influences);
    QCOMPARE(int(file.character->file.tree().value("animations", nlohmann::json::array()).size()), clips);
    QCOMPARE(file.character->bones().front()->getSkeleton()->getName(), figure);
    QVERIFY2(std::abs(file.character->height - double(height)) < 5.0,
             qPrintable(QString::number(file.character->height)));
    // What single precision leaves is no pose.
    QStringList posed;
    for (const RyBone *bone : file.character->bones()) {
        if (bone->isPosed())
            posed.append(bone->getName());
    }
    QFETCH(QString, posedBones);
    QCOMPARE(posed.join(QLatin1Char(' ')), posedBones);
    QCOMPARE(file.character->messages, QStringList());
    const RyValidation validation = ryValidate(file.glb);
    QVERIFY2(validation.errors == 0, qPrintable(validation.report));
}

/// Normals, texture coordinates counted from above, colours and the material.
void FbxFilesTest::surfaceStays()
{
    const ConvertedFile file(ryModel(QStringLiteral("arnaud.fbx")));
    QVERIFY2(file.character, qPrintable(file.reason));
    const nlohmann::json &tree = file.character->file.tree();
    const nlohmann::json &primitive = tree["meshes"][0]["primitives"][0];
    QStringList names;
    for (const auto &[name, accessor] : primitive["attributes"].items())
        names.append(QString::fromStdString(name));
    QCOMPARE(names.join(QLatin1Char(' ')),
             QStringLiteral("COLOR_0 JOINTS_0 JOINTS_1 NORMAL POSITION TEXCOORD_0 WEIGHTS_0 WEIGHTS_1"));
    QCOMPARE(tree["materials"][primitive["material"].get<size_t>()]["name"].get<std::string>(),
             std::string("lambert2"));
    const std::vector<double> uvs =
        file.character->file.accessorValues(primitive["attributes"]["TEXCOORD_0"].get<int>()).values;
    // As the importers' library gives them, v turned: corner by corner, since joined ones have the same.
    Assimp::Importer importer;
    const aiScene *peer = importer.ReadFile(QFile::encodeName(ryModel(QStringLiteral("arnaud.fbx"))).constData(), 0);
    std::set<std::pair<double, double>> expected, found;
    for (unsigned corner = 0; corner < peer->mMeshes[0]->mNumVertices; ++corner) {
        const aiVector3D &uv = peer->mMeshes[0]->mTextureCoords[0][corner];
        expected.emplace(double(uv.x), double(1.0f - uv.y));
    }
    for (size_t i = 0; i < uvs.size(); i += 2)
        found.emplace(uvs[i], uvs[i + 1]);
    QVERIFY(found == expected);
}

void FbxFilesTest::polygonsStay()
{
    const ConvertedFile file(ryModel(QStringLiteral("foreign/mh_clip_morph.fbx")));
    QVERIFY2(file.character, qPrintable(file.reason));
    const auto *shape =
        qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(file.character->bones().front()->getSkeleton()));
    QVERIFY(shape);
    QCOMPARE(shape->getFacetMesh()->getNumFacets(), 13378);
    QCOMPARE(shape->getFacetMesh()->getNumVertices(), 13380);
    QCOMPARE(int(shape->getMorphs().size()), 1);
    QCOMPARE(shape->getMorphs().front()->getName(), QStringLiteral("Belly"));
}

/// Above, between and below those that are named.
void FbxFilesTest::bonesThatNoClusterNames()
{
    QByteArray changed = m_character;
    for (const QByteArray name : {"Hips", "LHipJoint", "LeftToeBase", "LThumb", "Neck1"}) {
        const int at = changed.indexOf(name + QByteArray("\0\1SubDeformer", 13));
        QVERIFY(at >= 0);
        const int kind = changed.indexOf("Cluster", at);
        QVERIFY(kind >= 0 && kind - at < 60);
        changed.replace(kind, 7, "Unknown");
    }
    const TextFile text(QStringLiteral("few.fbx"), changed);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const ConvertedFile whole(ryModel(QStringLiteral("foreign/mh_clip_morph.fbx")));
    QCOMPARE(file.boneNames(), whole.boneNames());
    for (const RyBone *bone : whole.character->bones()) {
        const float distance = (file.bone(bone->getName())->getOrigin() - bone->getOrigin()).length();
        QVERIFY2(distance < 0.01f, qPrintable(bone->getName()));
    }
}

void FbxFilesTest::morphStartsWhereTheFileSays()
{
    QByteArray changed = m_character;
    const int at = changed.indexOf(QByteArray("\x0d"
                                              "DeformPercentD"));
    QVERIFY(at >= 0);
    const double value = 40.0;
    std::memcpy(changed.data() + at + 15, &value, sizeof value);
    for (const auto &[content, expected] : {std::make_pair(m_character, 0.0f), std::make_pair(changed, 0.4f)}) {
        const TextFile text(QStringLiteral("a.fbx"), content);
        const ConvertedFile file(text.path);
        QVERIFY2(file.character, qPrintable(file.reason));
        const RyShape *shape = RyShape::getCurrentShapeForNode(file.character->bones().front()->getSkeleton());
        QCOMPARE(shape->getMorphs().front()->getValueControl()->getValue(), expected);
    }
}

void FbxFilesTest::savesLikeAnyOther()
{
    const ConvertedFile file(ryModel(QStringLiteral("arnaud.fbx")));
    QVERIFY2(file.character, qPrintable(file.reason));
    QTemporaryDir folder;
    const QString saved = folder.filePath(QStringLiteral("saved.glb"));
    QString error;
    QVERIFY2(RySceneFile::save(&file.character->scene, saved, &error), qPrintable(error));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
    QCOMPARE(rySceneDump(again), rySceneDump(file.character->scene));
    QCOMPARE(ryValidate(saved).errors, 0);
}

void FbxFilesTest::cancelled()
{
    RyForeignRequest request;
    request.path = ryModel(QStringLiteral("arnaud.fbx"));
    double last = 0.0;
    bool rises = true;
    request.progress = [&](double done) {
        rises = rises && done >= last && done <= 1.0;
        last = done;
        return true;
    };
    RyForeignResult result;
    QVERIFY(ryReadForeign(request, result));
    QVERIFY(rises && last > 0.9);
    request.progress = [](double done) { return done < 0.5; };
    RyForeignResult none;
    QVERIFY(!ryReadForeign(request, none));
    QVERIFY(none.glb.isEmpty());
    QCOMPARE(none.error, QStringLiteral("reading was cancelled"));
}

void FbxFilesTest::refused_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QByteArray old = m_character.left(4000);
    const quint32 version = 6100;
    std::memcpy(old.data() + 23, &version, sizeof version);
    QTest::newRow("FBX 6 in binary") << old << QStringLiteral("cannot be read");
    QTest::newRow("FBX 6 in text")
        << QByteArray("; FBX 6.1.0 project file\nFBXHeaderExtension:  {\n\tFBXHeaderVersion: 1003\n\tFBXVersion: "
                      "6100\n}\nObjects:  {\n}\nConnections:  {\n}\n")
        << QStringLiteral("it is an FBX file older than FBX 2011 (7.1), which cannot be read");
    QTest::newRow("truncated") << m_character.left(m_character.size() / 2) << QStringLiteral("cannot be read");
    QTest::newRow("something else") << QByteArray("hello") << QStringLiteral("it cannot be read");
}

void FbxFilesTest::refused()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const TextFile text(QStringLiteral("a.fbx"), content);
    RyForeignRequest request;
    request.path = text.path;
    RyForeignResult result;
    QVERIFY(!ryReadForeign(request, result));
    QVERIFY2(result.error.contains(reason), qPrintable(result.error));
    QVERIFY2(result.error.endsWith(QStringLiteral("export it as glTF 2.0 from the program that made it")),
             qPrintable(result.error));
    QVERIFY2(!result.error.contains(text.path), qPrintable(result.error));
}

RY_TEST(FbxFilesTest)
#include "tst_fbx_files.moc"
