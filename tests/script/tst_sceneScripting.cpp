#include "ScriptStage.h"

#include "player/ToyClip.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/script/RyScript.h"
#include "rycore/skin/RySkinBinding.h"
#include "support/RyTest.h"

/// What scripts see of the scene.
class SceneScriptingTest : public QObject, private ScriptStage
{
    Q_OBJECT

    RyFigure *m_figure = nullptr;
    RyBone *m_hip = nullptr;
    RyBone *m_foot = nullptr;
    RyNode *m_prop = nullptr;

private slots:
    void init()
    {
        open();
        m_figure = new RyFigure;
        m_hip = new RyBone;
        m_foot = new RyBone;
        m_prop = new RyNode;
        const std::pair<RyNode *, const char *> names[] = {
            {m_figure, "figure"}, {m_hip, "hip"}, {m_foot, "foot"}, {m_prop, "prop"}};
        for (const auto &[node, name] : names)
            node->setName(QString::fromLatin1(name));
        m_figure->addNodeChild(m_hip);
        m_hip->addNodeChild(m_foot);
        m_scene->addNode(m_figure);
        m_scene->addNode(m_prop);
    }

    void cleanup() { close(); }

    void links()
    {
        QVERIFY(holds("var hip = Scene.find('hip'), foot = Scene.find('foot');"
                      "hip.setValue('xrot', 12); foot.setValue('yrot', 3);"
                      "foot.addLink('yrot', hip, 'xrot') && !foot.addLink('yrot', hip, 'xrot')"));
        QCOMPARE(m_foot->getYRotControl()->getValue(), 15.0f);
        QVERIFY(holds("var prop = Scene.find('prop'); prop.addLink('xtran', foot, 'yrot') &&"
                      "foot.addLink('yrot', Scene.getSkeletons()[0], 'zrot')"));
        QVERIFY(holds("var links = foot.getLinks('yrot'); links.length === 2 && links[0].node === hip &&"
                      "links[0].name === 'xrot' && links[1].name === 'zrot' && hip.getLinks('xrot').length === 0"));
        QCOMPARE(errorOf("hip.addLink('xrot', prop, 'xtran')"),
                 QString("Error: \"prop: X Translate\" cannot control \"hip: X Rotate\", which controls it already: "
                         "\"hip: X Rotate\" > \"foot: Y Rotate\" > \"prop: X Translate\""));
        QVERIFY(errorOf("hip.addLink('xrot', prop, 'wag')").contains(QLatin1String("has no value called \"wag\"")));
        QVERIFY(errorOf("hip.addLink('wag', prop, 'xtran')").contains(QLatin1String("has no value called \"wag\"")));
        QCOMPARE(errorOf("hip.addLink('xrot', null, 'xtran')"), QString("Error: There is no node."));
        QVERIFY(holds("!foot.removeLink('yrot', hip, 'yrot') && foot.removeLink('yrot', hip, 'xrot')"));
        QCOMPARE(m_foot->getYRotControl()->getValue(), 3.0f);
        QVERIFY(holds(
            "Undo.step('Link', function () { foot.addLink('yrot', hip, 'xrot'); }); foot.getValue('yrot') === 15"));
        QVERIFY(holds("Undo.undo() && foot.getValue('yrot') === 3 && foot.getLinks('yrot').length === 1"));
    }

    void nodesByNameAndPath()
    {
        QCOMPARE(run("Scene.find('foot')").toQObject(), static_cast<QObject *>(m_foot));
        QCOMPARE(run("Scene.find('hip/foot')").toQObject(), static_cast<QObject *>(m_foot));
        QVERIFY(holds("Scene.find('figure/hip') === Scene.find('foot').getNodeParent()"));
        QVERIFY(errorOf("Scene.find('Hip')").contains(QLatin1String("did you mean \"hip\"")));
        m_prop->setName(QStringLiteral("foot"));
        QVERIFY(errorOf("Scene.find('foot')").contains(QLatin1String("figure/hip/foot")));
        QVERIFY(holds("findNode('nobody') === null"));
        QVERIFY(holds("Scene.getNodes().length == 4 && Scene.getTopLevelNodes().length == 2 && "
                      "Scene.getSkeletons().length == 1"));
    }

    void nodesKnowTheirPlace()
    {
        QVERIFY(holds("var f = Scene.find('foot'); f.getPath() == 'figure/hip/foot' && f.getSkeleton().className() == "
                      "'RyFigure'"));
        QVERIFY(holds("f.isA('RyBone') && f.isA('RyNode') && !f.isA('RyFigure')"));
        QVERIFY(holds("var g = f.getSkeleton(); g.getNodeParent() === null && g.getNodeChildren().length == 1 && "
                      "g.getNodeChildren(true).length == 2"));
        QVERIFY(holds("g.getAllBones()[1] === f && g.findBone('foot') === f && g.findBone('toe') === null && "
                      "g.getUniqueBoneName('hip') == 'hip2'"));
        QVERIFY(holds("Scene.find('hip').getNodeChild(0) === f && Scene.find('hip').getNodeChild(7) === null"));
        QVERIFY(holds(
            "Scene.find('prop').addNodeChild(f) && f.getPath() == 'prop/foot' && !f.addNodeChild(Scene.find('prop'))"));
        QCOMPARE(m_foot->getNodeParent(), m_prop);
    }

    void selection()
    {
        QVERIFY(holds("Scene.setSelection(['hip', Scene.find('prop')]); getPrimarySelection() === Scene.find('prop')"));
        QCOMPARE(m_scene->selectedNodeListIterator(), (std::vector<RyNode *>{m_hip, m_prop}));
        QVERIFY(holds("Scene.getSelectedNodes()[0].isSelected() && Scene.getSelectedNodes().length == 2"));
        QVERIFY(errorOf("Scene.setSelection(['nobody'])").contains(QLatin1String("nobody")));
        QVERIFY(errorOf("Scene.setSelection([{}])").contains(QLatin1String("Entry 0")));
        QVERIFY(errorOf("Scene.setSelection('hip')").contains(QLatin1String("array")));
        QCOMPARE(m_scene->selectedNodeListIterator(), (std::vector<RyNode *>{m_hip, m_prop}));
    }

    void clips()
    {
        const auto origin = std::make_shared<ToyOrigin>();
        origin->given = {std::make_shared<ToyClip>(QStringLiteral("walk"), 1.0, 3.0, std::vector<RyNode *>{m_figure}),
                         std::make_shared<ToyClip>(QStringLiteral("spin"), 0.0, 1.0, std::vector<RyNode *>{m_prop})};
        m_scene->addOrigin(origin);
        QVERIFY(holds("var c = Scene.getClips(); c.length === 2 && c[0].name === 'walk' && c[0].start === 1 && "
                      "c[0].end === 3 && c[0].figures.length === 1 && c[0].figures[0] === Scene.find('figure')"));
        QVERIFY(holds("Scene.getShownClip() === null"));
        QVERIFY(holds("Scene.showClip('figure/walk'); Scene.getShownClip().time === 1"));
        QVERIFY(m_figure->isPlayed());
        QVERIFY(holds("Scene.showClip('figure/1', 2.5); Scene.getShownClip().time === 2.5"));
        QVERIFY(holds("Scene.find('figure').getWSPos().x === 2.5"));
        QVERIFY(holds("Scene.setClipTime(2); Scene.getShownClip().time === 2"));
        QVERIFY(holds("Scene.showClip('prop/spin'); Scene.getShownClip().name === 'spin'"));
        QVERIFY(!m_figure->isPlayed());
        QVERIFY(errorOf("Scene.showClip('prop/walk')").contains(QLatin1String("\"figure/walk\", \"prop/spin\"")));
        QVERIFY(holds("Scene.stopClip(); Scene.getShownClip() === null"));
        QVERIFY(errorOf("Scene.setClipTime(2)").contains(QLatin1String("No clip")));
        QVERIFY(holds("Scene.showClip('figure/walk', 2); Undo.step('turn', function() { "
                      "Scene.find('figure').setValue('xtran', Scene.find('figure').getWSPos().x + 7); }); "
                      "Scene.getShownClip() === null && Scene.find('figure').getWSPos().x === 7"));
    }
    /// A script begins with poses.
    void scriptsPutClipsAway()
    {
        const auto origin = std::make_shared<ToyOrigin>();
        auto *figure = new RyFigure;
        ryScene()->addNode(figure);
        origin->given = {std::make_shared<ToyClip>(QStringLiteral("walk"), 1.0, 3.0, std::vector<RyNode *>{figure})};
        ryScene()->setOrigins({origin});
        ryScene()->getClipPlayer()->show(origin->given.front(), 2.0);
        RyScript script(QStringLiteral("nothing"));
        script.setSource(QStringLiteral("1 + 1"));
        QVERIFY(script.execute());
        QVERIFY(!ryScene()->getClipPlayer()->isShowing());
        ryScene()->clear();
    }

    void values()
    {
        QVERIFY(holds("var h = Scene.find('hip'); h.setValue('xrot', 12.5); h.getValue('xrot') === 12.5"));
        QCOMPARE(m_hip->getXRotControl()->getValue(), 12.5f);
        QVERIFY(holds("h.setDefaultValue('endX', 3); h.getDefaultValue('endX') === 3 && h.getValue('endX') === 0"));
        QVERIFY(errorOf("h.getValue('xrott')").contains(QLatin1String("xrot, yrot")));
        QVERIFY(errorOf("h.setValue('xrot', NaN)").contains(QLatin1String("number")));
        m_hip->getXRotControl()->setMax(45.0f);
        m_hip->getXRotControl()->setIsClamped(true);
        QVERIFY(errorOf("h.setValue('xrot', 90)").contains(QLatin1String("45")));
        QVERIFY(holds("h.setOrigin({x: 1, y: 2, z: 3}); h.getOrigin().y === 2 && h.getValue('originZ') === 3"));
        QVERIFY(errorOf("h.setOrigin({x: 1, y: 2})").contains(QLatin1String("x, y and z")));
        QVERIFY(holds("h.setRotationOrder('ZYX'); h.getRotationOrder() === 'ZYX'"));
        QVERIFY(errorOf("h.setRotationOrder('ZZZ')").contains(QLatin1String("YXZ")));
        QVERIFY(errorOf("h.setName('')").contains(QLatin1String("name")));
    }

    void undoSteps()
    {
        QVERIFY(holds("var h = Scene.find('hip'); Undo.step('One', function() { h.setName('pelvis'); "
                      "h.setValue('xrot', 5); return 7; }) === 7"));
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("One"));
        QVERIFY(holds("Undo.undo() && h.getName() == 'hip' && h.getValue('xrot') === 0 && !Undo.undo()"));
        QVERIFY(holds("Undo.redo() && h.getName() == 'pelvis' && !Undo.redo() && Undo.index() == 1"));
        QVERIFY(errorOf("Undo.step('Two', function() { h.setName('x'); throw new Error('stop'); })")
                    .contains(QLatin1String("stop")));
        QCOMPARE(m_hip->getName(), QStringLiteral("pelvis"));
        QCOMPARE(ryUndoStack()->count(), 1);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QVERIFY(errorOf("Undo.step('Three', 3)").contains(QLatin1String("function")));
        // Without a step: changed, not recorded.
        QVERIFY(holds("h.setValue('yrot', 5); Undo.captions().length == 1"));
    }

    void pointersConvert()
    {
        const auto asFigure = [&](const char *program) { return qscriptvalue_cast<RyFigure *>(run(program)); };
        QCOMPARE(asFigure("Scene.find('figure')"), m_figure);
        QCOMPARE(asFigure("Scene.find('hip')"), nullptr);
        QCOMPARE(asFigure("Scene"), nullptr);
        QCOMPARE(asFigure("null"), nullptr);
        QCOMPARE(qscriptvalue_cast<RyBone *>(run("Scene.find('hip')")), m_hip);
        QCOMPARE(qscriptvalue_cast<RyNode *>(run("Scene.find('hip')")), static_cast<RyNode *>(m_hip));
        QCOMPARE(qscriptvalue_cast<RyBone *>(run("Scene.find('prop')")), nullptr);
        QVERIFY(holds("typeof Scene.find('prop').getAllBones == 'undefined' && typeof Scene.find('hip').deleteLater == "
                      "'undefined'"));
        QVERIFY(
            errorOf("Scene.find('figure').getAllBones.call(Scene.find('hip'))").contains(QLatin1String("RySkeleton")));
    }

    void nodesThatAreGone()
    {
        run("var p = Scene.find('prop');");
        QVERIFY(holds("Scene.removeNode(p) === 0 && Scene.getNodes().length == 3"));
        QVERIFY(!errorOf("p.getName()").isEmpty());
        QVERIFY(m_engine->hasFailed());
    }

    void weights()
    {
        auto *object = new RyObject;
        auto *skin = new RySkinBinding;
        const std::vector<int> parts[] = {{65535, 40000}, {0, 25535}};
        RyBone *bones[] = {m_hip, m_foot};
        for (int b = 0; b < 2; ++b) {
            auto *map = new RyWeightMap;
            std::vector<int> vertices;
            std::vector<quint16> weights;
            for (int v = 0; v < 2; ++v) {
                vertices.push_back(v);
                weights.push_back(quint16(parts[b][size_t(v)]));
            }
            map->setAffected(3, vertices, weights);
            auto *binding = new RyBoneBinding;
            binding->setBone(bones[b]);
            binding->setWeights(map);
            skin->addBoneBinding(binding);
        }
        object->addModifier(skin);
        m_figure->setObject(object);
        QVERIFY(holds("var s = Scene.find('figure').getSkinBinding(); s.getNumBoneBindings() == 2 && "
                      "s.hasGeneralMaps() && !s.hasLocalMaps()"));
        QVERIFY(holds("var b = s.findBoneBinding(Scene.find('foot')); b.getBone() === Scene.find('foot') && "
                      "b.getLocalWeights(0) === null"));
        QVERIFY(holds("var m = b.getWeights(); m.getNumWeights() == 3 && m.getNumAffected() == 1 && m.getWeight(1) == "
                      "25535 && m.getWeight(9) == 0"));
        QVERIFY(holds("m.getAffectedIndices()[0] === 1 && m.getAffectedWeights()[0] === 25535"));
        QVERIFY(holds("var sum = 0; s.getBoneBindings().forEach(function(x) { sum += x.getWeights().getWeight(1); }); "
                      "sum === 65535"));
        QVERIFY(holds("s.findBoneBinding(Scene.find('prop')) === null"));
    }

    void namesStayUnique()
    {
        QVERIFY2(errorOf("Scene.find('foot').setName('hip')").contains(QLatin1String("it belongs to figure/hip")),
                 "of one figure");
        QVERIFY(errorOf("Scene.find('prop').setName('figure')").contains(QLatin1String("taken")));
        QCOMPARE(m_foot->getName(), QStringLiteral("foot"));
        QVERIFY(holds("Scene.find('foot').setName('foot'); Scene.find('foot').setName('figure'); true"));
        QCOMPARE(m_foot->getName(), QStringLiteral("figure"));
        m_prop->setName(QStringLiteral("hip"));
        QVERIFY(errorOf("Scene.find('figure/hip').addNodeChild(Scene.getTopLevelNodes()[1])")
                    .contains(QLatin1String("taken")));
        QVERIFY(!m_prop->getNodeParent());
        m_prop->setName(QStringLiteral("hat"));
        QVERIFY(holds("Scene.find('hip').addNodeChild(Scene.find('hat'))"));
    }

    void emptyLabelsFallBackToTheName()
    {
        QVERIFY(holds("var n = Scene.find('foot'); n.setLabel('Left Foot'); n.setLabel(' '); n.getLabel() === 'foot'"));
        m_foot->setName(QStringLiteral("toe"));
        QCOMPARE(m_foot->getLabel(), QStringLiteral("toe"));
    }
};

RY_TEST(SceneScriptingTest)
#include "tst_sceneScripting.moc"
