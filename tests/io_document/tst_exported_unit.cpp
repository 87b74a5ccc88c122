#include "GltfFixture.h"
#include "support/RyTest.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <cmath>

/// An export has no place for the unit of the file: it is told where whoever opens it would take another one.
class ExportedUnitTest : public QObject
{
    Q_OBJECT

private slots:
    void isToldWhereItIsNotGuessed_data()
    {
        QTest::addColumn<double>("unit");
        QTest::addColumn<bool>("isTold");
        QTest::newRow("as guessed") << 0.0 << false;
        QTest::newRow("guessed, and said") << 100.0 << false;
        QTest::newRow("inches") << 2.54 << true;
        QTest::newRow("near") << 101.0 << true;
    }

    void isToldWhereItIsNotGuessed()
    {
        QFETCH(double, unit);
        QFETCH(bool, isTold);
        RyScene scene;
        QString error;
        RySceneFile::Options how;
        how.unit = unit;
        const QString sample = QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
        QVERIFY2(RySceneFile::open(&scene, sample, how, &error), qPrintable(error));
        QStringList without;
        RySceneFile::SaveOptions options;
        options.purpose = RySceneFile::Export;
        options.withoutExtras = &without;
        const QString path = m_folder.filePath(QStringLiteral("bare.glb"));
        QVERIFY2(RySceneFile::save(&scene, path, options, &error), qPrintable(error));
        const QStringList told = without.filter(QStringLiteral("unit of the file"));
        QCOMPARE(told.size(), isTold ? 1 : 0);
        if (isTold)
            QVERIFY2(told.first().contains(QString::number(unit)), qPrintable(told.first()));
        // What is not told is what the file is taken for.
        RyScene plain;
        QVERIFY2(RySceneFile::open(&plain, path, &error), qPrintable(error));
        const auto height = [](const RyScene &of) { return of.getSkeletons()[0]->getBoundingBox().getExtents().y; };
        const float ratio = height(plain) / height(scene);
        QVERIFY2((std::abs(ratio - 1.0f) > 1e-3f) == isTold, qPrintable(QString::number(double(ratio))));
    }

private:
    QTemporaryDir m_folder;
};

RY_TEST(ExportedUnitTest)
#include "tst_exported_unit.moc"
