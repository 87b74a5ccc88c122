#include "foreign/ForeignSketch.h"
#include "foreign/ForeignStage.h"
#include "support/RyTest.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/io/foreign/RyForeignImport.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"

#include <QtEndian>

#include <cmath>
#include <random>

/// Foreign files that were damaged at random: the program lives on, refusals name the file and the reason, and what
/// opens can be saved and opened again. RY_MUTATED_FOREIGN says how many.
class MutatedForeignTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void wholeOnesOpen();
    void oldOnesAreRefused();
    void files_data();
    void files();

private:
    static constexpr unsigned FilesByDefault = 300;
    struct Source
    {
        QString ending;
        QByteArray bytes;
    };

    size_t below(size_t limit) { return m_random() % std::max(limit, size_t(1)); }
    void damage(QByteArray &bytes);
    void count(const QString &error);

    std::mt19937 m_random;
    std::unique_ptr<ForeignStage> m_stage;
    std::vector<Source> m_sources;
    int m_opened = 0;
    int m_refused = 0;
    int m_broken = 0;
    int m_silent = 0;
    int m_large = 0;
};

void MutatedForeignTest::initTestCase()
{
    m_stage = std::make_unique<ForeignStage>(ForeignStage::Reader::Real);
    m_sources = {{QStringLiteral("fbx"), ForeignSketch::fbx()},
                 {QStringLiteral("fbx"), ForeignSketch::packedFbx()},
                 {QStringLiteral("fbx"), ForeignSketch::textFbx()},
                 {QStringLiteral("fbx"), ForeignSketch::textFbxWithoutLineEnds()},
                 {QStringLiteral("dae"), ForeignSketch::collada()},
                 {QStringLiteral("bvh"), ForeignSketch::bvh()}};
    for (const char *name : {"arnaud.fbx", "foreign/mh_clip_morph.fbx", "two_armatures.dae", "foreign/mh_clip.bvh"}) {
        QFile file(ryModel(QLatin1String(name)));
        if (file.open(QIODevice::ReadOnly))
            m_sources.push_back({QString::fromLatin1(name).section(QLatin1Char('.'), -1), file.readAll()});
    }
}

void MutatedForeignTest::cleanupTestCase()
{
    qInfo("%d opened, %d refused; over %d the reader broke down, over %d it got no further, %d took too much memory",
          m_opened, m_refused, m_broken, m_silent, m_large);
    if (m_opened + m_refused >= int(FilesByDefault))
        QVERIFY(m_opened > (m_opened + m_refused) / 5);
    QCOMPARE(m_stage->leftovers(), QStringList());
    m_stage.reset();
}

void MutatedForeignTest::wholeOnesOpen()
{
    for (size_t i = 0; i < m_sources.size(); ++i) {
        const Source &source = m_sources[i];
        const QString file = m_stage->write(QStringLiteral("whole%1.%2").arg(i).arg(source.ending), source.bytes);
        RyScene scene;
        QString error;
        QVERIFY2(RySceneFile::open(&scene, file, &error), qPrintable(error));
        QVERIFY2(!scene.getSkeletons().empty(), qPrintable(file));
    }
}

void MutatedForeignTest::oldOnesAreRefused()
{
    const QString file = m_stage->write(QStringLiteral("old.fbx"), ForeignSketch::oldFbx());
    RyScene scene;
    QString error;
    QVERIFY(!RySceneFile::open(&scene, file, &error));
    QVERIFY2(error.startsWith(file) && error.contains(QStringLiteral("older")), qPrintable(error));
    QVERIFY2(error.contains(QStringLiteral("export it as glTF 2.0")), qPrintable(error));
    QVERIFY(scene.getNodes().empty());
}

void MutatedForeignTest::files_data()
{
    QTest::addColumn<unsigned>("number");
    bool given = false;
    const unsigned wanted = qEnvironmentVariable("RY_MUTATED_FOREIGN").toUInt(&given);
    for (unsigned number = 0; number < (given ? wanted : FilesByDefault); ++number)
        QTest::newRow(qPrintable(QString::number(number))) << number;
}

void MutatedForeignTest::files()
{
    QFETCH(unsigned, number);
    m_random.seed(ryTestSeed() + number);
    // The small ones can be damaged where it matters; a few large ones are enough.
    const size_t small = 6;
    const Source &source = m_sources[below(8) > 0 ? below(small) : below(m_sources.size())];
    QByteArray bytes = source.bytes;
    for (size_t i = 1 + below(3); i > 0; --i)
        damage(bytes);
    const QString path = m_stage->write(QStringLiteral("mutated.%1").arg(source.ending), bytes);
    RyScene scene;
    QString error;
    if (!RySceneFile::open(&scene, path, &error)) {
        QVERIFY2(error.startsWith(path) && error.size() > path.size() + 20, qPrintable(error));
        QVERIFY2(!error.contains(QStringLiteral("/proc/")), qPrintable(error));
        QVERIFY2(!error.contains(QStringLiteral("is missing")), qPrintable(error));
        count(error);
        return;
    }
    ++m_opened;
    for (const RyNode *node : scene.getNodes()) {
        const RyVec3 at = node->getOrigin();
        QVERIFY(std::isfinite(at.x) && std::isfinite(at.y) && std::isfinite(at.z));
        if (!node->getObject())
            continue;
        for (const RyVec3 &point : node->getObject()->getDeformedPositions())
            QVERIFY(!std::isnan(point.x) && !std::isnan(point.y) && !std::isnan(point.z));
    }
    const QString saved = m_stage->path(QStringLiteral("saved.glb"));
    QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
}

/// Bytes, digits, counts, and pieces that are missing, doubled or elsewhere.
void MutatedForeignTest::damage(QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    const int at = int(below(size_t(bytes.size())));
    const int length = std::min(int(1 + below(200)), bytes.size() - at);
    // Text holds together while only its numbers are others.
    const bool isText = !bytes.contains('\0');
    switch (below(isText ? 20 : 10)) {
    case 0:
    case 1:
        bytes[at] = char(m_random());
        break;
    case 2:
    case 3:
        if (below(4) == 0)
            bytes.truncate(at);
        else
            bytes[at] = char(bytes[at] ^ (1 << below(8)));
        break;
    case 4: {
        const quint32 numbers[] = {0, 1, 0x7fffffff, 0x80000000, 0xffffffff, quint32(bytes.size()), 0x00ffffff};
        char little[4];
        qToLittleEndian(numbers[below(std::size(numbers))], little);
        bytes.replace(at, std::min(4, bytes.size() - at), little, 4);
        break;
    }
    case 5:
        bytes.remove(at, length);
        break;
    case 6:
        bytes.insert(int(below(size_t(bytes.size()))), bytes.mid(at, length));
        break;
    default: {
        const auto isDigit = [](char byte) { return byte >= '0' && byte <= '9'; };
        const auto digit = std::find_if(bytes.begin() + at, bytes.end(), isDigit);
        if (digit != bytes.end())
            *digit = below(8) > 0 ? char('0' + below(10)) : "-.e "[below(4)];
        break;
    }
    }
}

void MutatedForeignTest::count(const QString &error)
{
    ++m_refused;
    m_broken += error.contains(QStringLiteral("broke down"));
    m_silent += error.contains(QStringLiteral("got no further"));
    m_large += error.contains(QStringLiteral("of memory"));
}

RY_TEST(MutatedForeignTest)
#include "tst_mutated_foreign.moc"
