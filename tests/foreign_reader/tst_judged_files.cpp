#include "foreign_reader/ConvertedFile.h"
#include "foreign_reader/JudgedFigure.h"
#include "io/CharacterScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyBlender.h"
#include "support/RyTest.h"

#include <QFileInfo>

#include <iostream>

/// Files of foreign formats say to us what they say to another program, whose figures are kept, or made where it is
/// installed.
class JudgedFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void characters_data();
    void characters();
    void keptExports_data();
    void keptExports();
    void exportedSample_data();
    void exportedSample();

private:
    static void check(const QString &file, const QString &figures, int bones, int frames, int morphs);

    QTemporaryDir m_folder;
};

void JudgedFilesTest::check(const QString &file, const QString &figures, int bones, int frames, int morphs)
{
    const ConvertedFile converted(file);
    QVERIFY2(converted.character, qPrintable(converted.reason));
    JudgedFigure judged(figures, converted);
    const JudgedFigure::Differences found = judged.compare();
    std::cout << QFileInfo(file).fileName().toStdString() << ": heads " << found.heads << " ends " << found.ends
              << " weights " << found.weights << " rest " << found.rest << " poses " << found.poses << " frames "
              << found.frames << " morphs " << found.morphs << " of the height\n";
    QVERIFY(judged.verticesCompared > 0 || converted.character->file.primitives().empty());
    QCOMPARE(judged.missing, QStringList());
    QCOMPARE(judged.bonesCompared, bones);
    QCOMPARE(judged.framesCompared, frames);
    QCOMPARE(judged.morphsCompared > 0, morphs > 0);
    QVERIFY2(found.heads < 1e-4, qPrintable(QString::number(found.heads)));
    QVERIFY2(found.ends < 1e-4, qPrintable(QString::number(found.ends)));
    QVERIFY2(found.weights < 1e-3, qPrintable(QString::number(found.weights)));
    QVERIFY2(found.rest < 1e-4, qPrintable(QString::number(found.rest) + found.farthest));
    QVERIFY2(found.poses < 1e-3, qPrintable(QString::number(found.poses)));
    QVERIFY2(found.frames < 1e-3, qPrintable(QString::number(found.frames)));
    QVERIFY2(found.morphs < 1e-4, qPrintable(QString::number(found.morphs)));
}

void JudgedFilesTest::characters_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("bones");
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("morphs");
    QTest::newRow("arnaud") << QStringLiteral("arnaud.fbx") << 53 << 0 << 0;
    QTest::newRow("two_armatures") << QStringLiteral("two_armatures.dae") << 4 << 0 << 0;
    QTest::newRow("mh_clip_morph") << QStringLiteral("foreign/mh_clip_morph.fbx") << 31 << 10 << 1;
    QTest::newRow("mh_clip") << QStringLiteral("foreign/mh_clip.bvh") << 31 << 10 << 0;
}

void JudgedFilesTest::characters()
{
    QFETCH(QString, file);
    QFETCH(int, bones);
    QFETCH(int, frames);
    QFETCH(int, morphs);
    const QString path = ryModel(file);
    if (path.isEmpty())
        QSKIP("this character is not there");
    check(path, QStringLiteral(RY_SOURCE_DIR "/tests/foreign_reader/figures/%1.json").arg(QTest::currentDataTag()),
          bones, frames, morphs);
}

void JudgedFilesTest::keptExports_data()
{
    QTest::addColumn<int>("morphs");
    for (const char *name :
         {"cm_leaves.fbx", "m_leaves.fbx", "m_plain_z_up.fbx", "cm_plain_z_up.fbx", "cm_y_up.dae", "m_z_up.dae"}) {
        QTest::newRow(name) << 1;
    }
    QTest::newRow("m_z_up.bvh") << 0;
}

/// The sample as another program exported it once: judged wherever the tests run.
void JudgedFilesTest::keptExports()
{
    QFETCH(int, morphs);
    const QString exports = QStringLiteral(RY_SOURCE_DIR "/tests/foreign_reader/exports/");
    QFile packed(exports + QTest::currentDataTag() + QStringLiteral(".z"));
    QVERIFY(packed.open(QIODevice::ReadOnly));
    const QByteArray content = qUncompress(packed.readAll());
    QVERIFY(!content.isEmpty());
    const TextFile file(QTest::currentDataTag(), content);
    check(file.path, exports + QTest::currentDataTag() + QStringLiteral(".json"), 51, 10, morphs);
}

/// Nothing to do where the judge is not installed, or lacks what its importer of glTF needs.
void JudgedFilesTest::exportedSample_data()
{
    QTest::addColumn<int>("morphs");
    if (!RyBlender::whyNot().isEmpty())
        return;
    for (const char *name : {"cm_leaves.fbx", "cm_plain.fbx", "m_leaves.fbx", "m_plain_z_up.fbx", "cm_plain_z_up.fbx"})
        QTest::newRow(name) << 1;
    QTest::newRow("z_up.dae") << 1;
}

void JudgedFilesTest::exportedSample()
{
    QFETCH(int, morphs);
    const QString script = QStringLiteral(RY_SOURCE_DIR "/tests/foreign_reader/blender_figures.py");
    const QString file = m_folder.filePath(QTest::currentDataTag());
    if (!QFileInfo::exists(file)) { // all at once: the judge takes long to start
        QString output;
        QVERIFY2(RyBlender::run({QStringLiteral("--python"), script, QStringLiteral("--"), QStringLiteral("all"),
                                 QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb"), m_folder.path()},
                                &output),
                 qPrintable(output));
    }
    check(file, file + QStringLiteral(".json"), 51, 10, morphs);
}

RY_TEST(JudgedFilesTest)
#include "tst_judged_files.moc"
