#include "RyBatchRun.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RyShape.h"
#include "support/RyTest.h"

/// The example script that makes a parametric figure of the sample, and the figure that is kept among the samples.
class ParametricScriptTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;
    QString m_made;

private slots:
    void initTestCase()
    {
        m_made = m_run.file(QStringLiteral("parametric.glb"));
        const auto result = m_run.batch({QStringLiteral("--script"),
                                         QStringLiteral(RY_SOURCE_DIR "/docs/examples/parametric_figure.rsx"),
                                         QStringLiteral("--save"), m_made});
        QVERIFY2(result.code == 0, result.err.constData());
    }

    void bendsAtEveryJoint_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("made") << m_made;
        QTest::newRow("sample") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/parametric.glb");
    }
    void bendsAtEveryJoint()
    {
        QFETCH(QString, path);
        RyScene scene;
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::open(&scene, path, &error, &messages), qPrintable(error));
        QVERIFY2(messages.isEmpty(), qPrintable(messages.join('\n')));
        auto *figure = qobject_cast<RyLegacyFigure *>(scene.getSkeletons().front());
        QVERIFY(figure);
        const std::vector<RyBone *> bones = figure->getAllBones();
        QCOMPARE(int(bones.size()), 21);
        const std::vector<RyVec3> rest = figure->getObject()->getDeformedPositions();
        QVERIFY(rest == RyShape::getCurrentShapeForNode(figure)->getCurrentPositions());
        for (RyBone *bone : bones) {
            if (bone == bones.front())
                continue;
            for (int place = 1; place <= 2; ++place) {
                RyFloatProperty *const turns[] = {bone->getXRotControl(), bone->getYRotControl(),
                                                  bone->getZRotControl()};
                turns[bone->getRotationOrder()[place]]->setValue(35.0f);
                int rigid = 0;
                int between = 0;
                const std::vector<RyVec3> &posed = figure->getObject()->getDeformedPositions();
                for (size_t v = 0; v < rest.size(); ++v) {
                    if (posed[v] == rest[v])
                        continue;
                    const RyVec3 whole = bone->figureMap().mapPoint(rest[v]);
                    ++((posed[v] - whole).length() < 1e-3f ? rigid : between);
                }
                turns[bone->getRotationOrder()[place]]->setValue(0.0f);
                const QString numbers = QStringLiteral("%1: %2 %3").arg(bone->getName()).arg(rigid).arg(between);
                QVERIFY2(rigid > 10 && between > 10 && rigid + between < int(rest.size()), qPrintable(numbers));
            }
        }
        QVERIFY(figure->getObject()->getDeformedPositions() == rest);
    }
};

RY_TEST(ParametricScriptTest)
#include "tst_parametric_script.moc"
