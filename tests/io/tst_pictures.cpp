#include "CharacterScene.h"
#include "FigureSketch.h"

#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMeshPart.h"
#include "rycore/scene/RySkeleton.h"
#include "support/RyTest.h"

#include <QBuffer>

static int printed = 0;

static void countPrinted(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++printed;
}

/// Pictures that the libraries which decode them have something to say about.
class PicturesTest : public QObject
{
    Q_OBJECT

private slots:
    void words_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("words");
        QByteArray png = picture("PNG");
        const char text[] = "\0\0\0\4tEXta\0bc----"; // with a sum that is wrong
        constexpr int behindHeader = 33;
        png.insert(behindHeader, QByteArray(text, sizeof text - 1));
        QTest::newRow("png") << QByteArray("image/png") << png << QStringLiteral("libpng warning");
        QByteArray jpeg = picture("JPG");
        jpeg.truncate(jpeg.size() * 3 / 4);
        QTest::newRow("jpeg") << QByteArray("image/jpeg") << jpeg << QStringLiteral("JPEG");
    }
    void words()
    {
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, words);
        FigureSketch sketch;
        const QByteArray uri = "data:" + type + ";base64," + bytes.toBase64();
        sketch.tree["images"] = {{{"uri", uri.toStdString()}}};
        sketch.tree["textures"] = {{{"source", 0}}};
        sketch.tree["materials"] = {{{"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 0}}}}}}};
        sketch.tree["meshes"][0]["primitives"][0]["material"] = 0;
        const QString path = sketch.write(m_folder.filePath(QStringLiteral("odd picture.gltf")));
        printed = 0;
        const QtMessageHandler before = qInstallMessageHandler(countPrinted);
        const CharacterScene scene(path);
        qWarning("of somebody else");
        const QtMessageHandler after = qInstallMessageHandler(before);
        QVERIFY(after == countPrinted);
        QCOMPARE(printed, 1);
        QCOMPARE(scene.messages.size(), 1);
        const QString &message = scene.messages.first();
        QVERIFY2(message.startsWith(QStringLiteral("odd picture.gltf: images[0]: ")) && message.contains(words),
                 qPrintable(message));
        const auto *shape =
            qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(scene.scene.getSkeletons()[0]));
        QCOMPARE(shape->getParts()->looks.at(0).texture.size(), QSize(40, 30));
    }

private:
    static QByteArray picture(const char *format)
    {
        QImage image(40, 30, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(x * y % 256, 5 * x, 7 * y));
        }
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, format);
        return bytes;
    }

    QTemporaryDir m_folder;
};

RY_TEST(PicturesTest)
#include "tst_pictures.moc"
