#include "BakedCharacter.h"

#include "pluginsource/RyJointTools/operations/bakePose.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <QFileInfo>
#include <QTemporaryDir>

/// Real characters and the samples, posed at random: what is drawn stays where it is when the pose becomes the rest,
/// in the scene, in the saved file and when that is opened again.
class BakedCharactersTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_random.seed(ryTestSeed()); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void staysWhereThePosePutIt_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("pose");
        for (const QString &path : bakeablePaths([](const BakedCharacter &) { return true; })) {
            for (int pose = 0; pose < 5; ++pose)
                QTest::addRow("%s %d", qPrintable(QFileInfo(path).fileName()), pose) << path << pose;
        }
    }
    void staysWhereThePosePutIt()
    {
        QFETCH(QString, path);
        QFETCH(int, pose);
        BakedCharacter character(path);
        if (pose > 1)
            character.moveFigures();
        character.pose(m_random);
        const CharacterScene::Positions shown = character.shown();
        const std::vector<Eigen::Vector3d> joints = character.joints();
        const double slack = 1e-5 * character.height;

        for (RyFigure *figure : character.figures())
            QVERIFY(bakePose(figure));
        QCOMPARE(character.poses(), QStringList());
        QVERIFY2(largestDistance(character.shown(), shown) < slack,
                 qPrintable(QString::number(largestDistance(character.shown(), shown) / character.height)));
        QVERIFY2(largestWay(character.joints(), joints) < slack,
                 qPrintable(QString::number(largestWay(character.joints(), joints) / character.height)));

        const QString saved = save(character, "baked");
        if (pose == 2) {
            const RyValidation original = ryValidate(path);
            const RyValidation kept = ryValidate(saved);
            QVERIFY2(kept.errors <= original.errors, qPrintable(kept.report));
        }
        BakedCharacter again(saved);
        const double inFile = largestDistance(positionsOf(again.file, again.unit()), shown);
        QVERIFY2(inFile < slack, qPrintable(QString::number(inFile / character.height)));
        QVERIFY2(largestDistance(again.shown(), shown) < slack,
                 qPrintable(QString::number(largestDistance(again.shown(), shown) / character.height)));
        QVERIFY2(largestWay(again.joints(), joints) < slack,
                 qPrintable(QString::number(largestWay(again.joints(), joints) / character.height)));
        QCOMPARE(again.poses(), QStringList());
        QVERIFY(sameDumps(rySceneDump(again.scene), rySceneDump(character.scene)));
        QVERIFY(bytesOf(save(again, "second")) == bytesOf(saved));
    }

    /// Without a pose there is nothing to bake: the file is the one that was opened.
    void restStaysAsItIs_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString &path : bakeablePaths())
            QTest::newRow(qPrintable(QFileInfo(path).fileName())) << path;
    }
    void restStaysAsItIs()
    {
        QFETCH(QString, path);
        BakedCharacter character(path);
        for (RyBone *bone : character.bones())
            bone->setLocalTransform(RyVec3(), RyQuat(), RyMatrix3(), 1.0f);
        const QString dump = rySceneDump(character.scene);
        const QByteArray bytes = bytesOf(save(character, "rest"));
        for (RyFigure *figure : character.figures())
            QVERIFY(bakePose(figure));
        QCOMPARE(rySceneDump(character.scene), dump);
        QVERIFY(bytesOf(save(character, "baked")) == bytes);
    }

private:
    QString save(BakedCharacter &character, const QString &name)
    {
        const QString path = m_folder.filePath(name + QStringLiteral(".glb"));
        QString error;
        if (!RySceneFile::save(&character.scene, path, &error))
            throw std::runtime_error(error.toStdString());
        return path;
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(BakedCharactersTest)
#include "tst_bakedCharacters.moc"
