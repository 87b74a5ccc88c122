#include "LegacyArm.h"

#include "CharacterScene.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyObject.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <QTemporaryDir>

/// A parametric figure for programs that know no joint parameters.
class ExportedJointsTest : public QObject
{
    Q_OBJECT

private slots:
    void plainWeightsStandForThem()
    {
        LegacyArm arm;
        arm.makeUntidy();
        const QString before = LegacyArm::dump(arm.scene);
        QString error;
        QStringList without;
        RySceneFile::SaveOptions options;
        options.purpose = RySceneFile::Copy;
        const QString saved = m_folder.filePath(QStringLiteral("saved.glb"));
        const QString bare = m_folder.filePath(QStringLiteral("bare.glb"));
        QVERIFY2(RySceneFile::save(&arm.scene, saved, options, &error), qPrintable(error));
        options.purpose = RySceneFile::Export;
        options.withoutExtras = &without;
        QVERIFY2(RySceneFile::save(&arm.scene, bare, options, &error), qPrintable(error));
        QCOMPARE(LegacyArm::dump(arm.scene), before);
        for (const char *said :
             {"the joint parameters of parametric figures, for which plain weights stand", "links between values"})
            QVERIFY2(without.contains(QLatin1String(said)), qPrintable(without.join(u'\n')));

        QVERIFY(!bytesOf(bare).contains("RYHOST"));
        const RyValidation validation = ryValidate(bare);
        if (validation.available)
            QVERIFY2(validation.errors == 0, qPrintable(validation.report));
        const GltfEvaluator whole(saved.toStdString()), plain(bare.toStdString());
        QVERIFY(largestDistance(positionsOf(whole, 1.0), positionsOf(plain, 1.0)) == 0.0);

        RyScene reopened;
        QVERIFY2(RySceneFile::open(&reopened, bare, &error), qPrintable(error));
        QVERIFY(!LegacyArm::figureOf(reopened));
        QCOMPARE(reopened.getSkeletons().size(), size_t(1));
        QVERIFY(qobject_cast<RyFigure *>(reopened.getSkeletons()[0]));
    }

private:
    QTemporaryDir m_folder;
};

RY_TEST(ExportedJointsTest)
#include "tst_exported_joints.moc"
