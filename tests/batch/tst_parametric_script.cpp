#include "RyBatchRun.h"

#include "parametric/paramTexts.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RyShape.h"
#include "support/RyTest.h"

#include <cmath>
#include <stdexcept>

/// The example script that makes a parametric figure of the sample, and the figure that is kept among the samples.
class ParametricScriptTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;
    QString m_made;
    const QString m_sample = QStringLiteral(RY_SOURCE_DIR "/resources/samples/parametric.glb");

    /// The figure of a file.
    static RyLegacyFigure *open(RyScene &scene, const QString &path)
    {
        QString error;
        QStringList messages;
        if (!RySceneFile::open(&scene, path, &error, &messages) || !messages.isEmpty())
            throw std::runtime_error((error + messages.join('\n')).toStdString());
        auto *figure = qobject_cast<RyLegacyFigure *>(scene.getSkeletons().front());
        if (!figure)
            throw std::runtime_error("the figure is not parametric");
        return figure;
    }
    static std::vector<RyFloatProperty *> valuesOf(const RyLegacyJointParam &param)
    {
        std::vector<RyFloatProperty *> values = param.controllers();
        for (const RyLegacyJointSphere *sphere : {param.getDynamicSphere(), param.getStaticSphere()})
            values.insert(values.end(), sphere->controls().begin(), sphere->controls().end());
        return values;
    }
    static void compareValues(const RyLegacyJointParam &a, const RyLegacyJointParam &b)
    {
        const std::vector<RyFloatProperty *> ofA = valuesOf(a), ofB = valuesOf(b);
        QCOMPARE(ofA.size(), ofB.size());
        for (size_t i = 0; i < ofA.size(); ++i) {
            const float off = std::abs(ofA[i]->getValue() - ofB[i]->getValue());
            QVERIFY2(off <= 1e-3f * std::max(1.0f, std::abs(ofA[i]->getValue())), qPrintable(ofA[i]->getFullLabel()));
        }
    }

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
        QTest::newRow("sample") << m_sample;
    }
    void bendsAtEveryJoint()
    {
        QFETCH(QString, path);
        RyScene scene;
        RyLegacyFigure *figure = open(scene, path);
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

    void sampleIsWhatTheScriptMakes()
    {
        RyScene scene, kept;
        const RyLegacyFigure *figure = open(scene, m_made);
        const RyLegacyFigure *sample = open(kept, m_sample);
        const std::vector<RyLegacyJoint *> &joints = RyLegacyBinding::findBinding(figure)->joints();
        const std::vector<RyLegacyJoint *> &others = RyLegacyBinding::findBinding(sample)->joints();
        QCOMPARE(joints.size(), others.size());
        for (size_t i = 0; i < joints.size(); ++i) {
            QCOMPARE(joints[i]->getGroupName(), others[i]->getGroupName());
            QCOMPARE(legacyParamsOf(joints[i]), legacyParamsOf(others[i]));
            for (size_t k = 0; k < joints[i]->params().size(); ++k) {
                QCOMPARE(joints[i]->params()[k]->flags(), others[i]->params()[k]->flags());
                compareValues(*joints[i]->params()[k], *others[i]->params()[k]);
            }
        }
        const auto facetsOf = [](const RyLegacyFigure *of) {
            return qobject_cast<RyFacetShape *>(of->getObject()->getCurrentShape())->getFacetMesh()->getFacets();
        };
        const std::vector<RyFacet> facets = facetsOf(figure), otherFacets = facetsOf(sample);
        QCOMPARE(facets.size(), otherFacets.size());
        for (size_t i = 0; i < facets.size(); ++i)
            QCOMPARE(facets[i].group, otherFacets[i].group);
    }
};

RY_TEST(ParametricScriptTest)
#include "tst_parametric_script.moc"
