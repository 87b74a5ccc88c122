#include "CharacterScene.h"

#include "rycore/io/RySceneFile.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

/// What we write is as valid as what we read.
class ValidatorTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_random.seed(ryTestSeed()); }

    void characters_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : characterNames())
            QTest::newRow(qPrintable(name)) << name;
    }
    void characters()
    {
        QFETCH(QString, name);
        const QString path = ryModel(name);
        if (path.isEmpty())
            QSKIP("the character is not here");
        const RyValidation original = ryValidate(path);
        if (!original.available)
            QSKIP("the validator is not installed");
        CharacterScene character(path);
        moveSomeJoints(character, 0.2, m_random);
        turnRandomly(character, m_random);
        QTemporaryDir folder;
        QString error;
        const QString saved = folder.filePath(name);
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error), qPrintable(error));
        const RyValidation kept = ryValidate(saved);
        QVERIFY2(kept.errors <= original.errors, qPrintable(kept.report));
        const QString alone = folder.filePath(QStringLiteral("alone.glb"));
        QVERIFY2(RySceneFile::saveWithoutSource(&character.scene, alone, &error), qPrintable(error));
        const RyValidation made = ryValidate(alone);
        QVERIFY2(made.errors == 0, qPrintable(made.report));
        qInfo("errors and warnings: original %d %d, saved %d %d, from the scene alone %d %d", original.errors,
              original.warnings, kept.errors, kept.warnings, made.errors, made.warnings);
    }

private:
    std::mt19937 m_random;
};

RY_TEST(ValidatorTest)
#include "tst_validator.moc"
