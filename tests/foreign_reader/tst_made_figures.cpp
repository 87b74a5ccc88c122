#include "evaluator/GltfFileReader.h"
#include "foreign_reader/ConvertedFile.h"
#include "foreign_reader/MadeFigure.h"
#include "io/CharacterScene.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/foreign/RyForeignImport.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <Eigen/Dense>
#include <nlohmann/json.hpp>

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QtEndian>

#include <cmath>

/// FBX files whose true places and weights are known, since they were written for it.
class MadeFiguresTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void places_data();
    void places();
    void leaves_data();
    void leaves();
    void facing_data();
    void facing();
    void weights_data();
    void weights();
    void whatIsLeftOutIsSaid();
    void pictures_data();
    void pictures();
    void howPicturesLie();
    void mapsThatAreLeftOut();
    void numbersThatAreNone();
};

namespace {

TextFile fileOf(const MadeFigure &figure)
{
    return TextFile(QStringLiteral("made.fbx"), figure.bytes());
}

/// The distance of each from the nearest of the others, at most.
/// As the program has files read.
QByteArray readByProcess(const QString &path)
{
    QByteArray bytes;
    QString error;
    const auto use = [&bytes](const QByteArray &glb) {
        bytes = glb;
        return true;
    };
    if (!RyForeignImport::read(path, 0.0, nullptr, use, &error, nullptr))
        qWarning("%s", qPrintable(error));
    return bytes;
}

double largestGap(const std::vector<RyVec3> &wanted, const CharacterScene::Positions &shown)
{
    double largest = 0.0;
    for (const auto &[place, points] : shown) {
        for (const Eigen::Vector3d &point : points) {
            double nearest = 1e300;
            for (const RyVec3 &each : wanted)
                nearest =
                    std::min(nearest, (point - Eigen::Vector3d(double(each.x), double(each.y), double(each.z))).norm());
            largest = std::max(largest, nearest);
        }
    }
    return largest;
}

} // namespace

void MadeFiguresTest::places_data()
{
    QTest::addColumn<double>("unit");
    QTest::addColumn<bool>("isZUp");
    QTest::addColumn<bool>("hasLeaf");
    for (const double unit : {1.0, 100.0, 2.54}) {
        for (const bool isZUp : {false, true}) {
            for (const bool hasLeaf : {false, true})
                QTest::addRow("%g cm%s%s", unit, isZUp ? ", Z up" : "", hasLeaf ? ", leaf" : "")
                    << unit << isZUp << hasLeaf;
        }
    }
}

void MadeFiguresTest::places()
{
    MadeFigure figure;
    QFETCH(bool, hasLeaf);
    QFETCH(double, unit);
    figure.unit = unit;
    QFETCH(bool, isZUp);
    figure.isZUp = isZUp;
    figure.hasLeaf = hasLeaf;
    const TextFile text = fileOf(figure);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames(), (QStringList{QStringLiteral("bone0"), QStringLiteral("bone1")}));
    for (int number = 0; number < 2; ++number) {
        const RyBone *bone = file.bone(QStringLiteral("bone%1").arg(number));
        QVERIFY2((bone->getOrigin() - figure.bone(number)).length() < 1e-3f,
                 qPrintable(QString::number(bone->getOrigin().y)));
        QVERIFY(!bone->isPosed());
    }
    if (hasLeaf) {
        const RyVec3 end = file.bone(QStringLiteral("bone1"))->getEndPoint();
        QVERIFY((end - RyVec3(7, 160, 3)).length() < 1e-3f);
    }
    QVERIFY(largestGap(figure.vertices(), file.character->shown()) < 1e-3);
    QVERIFY(largestGap(figure.vertices(), file.character->atRest()) < 1e-3);
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

void MadeFiguresTest::leaves_data()
{
    QTest::addColumn<bool>("isEnd");
    for (const char *name : {"bone1_end", "bone1_End", "bone1_end001", "bone1_end.002", "bone1Nub", "bone1nub2",
                             "headnub", "HEADNUB", "ToesNub", "tail nub"})
        QTest::newRow(name) << true;
    for (const char *name : {"bender", "nubs", "bone1_end_b", "snub", "Snub.001", "nose_snub2", "LeftSnub"})
        QTest::newRow(name) << false;
}

/// Names that mark an end, however they are written and numbered.
void MadeFiguresTest::leaves()
{
    QFETCH(bool, isEnd);
    MadeFigure figure;
    figure.hasLeaf = true;
    figure.leaf = QTest::currentDataTag();
    const TextFile text = fileOf(figure);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames().size(), isEnd ? 2 : 3);
    if (isEnd)
        QVERIFY((file.bone(QStringLiteral("bone1"))->getEndPoint() - RyVec3(7, 160, 3)).length() < 1e-3f);
}

void MadeFiguresTest::facing_data()
{
    QTest::addColumn<bool>("hasSkin");
    QTest::addColumn<double>("mirrored");
    QTest::newRow("figure") << true << 1.0;
    QTest::newRow("mirrored figure") << true << -1.0;
    QTest::newRow("prop") << false << 1.0;
    QTest::newRow("mirrored prop") << false << -1.0;
}

/// Sides that look outwards go on doing so when the mesh is mirrored: a mirroring node turns them as the format has it.
void MadeFiguresTest::facing()
{
    MadeFigure figure;
    QFETCH(bool, hasSkin);
    figure.hasSkin = hasSkin;
    QFETCH(double, mirrored);
    figure.mirrored = mirrored;
    const TextFile text = fileOf(figure);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QVERIFY(largestGap(figure.vertices(), file.character->shown()) < 1e-3);
    const GltfEvaluator &judged = file.character->file;
    QCOMPARE(judged.primitives().size(), size_t(1));
    const GltfPrimitive &primitive = judged.primitives()[0];
    const std::vector<Eigen::Vector3d> points = judged.positions(primitive);
    const std::vector<double> indices =
        judged.accessorValues(judged.tree()["meshes"][0]["primitives"][0]["indices"].get<int>()).values;
    double volume = 0.0;
    for (size_t i = 0; i + 2 < indices.size(); i += 3)
        volume += points[size_t(indices[i])].dot(points[size_t(indices[i + 1])].cross(points[size_t(indices[i + 2])]));
    // By the format a mirroring node turns the sides of its mesh, of one that joints move too.
    const bool isMirrored = judged.worldMatrices()[size_t(primitive.node)].determinant() < 0.0;
    QCOMPARE(isMirrored, mirrored < 0.0);
    if (isMirrored)
        volume = -volume;
    // Five sides of a circle of 20 cm, 160 cm high.
    const double wanted = 2.5 * 0.2 * 0.2 * std::sin(6.283185307179586 / 5) * 1.6;
    QVERIFY2(std::abs(volume / 6.0 - wanted) < 1e-5, qPrintable(QString::number(volume / 6.0)));
}

void MadeFiguresTest::weights_data()
{
    QTest::addColumn<int>("clusters");
    QTest::addColumn<double>("sum");
    QTest::addColumn<bool>("hasFree");
    QTest::newRow("two") << 2 << 1.0 << false;
    QTest::newRow("eleven") << 11 << 1.0 << false;
    QTest::newRow("half of one") << 2 << 0.5 << false;
    QTest::newRow("three") << 3 << 3.0 << false;
    QTest::newRow("a free vertex") << 2 << 1.0 << true;
}

void MadeFiguresTest::weights()
{
    MadeFigure figure;
    QFETCH(int, clusters);
    figure.clusters = clusters;
    QFETCH(double, sum);
    figure.weightSum = sum;
    QFETCH(bool, hasFree);
    figure.hasFree = hasFree;
    const TextFile text = fileOf(figure);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const GltfEvaluator &judged = file.character->file;
    const auto points = judged.restPositions(judged.primitives()[0]);
    const auto influences = judged.influences(judged.primitives()[0]);
    std::vector<int> users(3, 0);
    for (size_t i = 0; i < points.size(); ++i) {
        const Eigen::Vector3d at = judged.positions(judged.primitives()[0])[i];
        const int ring = int(std::lround(at.y() / 0.8));
        users[size_t(ring)] = std::max(users[size_t(ring)], int(influences[i].size()));
        double total = 0.0;
        for (const GltfInfluence &influence : influences[i]) {
            total += influence.weight;
            const double even = ring == 0 ? 1.0 : 1.0 / (ring == 1 ? figure.clusters : figure.clusters - 1);
            const RyVec3 last = figure.vertices().back();
            const bool isFree =
                figure.hasFree &&
                (at - 0.01 * Eigen::Vector3d(double(last.x), double(last.y), double(last.z))).norm() < 1e-5;
            QVERIFY2(isFree || std::abs(influence.weight - even) < 1e-5,
                     qPrintable(QStringLiteral("%1 %2").arg(ring).arg(influence.weight)));
        }
        QVERIFY(std::abs(total - 1.0) < 1e-5);
    }
    QCOMPARE(users, (std::vector<int>{1, figure.clusters, figure.clusters - 1}));
    QVERIFY(largestGap(figure.vertices(), file.character->shown()) < 1e-3);
}

void MadeFiguresTest::whatIsLeftOutIsSaid()
{
    MadeFigure figure;
    const TextFile plain = fileOf(figure);
    QCOMPARE(ConvertedFile(plain.path).notes, QStringList());
    figure.hasExtras = figure.hasLine = true;
    figure.opacity = 0.0;
    const TextFile text = fileOf(figure);
    const QStringList notes = ConvertedFile(text.path).notes;
    for (const char *note : {"1 cameras are left out", "1 lights are left out", "1 points and lines of meshes are left",
                             "1 materials are wholly transparent"})
        QVERIFY2(notes.filter(QLatin1String(note)).size() == 1, qPrintable(notes.join(QLatin1Char('\n'))));
}

void MadeFiguresTest::pictures_data()
{
    QTest::addColumn<QString>("path");    // in the file
    QTest::addColumn<QString>("place");   // of the picture, below the folder of the file; * in the file
    QTest::addColumn<QByteArray>("kind"); // of the picture
    QTest::addColumn<QString>("note");
    const QString here = QStringLiteral("skin.png"), far = QStringLiteral("C:\\work\\hero\\skin.png");
    QTest::newRow("beside") << here << here << QByteArray("PNG") << QString();
    QTest::newRow("below") << QStringLiteral("a\\skin.png") << QStringLiteral("a/skin.png") << QByteArray("PNG")
                           << QString();
    QTest::newRow("far, beside") << far << here << QByteArray("PNG") << QString();
    QTest::newRow("far, textures") << far << QStringLiteral("textures/skin.png") << QByteArray("PNG") << QString();
    QTest::newRow("far, media") << QStringLiteral("/home/x/skin.png") << QStringLiteral("made.fbm/skin.png")
                                << QByteArray("PNG") << QString();
    QTest::newRow("bitmap") << QStringLiteral("skin.bmp") << QStringLiteral("skin.bmp") << QByteArray("BMP")
                            << QString();
    QTest::newRow("in the file") << far << QStringLiteral("*") << QByteArray("PNG") << QString();
    QTest::newRow("nowhere") << far << QString() << QByteArray("PNG")
                             << QStringLiteral("\"skin.png\" is left out: it is neither beside the file nor in the "
                                               "folders textures and made.fbm there");
    QTest::newRow("empty") << here << here << QByteArray() << QStringLiteral("there is nothing in it");
    QTest::newRow("no picture") << here << here << QByteArray("rubbish") << QStringLiteral("cannot be read");
    QTest::newRow("too large") << here << here << QByteArray("large")
                               << QStringLiteral("it takes 129 MB, and pictures may take 128 MB each");
}

void MadeFiguresTest::pictures()
{
    QFETCH(QString, path);
    QFETCH(QString, place);
    QFETCH(QByteArray, kind);
    QFETCH(QString, note);
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(qRgb(200, 100, 50));
    QByteArray content = kind;
    if (kind == "PNG" || kind == "BMP") {
        QBuffer buffer(&content);
        buffer.open(QIODevice::WriteOnly);
        content.clear();
        QVERIFY(image.save(&buffer, kind.constData()));
    }
    MadeFigure figure;
    MadeFigure::Picture picture;
    picture.path = path.toStdString();
    picture.isEmbedded = place == QLatin1String("*");
    if (picture.isEmbedded)
        picture.content = content;
    figure.pictures.push_back(picture);
    const TextFile text = fileOf(figure);
    if (!place.isEmpty() && !picture.isEmbedded) {
        QFile file(QFileInfo(text.path).absolutePath() + QLatin1Char('/') + place);
        QVERIFY(QDir().mkpath(QFileInfo(file).absolutePath()) && file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), qint64(content.size()));
        if (kind == "large")
            QVERIFY(file.resize(qint64(129) << 20));
    }
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const nlohmann::json &tree = file.character->file.tree();
    QFile whole(file.glb);
    QVERIFY(whole.open(QIODevice::ReadOnly));
    const QByteArray all = whole.readAll();
    QCOMPARE(readByProcess(text.path), all); // which finds what decodes pictures, and has nothing else in the way
    QCOMPARE(file.notes.size(), note.isEmpty() ? 0 : 1);
    QCOMPARE(tree.contains("images"), note.isEmpty());
    QCOMPARE(ryValidate(file.glb).errors, 0);
    if (!note.isEmpty()) {
        QVERIFY2(file.notes.front().contains(note), qPrintable(file.notes.front()));
        return;
    }
    QCOMPARE(tree["images"][0]["name"].get<std::string>(), std::string("skin"));
    const nlohmann::json &view = tree["bufferViews"][tree["images"][0]["bufferView"].get<size_t>()];
    const int binary = 28 + int(qFromLittleEndian<quint32>(all.constData() + 12)); // behind both heads and the tree
    const QByteArray kept = all.mid(binary + view.value("byteOffset", 0), view["byteLength"].get<int>());
    QCOMPARE(QImage::fromData(kept).convertToFormat(QImage::Format_RGB32), image);
    if (kind == "PNG")
        QCOMPARE(kept, content);
}

/// Coordinates of their own, moved and scaled: v is counted from above in the result.
void MadeFiguresTest::howPicturesLie()
{
    MadeFigure figure;
    MadeFigure::Picture picture;
    picture.path = "skin.png";
    picture.uvSet = "second";
    picture.offset[0] = 0.25;
    picture.offset[1] = 0.125;
    picture.scale[0] = 2.0;
    picture.scale[1] = 4.0;
    figure.pictures.push_back(picture);
    const TextFile text = fileOf(figure);
    QVERIFY(QImage(2, 2, QImage::Format_RGB32).save(QFileInfo(text.path).absolutePath() + QStringLiteral("/skin.png")));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const nlohmann::json &tree = file.character->file.tree();
    const nlohmann::json &used = tree["materials"][0]["pbrMetallicRoughness"]["baseColorTexture"];
    QCOMPARE(used.value("texCoord", 0), 1);
    const nlohmann::json &placed = used["extensions"]["KHR_texture_transform"];
    QCOMPARE(placed["scale"].get<std::vector<double>>(), (std::vector<double>{2.0, 4.0}));
    QCOMPARE(placed["offset"].get<std::vector<double>>(), (std::vector<double>{0.25, 1.0 - 4.0 - 0.125}));
    // Both sets are there, the second a twentieth further.
    const nlohmann::json &attributes = tree["meshes"][0]["primitives"][0]["attributes"];
    const auto first = file.character->file.accessorValues(attributes["TEXCOORD_0"].get<int>()).values;
    const auto second = file.character->file.accessorValues(attributes["TEXCOORD_1"].get<int>()).values;
    QCOMPARE(first.size(), second.size());
    for (size_t i = 0; i < first.size(); i += 2) {
        QVERIFY(std::abs(second[i] - first[i] - 0.05) < 1e-6);
        QVERIFY(std::abs(second[i + 1] - first[i + 1] + 0.05) < 1e-6);
    }
    QCOMPARE(ryValidate(file.glb).errors, 0);
    // It goes on standing there when the scene is saved.
    QTemporaryDir folder;
    QString error;
    const QString saved = folder.filePath(QStringLiteral("saved.glb"));
    QVERIFY2(RySceneFile::save(&file.character->scene, saved, &error), qPrintable(error));
    QCOMPARE(GltfEvaluator(saved.toStdString()).tree()["materials"][0]["pbrMetallicRoughness"]["baseColorTexture"],
             used);
}

void MadeFiguresTest::mapsThatAreLeftOut()
{
    MadeFigure figure;
    for (const char *property : {"Bump", "NormalMap", "SpecularColor", "EmissiveColor", "ReflectionColor",
                                 "DisplacementColor", "TransparentColor", "ShininessExponent", "AmbientColor"}) {
        MadeFigure::Picture picture;
        picture.property = property;
        picture.path = std::string(property) + ".png";
        figure.pictures.push_back(picture);
    }
    const TextFile text = fileOf(figure);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.notes.size(), 1);
    for (const char *map :
         {"bump maps (1)", "normal maps (1)", "specular maps (1)", "emissive maps (1)", "reflection maps (1)",
          "displacement maps (1)", "opacity maps (1)", "gloss maps (1)", "ambient maps (1)"})
        QVERIFY2(file.notes.front().contains(QLatin1String(map)), qPrintable(file.notes.front()));
}

/// The rest of the figure comes along, and people learn which mesh it is.
void MadeFiguresTest::numbersThatAreNone()
{
    MadeFigure figure;
    figure.hasStrange = true;
    const TextFile text = fileOf(figure);
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.notes.filter(QStringLiteral("Mesh \"prism\": the places of")).size(), 1);
    QCOMPARE(file.notes.filter(QStringLiteral("texture coordinates are no numbers")).size(), 1);
    std::vector<RyVec3> wanted = figure.vertices();
    wanted.emplace_back(0.0f, 0.0f, 0.0f);
    QVERIFY(largestGap(wanted, file.character->shown()) < 1e-3);
    QCOMPARE(ryValidate(file.glb).errors, 0);
}

RY_TEST(MadeFiguresTest)
#include "tst_made_figures.moc"
