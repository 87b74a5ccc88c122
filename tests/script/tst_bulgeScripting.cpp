#include "ScriptStage.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "support/RyTest.h"

/// Bulges as scripts make them: a bone along +Y and four vertices.
class BulgeScriptingTest : public QObject, private ScriptStage
{
    Q_OBJECT

    RyFigure *m_figure = nullptr;
    RyBone *m_bone = nullptr;
    RyBoneBinding *m_binding = nullptr;

    RyVec3 shown(size_t vertex) const { return m_figure->getObject()->getDeformedPositions()[vertex]; }

private slots:
    void init()
    {
        open();
        m_figure = new RyFigure;
        m_figure->setName("figure");
        m_bone = new RyBone;
        m_bone->setName("shin");
        m_bone->setEndPoint({0, 10, 0}, true);
        m_bone->getZRotControl()->setValue(-90);
        m_figure->addNodeChild(m_bone);
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{2, 5, 0}, {0, 5, 3}, {-1, 4, 0}, {0, 2, -4}});
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        auto *skin = new RySkinBinding;
        m_binding = new RyBoneBinding;
        m_binding->setBone(m_bone);
        skin->addBoneBinding(m_binding);
        object->addModifier(skin);
        m_figure->setObject(object);
        m_scene->addNode(m_figure);
        QVERIFY(holds("var shin = Scene.find('shin'),"
                      "binding = shin.getSkeleton().getSkinBinding().findBoneBinding(shin); binding !== null"));
    }
    void cleanup() { close(); }

    void makeOne()
    {
        QVERIFY(holds("binding.getBulge(2) === null"));
        QVERIFY(holds("var bulge = binding.addBulge(2); bulge.getAxis() === 2 && bulge.getLeftWeights() === null"));
        QVERIFY(holds("binding.addBulge(2) === bulge || binding.getBulge(2).getAxis() === 2"));
        QVERIFY(m_binding->getBulgeBinding(2) && !m_binding->getBulgeBinding(0));
        QVERIFY(holds("bulge.getValueNames().join() ==="
                      "'shin_bulgeZPosLeft,shin_bulgeZNegLeft,shin_bulgeZPosRight,shin_bulgeZNegRight'"));
        QVERIFY(holds("bulge.setLeftWeights([3, 0], [65535, 32768]); bulge.setValue('negLeft', 0.2);"
                      "bulge.setRightWeights([2], [65535], 'calf'); bulge.setValue('shin_bulgeZNegRight', -0.1);"
                      "bulge.getLeftWeights().getAffectedIndices().join() === '0,3' &&"
                      "bulge.getLeftWeights().getNumWeights() === 4"));
        QCOMPARE(m_binding->getBulgeBinding(2)->getLeftWeights()->getName(), QString("Left"));
        QCOMPARE(m_binding->getBulgeBinding(2)->getRightWeights()->getName(), QString("calf"));
        QVERIFY((shown(0) - RyVec3(3.00001526f, 5, 0)).length() < 1e-5f);
        QVERIFY((shown(1) - RyVec3(0, 5, 3)).length() < 1e-5f);
        QVERIFY(shown(2).length() < 4.1f && std::fabs(shown(2).x) < 1e-5f);
        QVERIFY((shown(3) - RyVec3(0, 2, -6)).length() < 1e-5f);
        QVERIFY(holds("Math.abs(bulge.getValue('negLeft') - 0.2) < 1e-6 && bulge.getDefaultValue('negLeft') === 0"));
        QVERIFY(holds("bulge.setLeftWeights(null); bulge.getLeftWeights() === null"));
        QVERIFY(holds("binding.removeBulge(2); binding.getBulge(2) === null"));
        QVERIFY((shown(0) - RyVec3(2, 5, 0)).length() < 1e-5f);
    }

    void undo()
    {
        QVERIFY(holds("Undo.step('Bulge', function () { var bulge = binding.addBulge(2);"
                      "bulge.setLeftWeights([0], [65535]); bulge.setValue('negLeft', 1); }); true"));
        QCOMPARE(shown(0), RyVec3(12, 5, 0));
        QVERIFY(holds("Undo.undo(); binding.getBulge(2) === null"));
        QCOMPARE(shown(0), RyVec3(2, 5, 0));
        QVERIFY(holds("Undo.redo(); binding.getBulge(2).getValue('negLeft') === 1"));
        QCOMPARE(shown(0), RyVec3(12, 5, 0));
    }

    void mistakes()
    {
        QVERIFY(holds("var bulge = binding.addBulge(0); bulge.setLeftWeights([1], [7]); true"));
        QCOMPARE(errorOf("binding.addBulge(3)"), QString("Error: There is no axis 3, only 0, 1 and 2."));
        QCOMPARE(errorOf("bulge.setLeftWeights([4], [1])"), QString("Error: There is no vertex 4: the mesh has 4."));
        QCOMPARE(errorOf("bulge.setLeftWeights(['x'], [1])"), QString("Error: There is no vertex x: the mesh has 4."));
        QCOMPARE(errorOf("bulge.setLeftWeights([0.5], [1])"),
                 QString("Error: There is no vertex 0.5: the mesh has 4."));
        QCOMPARE(errorOf("bulge.setLeftWeights([1], [65536])"),
                 QString("Error: A weight is a number from 0 to 65535, not 65536."));
        for (const char *program :
             {"bulge.setLeftWeights([1, 2], [1])", "bulge.setLeftWeights(3, 4)", "bulge.setRightWeights([1])"})
            QVERIFY2(errorOf(program).startsWith("Error: "), program);
        QCOMPARE(errorOf("bulge.setValue('posMiddle', 1)"), QString("Error: A bulge has no value \"posMiddle\"."));
        QVERIFY(errorOf("bulge.setValue('posLeft', NaN)") != QString("no error"));
        QCOMPARE(m_binding->getBulgeBinding(0)->getLeftWeights()->getWeight(1), quint16(7));
        QVERIFY(!m_binding->getBulgeBinding(0)->getRightWeights());
    }
};

RY_TEST(BulgeScriptingTest)
#include "tst_bulgeScripting.moc"
