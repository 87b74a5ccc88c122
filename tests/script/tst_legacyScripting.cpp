#include "ScriptStage.h"
#include "parametric/ParamArm.h"

#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/mesh/RyWeightMap.h"
#include "support/RyTest.h"

/// What scripts see of parametric figures.
class LegacyScriptingTest : public QObject, private ScriptStage
{
    Q_OBJECT

    std::unique_ptr<ParamArm> m_arm;

private slots:
    void init()
    {
        open();
        m_arm = std::make_unique<ParamArm>(new RyLegacyFigure);
        m_scene->addNode(m_arm->skeleton.get());
        run("var figure = Scene.getSkeletons()[0], binding = figure.getLegacyBinding();"
            "var arm = Scene.find('arm'), elbow = Scene.find('elbow'), hand = Scene.find('hand');"
            "var joint = binding.findJoint(elbow);"
            "var twist = joint.findParam('twistx'), bend = joint.findParam('jointy');"
            "var scale = joint.findParam('arm_smoox')");
        QVERIFY(!m_engine->hasFailed());
    }
    void cleanup()
    {
        close();
        m_arm.reset();
    }

    void figuresBindingsAndJoints()
    {
        QVERIFY(holds("figure.isA('RyLegacyFigure') && !figure.isA('RyFigure') && figure.getSkinBinding() === null"));
        QVERIFY(holds("binding.getNumJoints() === 3 && binding.getJoints()[1] === joint"));
        QVERIFY(holds("binding.findJoint(figure) === null && binding.findJoint(null) === null"));
        QVERIFY(holds("joint.getName() === 'elbow' && joint.getBone() === elbow && joint.getGroupName() === ''"));
        m_arm->skeleton->getSelectionMap()->addPair("upper", m_arm->arm, true);
        QVERIFY(holds("joint.getGroupName() === 'upper'"));
        QVERIFY(holds("joint.getNumParams() === 8 && joint.getParams()[1] === bend"));
        QVERIFY(holds("joint.findParam('nose') === null"));
        m_arm->skeleton->getObject()->removeModifier(m_arm->binding);
        QVERIFY(holds("figure.getLegacyBinding() === null"));
        for (const char *program : {"joint.getName()", "bend.getKind()", "binding.getJoints()"})
            QVERIFY(errorOf(program).contains(QLatin1String("deleted")));
        QCOMPARE(errorOf("figure.getLegacyBinding.call(elbow)"),
                 QString("Error: This is no RySkeleton, or it is gone."));
    }

    void parameters()
    {
        QVERIFY(holds("[bend, twist, scale].map(function (p) { return p.getKind(); }).join() === "
                      "'bend,twist,smoothScale'"));
        m_arm->jointOf(m_arm->elbow)->addJointParam(new RyLegacyCurve("plane", 4, m_arm->hand));
        QVERIFY(holds("joint.findParam('plane').getKind() === 'curve' && joint.findParam('plane').getAxis() === 4"));
        QVERIFY(holds("bend.getName() === 'jointy' && bend.getJoint() === joint && bend.getAxis() === 1"));
        QVERIFY(holds("bend.getPartner() === binding.findJoint(arm).findParam('elbow_jointy')"));
        QVERIFY(holds("binding.findJoint(arm).findParam('jointy').getPartner() === null"));
        QVERIFY(holds("bend.getDriver() === elbow && scale.getDriver() === arm"));
        QVERIFY(holds("bend.setAxis(0); bend.setDriver(hand); bend.getAxis() === 0 && bend.getDriver() === hand"));
        QCOMPARE(errorOf("bend.setAxis(3)"), QString("Error: \"jointy\" has no axis 3."));
        QCOMPARE(errorOf("bend.setDriver(null)"), QString("Error: A driver is a bone."));
        QCOMPARE(errorOf("bend.setDriver(figure)"), QString("Error: A driver is a bone."));
        QCOMPARE(m_arm->bendOf(m_arm->elbow, "jointy")->getDriver(), m_arm->hand);
    }

    void flags()
    {
        QVERIFY(holds("bend.getFlagNames().join() === 'flipped,matrices,angles,bulges'"));
        QVERIFY(holds("twist.getFlagNames().join() === 'flipped,matrices,blend'"));
        QVERIFY(holds("scale.getFlagNames().join() === 'flipped,matrices,zones,high,low'"));
        QVERIFY(holds("bend.getFlag('angles') && !bend.getFlag('bulges')"));
        QVERIFY(holds("bend.setFlag('bulges', true); bend.setFlag('angles', false);"
                      "bend.getFlag('bulges') && !bend.getFlag('angles')"));
        QVERIFY(m_arm->bendOf(m_arm->elbow, "jointy")->applyBulges());
        QVERIFY(!m_arm->bendOf(m_arm->elbow, "jointy")->applyAngles());
        QCOMPARE(errorOf("bend.setFlag('blend', true)"), QString("Error: \"jointy\" has no flag called \"blend\"."));
        QCOMPARE(errorOf("twist.getFlag('angles')"), QString("Error: \"twistx\" has no flag called \"angles\"."));
    }

    void bothSides()
    {
        QVERIFY(holds("bend.setFlag('bulges', true, true);"
                      "bend.getFlag('bulges') && bend.getPartner().getFlag('bulges')"));
        QVERIFY(holds("bend.setFlag('bulges', false); !bend.getFlag('bulges') && bend.getPartner().getFlag('bulges')"));
        for (const char *name : {"flipped", "high", "low"})
            QCOMPARE(errorOf(QByteArray("scale.setFlag('") + name + "', true, true)"),
                     QString("Error: The sides of a joint differ in \"%1\".").arg(QLatin1String(name)));
        QVERIFY(holds("bend.setValue('staticD', 12, true);"
                      "bend.getValue('staticD') === 12 && bend.getPartner().getValue('staticD') === 12"));
        QVERIFY(holds("scale.setValue('loEnd', 7, true);"
                      "scale.getValue('loEnd') === 7 && scale.getPartner().getValue('hiStart') === 7"));
        RyFloatProperty *other = m_arm->scaleOf(m_arm->arm, "elbow_smoox")->getHiStartController();
        other->setMax(50);
        other->setIsClamped(true);
        QVERIFY(errorOf("scale.setValue('loEnd', 60, true)") != QString("no error"));
        QVERIFY(holds("scale.getValue('loEnd') === 7 && scale.getPartner().getValue('hiStart') === 7"));
        QVERIFY(holds("scale.setValue('loEnd', 60); scale.getValue('loEnd') === 60"));
    }

    void resetMatrices()
    {
        QVERIFY(holds("var untouched = bend.getPartner().getStaticMatrix().join(); bend.resetMatrices(false);"
                      "bend.getPartner().getStaticMatrix().join() === untouched"));
        QVERIFY(holds("Math.abs(bend.getStaticMatrix()[5] / bend.getDynamicMatrix()[5] - 1.5) < 1e-4"));
        QVERIFY(holds("bend.resetMatrices(); bend.getStaticMatrix().every(function (number, i) {"
                      "    return Math.abs(number - bend.getPartner().getStaticMatrix()[i]) < 1e-3; })"));
        QSignalSpy announced(m_arm->binding, &RyLegacyBinding::bindingChanged);
        run("twist.resetMatrices()");
        QCOMPARE(announced.count(), 1);
        RyRef<RyLegacyJointParam> kept(m_arm->twistOf(m_arm->elbow, "twistx"));
        m_arm->jointOf(m_arm->elbow)->removeJointParam(kept.get());
        QCOMPARE(errorOf("twist.resetMatrices()"), QString("Error: \"twistx\" is on no joint."));
    }

    void values()
    {
        QVERIFY(holds("twist.getValueNames().slice(0, 3).join() === 'start,end,dynamic_xtran'"));
        QVERIFY(holds("bend.getValueNames().length === 28"));
        QVERIFY(holds("twist.setValue('start', 5); twist.setValue('static_zrot', 40); twist.getValue('start') === 5"));
        QCOMPARE(m_arm->twistOf(m_arm->elbow, "twistx")->getStart(), 5.0f);
        QCOMPARE(m_arm->twistOf(m_arm->elbow, "twistx")->getStaticSphere()->getZRotControl()->getValue(), 40.0f);
        QVERIFY(holds("twist.getDefaultValue('start') === -24384"));
        QCOMPARE(errorOf("twist.getValue('staticA')"), QString("Error: \"twistx\" has no value called \"staticA\"."));
        QCOMPARE(errorOf("twist.setValue('start', 1 / 0)"), QString("Error: start takes a number."));
        m_arm->twistOf(m_arm->elbow, "twistx")->getBlendEndPostionController()->setIsClamped(true);
        QVERIFY(errorOf("twist.setValue('end', 30000)").startsWith("Error: "));
        QVERIFY(holds("twist.getValue('end') === 24384"));
    }

    void angles()
    {
        QVERIFY(holds("bend.getAngles().join() === '90,45,-45,-90'"));
        QVERIFY(holds("bend.setAngles(120, 30, -30, -60); bend.getAngles().map(Math.round).join() === "
                      "'120,30,-30,-60'"));
        QVERIFY(holds("bend.setAngle(0, 10); bend.getAngles().map(Math.round).join() === '10,10,-30,-60'"));
        QVERIFY(holds("bend.getPartner().getAngles().map(Math.round).join() === '10,10,-30,-60'"));
        QVERIFY(holds("bend.setAngle(1, 50, false); bend.getAngles().map(Math.round).join() === '10,50,-30,-60'"));
        QCOMPARE(errorOf("bend.setAngle(4, 1)"), QString("Error: An angle has an index from 0 to 3, and is a number."));
        QCOMPARE(errorOf("bend.setAngles(1, 2, 3, 'x')"), QString("Error: Angles are four numbers."));
        QCOMPARE(errorOf("twist.getAngles()"), QString("Error: This is no RyLegacyBendParam, or it is gone."));
    }

    void matrices()
    {
        QVERIFY(holds("bend.getDynamicMatrix().join() === '1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1'"));
        QVERIFY(holds("bend.setDynamicMatrix([2,0,0,0, 0,3,0,0, 0,0,4,0, 5,6,7,1]);"
                      "bend.getDynamicMatrix().map(Math.round).join() === '2,0,0,0,0,3,0,0,0,0,4,0,5,6,7,1'"));
        QVERIFY(holds("bend.getStaticMatrix()[0] === 1"));
        QVERIFY(holds("bend.setStaticMatrix(bend.getDynamicMatrix());"
                      "bend.getStaticMatrix().map(Math.round).join() === '2,0,0,0,0,3,0,0,0,0,4,0,5,6,7,1'"));
        QCOMPARE(errorOf("bend.setStaticMatrix([1, 2])"), QString("Error: A matrix is an array of sixteen numbers."));
    }

    void weights()
    {
        const RyWeightMap *map = m_arm->bendOf(m_arm->arm, "elbow_jointy")->getWeights(m_arm->skeleton.get());
        QVERIFY(map && map->getNumAffected() > 0);
        const int affected = map->getNumAffected();
        const int weight = map->getAffectedWeights()[0];
        QVERIFY(holds("var map = bend.getPartner().getWeights(); map.getNumWeights() === figure.getNumVertices()"));
        QCOMPARE(run("map.getNumAffected()").toInt32(), affected);
        QCOMPARE(run("map.getAffectedWeights()[0]").toInt32(), weight);
        QVERIFY(holds("bend.getWeights().getNumAffected() === 0")); // all belongs to the first bone
        m_arm->jointOf(m_arm->elbow)->setBone(nullptr);
        QVERIFY(holds("bend.getWeights() === null"));
    }

    void stepsGoBack()
    {
        const QString before = ryBindingText(*m_arm->binding);
        run("Undo.step('Edit', function () { bend.setAngles(1, 2, 3, 4); bend.setFlag('matrices', true);"
            "twist.setValue('start', 3); scale.setAxis(1); scale.setDriver(hand); })");
        QVERIFY(!m_engine->hasFailed());
        QVERIFY(ryBindingText(*m_arm->binding) != before);
        QVERIFY(holds("Undo.undo()"));
        QCOMPARE(ryBindingText(*m_arm->binding), before);
    }
};

RY_TEST(LegacyScriptingTest)
#include "tst_legacyScripting.moc"
