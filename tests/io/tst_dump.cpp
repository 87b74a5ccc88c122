#include "CharacterScene.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyBulgeBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <functional>
#include <set>

namespace {

/// A little of everything.
struct Everything
{
    RyScene scene;
    RyFigure *figure = new RyFigure;
    RyBone *hip = new RyBone;
    RyBone *spine = new RyBone;
    RyNode *prop = new RyNode;
    RyCamera *camera = new RyCamera;
    RyObject *object = new RyObject;
    RyFacetMesh *mesh = new RyFacetMesh;
    RyFacetShape *shape = new RyFacetShape(mesh);
    RySkinBinding *skin = new RySkinBinding;
    RyBoneBinding *general = new RyBoneBinding;
    RyBoneBinding *local = new RyBoneBinding;
    RyBulgeBinding *bulge = new RyBulgeBinding(1);
    RySelectionMap *map = new RySelectionMap;

    Everything()
    {
        figure->setName(QStringLiteral("figure"));
        hip->setName(QStringLiteral("hip"));
        spine->setName(QStringLiteral("spine"));
        prop->setName(QStringLiteral("prop"));
        camera->setName(QStringLiteral("camera"));
        hip->setOrigin({0, 100, 0}, true);
        hip->setEndPoint({0, 120, 0}, true);
        spine->setOrigin({0, 120, 0}, true);
        figure->addNodeChild(hip);
        hip->addNodeChild(spine);
        mesh->setPositions({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 2, 0}});
        mesh->setFacets({{{0, 1, 2, 3}, -1}, {{2, 4, 3, -1}, -1}});
        mesh->createFaceGroup(QStringLiteral("lower"));
        mesh->createFaceGroup(QStringLiteral("upper"));
        mesh->setGroupsOfFacets({0, 1});
        object->setName(QStringLiteral("body"));
        object->addShape(shape);
        general->setBone(hip);
        general->setWeights(weights({0, 1}, {65535, 30000}));
        local->setBone(spine);
        for (int axis = 0; axis < 3; ++axis)
            local->setLocalWeights(weights({2, 3}, {quint16(100 + axis), 200}), axis);
        local->setScaleWeights(weights({4}, {65535}));
        bulge->setLeftWeights(weights({1}, {77}));
        bulge->setRightWeights(weights({2}, {88}));
        local->setBulgeBinding(1, bulge);
        skin->addBoneBinding(general);
        skin->addBoneBinding(local);
        object->addModifier(skin);
        figure->setObject(object);
        figure->setSelectionMap(map);
        map->addPair(QStringLiteral("lower"), hip, true);
        for (RyNode *node : {static_cast<RyNode *>(figure), prop, static_cast<RyNode *>(camera)})
            scene.addNode(node);
    }

    static RyWeightMap *weights(std::vector<int> indices, std::vector<quint16> values)
    {
        auto *map = new RyWeightMap;
        map->setAffected(5, std::move(indices), std::move(values));
        return map;
    }
    static void write(RyWeightMap *map, int vertex, quint16 weight)
    {
        map->beginEdit();
        map->getWeights()[vertex] = weight;
        map->finishEdit();
    }
};

/// Parts of the mesh with a picture, texture coordinates and normals; an edit of them.
void setParts(Everything &s, const std::function<void(RyMeshParts &)> &edit)
{
    auto parts = std::make_shared<RyMeshParts>();
    parts->parts.resize(1);
    RyMeshPart &part = parts->parts[0];
    part.facetCount = 2;
    part.look = 0;
    part.vertexOfSplit = {0, 1, 2, 3, 4, 2};
    part.normalOfSplit = {0, 1, 2, 3, 4, 5};
    part.uvs = {0, 0, 1, 0, 1, 0.5f, 0, 0.25f, 0.5f, 1, 0.75f, 0.5f};
    part.normals.assign(6, RyVec3(0, 0.6f, 0.8f));
    part.triangles = {0, 1, 2, 0, 2, 3, 5, 4, 3};
    parts->normalCount = 6;
    parts->looks.resize(1);
    parts->looks[0].name = QStringLiteral("skin");
    parts->looks[0].texture = QImage(2, 3, QImage::Format_RGB32);
    parts->looks[0].texture.fill(Qt::red);
    edit(*parts);
    s.shape->setParts(parts);
}

using Edit = std::pair<const char *, std::function<void(Everything &)>>;

std::vector<Edit> undoableEdits()
{
    std::vector<Edit> edits = {
        {"name", [](Everything &s) { s.hip->setName(QStringLiteral("pelvis")); }},
        {"label", [](Everything &s) { s.hip->setLabel(QStringLiteral("Pelvis")); }},
        {"label as the name", [](Everything &s) { s.hip->setLabel(QStringLiteral("hip")); }},
        {"hidden", [](Everything &s) { s.prop->setHidden(true); }},
        {"selectable", [](Everything &s) { s.prop->setSelectable(false); }},
        {"promoting", [](Everything &s) { s.prop->setPromoteSelection(true); }},
        {"inherit scale", [](Everything &s) { s.spine->setInheritScale(false); }},
        {"order", [](Everything &s) { s.spine->setRotationOrder(RyRotationOrder(RyRotationOrder::YXZ)); }},
        {"limit below", [](Everything &s) { s.spine->getXRotControl()->setMin(-5.5f); }},
        {"limit above", [](Everything &s) { s.spine->getXRotControl()->setMax(5.5f); }},
        {"clamped", [](Everything &s) { s.spine->getXRotControl()->setIsClamped(true); }},
        {"property label", [](Everything &s) { s.spine->getXRotControl()->setLabel(QStringLiteral("Bend")); }},
        {"link", [](Everything &s) { RyERCLink::create(s.hip->getXRotControl(), s.spine->getXRotControl()); }},
        {"parent", [](Everything &s) { s.spine->addNodeChild(s.prop); }},
        {"sibling order",
         [](Everything &s) {
             s.figure->addNodeChild(s.prop);
             s.figure->addNodeChild(s.hip);
         }},
        {"new node", [](Everything &s) { s.scene.addNode(new RyNode); }},
        {"removed node", [](Everything &s) { s.scene.removeNode(s.spine); }},
        {"selection pair", [](Everything &s) { s.map->addPair(QStringLiteral("upper"), s.spine, true); }},
        {"pair without node", [](Everything &s) { s.map->addPair(QStringLiteral("upper"), nullptr, true); }},
        {"no selection map", [](Everything &s) { s.figure->setSelectionMap(nullptr); }},
        {"vertex",
         [](Everything &s) {
             s.mesh->setVertex(3, {0, 1, 0.001f});
         }},
        {"facets",
         [](Everything &s) {
             s.mesh->setFacets({{{0, 1, 2, -1}, -1}});
         }},
        {"face group", [](Everything &s) { s.mesh->createFaceGroup(QStringLiteral("third")); }},
        {"no face group", [](Everything &s) { s.mesh->removeFaceGroup(QStringLiteral("upper")); }},
        {"facet of another group",
         [](Everything &s) {
             s.mesh->setGroupsOfFacets({1, 1});
         }},
        {"other mesh", [](Everything &s) { s.shape->setFacetMesh(new RyFacetMesh); }},
        {"other object", [](Everything &s) { s.figure->setObject(new RyObject); }},
        {"no skin", [](Everything &s) { s.object->removeModifier(s.skin); }},
        {"no binding", [](Everything &s) { s.skin->removeBoneBinding(s.general); }},
        {"binding's bone", [](Everything &s) { s.general->setBone(s.spine); }},
        {"general weight", [](Everything &s) { Everything::write(s.general->getWeights(), 2, 5); }},
        {"scale weight", [](Everything &s) { Everything::write(s.local->getScaleWeights(), 2, 5); }},
        {"no general map", [](Everything &s) { s.general->setWeights(nullptr); }},
        {"bulge value", [](Everything &s) { s.bulge->getNegRightBulgeController()->setValue(0.25f); }},
        {"bulge default", [](Everything &s) { s.bulge->getPosLeftBulgeController()->setDefaultValue(0.25f); }},
        {"bulge limit", [](Everything &s) { s.bulge->getPosLeftBulgeController()->setMax(0.25f); }},
        {"bulge weight", [](Everything &s) { Everything::write(s.bulge->getRightWeights(), 0, 3); }},
        {"no bulge", [](Everything &s) { s.local->setBulgeBinding(1, nullptr); }},
    };
    for (int axis = 0; axis < 3; ++axis)
        edits.push_back(
            {"local weight", [axis](Everything &s) { Everything::write(s.local->getLocalWeights(axis), 0, 9); }});
    // Every number of a node, current and default.
    const std::vector<RyFloatProperty *(RyNode::*)() const> controls = {
        &RyNode::getOriginXControl, &RyNode::getOriginYControl, &RyNode::getOriginZControl, &RyNode::getEndXControl,
        &RyNode::getEndYControl,    &RyNode::getEndZControl,    &RyNode::getOrientXControl, &RyNode::getOrientYControl,
        &RyNode::getOrientZControl, &RyNode::getXTransControl,  &RyNode::getYTransControl,  &RyNode::getZTransControl,
        &RyNode::getXRotControl,    &RyNode::getYRotControl,    &RyNode::getZRotControl,    &RyNode::getScaleControl,
        &RyNode::getXScaleControl,  &RyNode::getYScaleControl,  &RyNode::getZScaleControl};
    for (const auto control : controls) {
        edits.push_back({"value", [control](Everything &s) { (s.hip->*control)()->setValue(3.25f); }});
        edits.push_back({"default", [control](Everything &s) { (s.spine->*control)()->setDefaultValue(-7.5f); }});
    }
    return edits;
}

std::vector<Edit> otherEdits()
{
    return {
        {"selection", [](Everything &s) { s.hip->select(true); }},
        {"order of selection",
         [](Everything &s) {
             s.scene.setSelection({s.spine, s.hip});
         }},
        {"another order of selection",
         [](Everything &s) {
             s.scene.setSelection({s.hip, s.spine});
         }},
        {"time", [](Everything &s) { s.scene.setTime(RyTime(9)); }},
        {"follow target",
         [](Everything &s) {
             auto *other = new RyFigure;
             s.scene.addNode(other);
             other->setFollowTarget(s.figure);
         }},
        {"drawn bones", [](Everything &s) { s.figure->setDrawGLBones(true); }},
        {"opening angle", [](Everything &s) { s.camera->setFieldOfView(1.0f); }},
        {"orthographic", [](Everything &s) { s.camera->setOrthographic(true); }},
        {"orthographic height", [](Everything &s) { s.camera->setOrthographicHeight(77.0f); }},
        {"focal distance", [](Everything &s) { s.camera->setFocalDistance(77.0f); }},
        {"second shape", [](Everything &s) { s.object->addShape(new RyFacetShape(new RyFacetMesh)); }},
        {"object's name", [](Everything &s) { s.object->setName(QStringLiteral("other")); }},
        {"node of another class", [](Everything &s) { s.scene.addNode(new RyBone); }},
    };
}

} // namespace

class DumpTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void equalScenesEqualText()
    {
        Everything a;
        Everything b;
        QVERIFY(rySceneDump(a.scene) == rySceneDump(b.scene));
        QVERIFY(rySceneDump(a.scene) == rySceneDump(a.scene));
        // The way to a state leaves no trace.
        a.hip->setName(QStringLiteral("other"));
        a.hip->setName(QStringLiteral("hip"));
        a.spine->getXRotControl()->setValue(5.0f);
        a.spine->getXRotControl()->setValue(-0.0f);
        a.skin->reduceWeightMemory();
        QVERIFY(rySceneDump(a.scene) == rySceneDump(b.scene));
        QVERIFY(!rySceneDump(a.scene).contains(QStringLiteral("0x")));
    }

    /// Each kind of thing, changed once, changes the text; undo brings the old one back and redo the new one.
    void everyUndoableEdit()
    {
        std::set<QString> texts;
        for (const auto &[name, edit] : undoableEdits()) {
            Everything s;
            const QString before = rySceneDump(s.scene);
            {
                RyUndoStackHold hold;
                edit(s);
                hold.accept(QLatin1String(name));
            }
            const QString after = rySceneDump(s.scene);
            QVERIFY2(after != before, name);
            QVERIFY2(texts.insert(after).second, name);
            ryUndoStack()->undo();
            QVERIFY2(rySceneDump(s.scene) == before, name);
            ryUndoStack()->redo();
            QVERIFY2(rySceneDump(s.scene) == after, name);
            ryUndoStack()->clearAll();
        }
    }

    /// What a file gives a mesh to look like, each of it changed once.
    void everyPart()
    {
        const std::vector<std::function<void(RyMeshParts &)>> edits = {
            [](RyMeshParts &) {},
            [](RyMeshParts &p) { p.parts[0].uvs[3] = 0.125f; },
            [](RyMeshParts &p) { p.parts[0].uvs.clear(); },
            [](RyMeshParts &p) { p.parts[0].normals[4] = RyVec3(0, 1, 0); },
            [](RyMeshParts &p) { std::swap(p.parts[0].normals[4] = RyVec3(0, 1, 0), p.parts[0].normals[2]); },
            [](RyMeshParts &p) { p.parts[0].normals.clear(); },
            [](RyMeshParts &p) { p.parts[0].look = -1; },
            [](RyMeshParts &p) { p.looks[0].name = QStringLiteral("cloth"); },
            [](RyMeshParts &p) { p.looks[0].baseColor[3] = 0.5f; },
            [](RyMeshParts &p) { p.looks[0].doubleSided = true; },
            [](RyMeshParts &p) { p.looks[0].texture = QImage(); },
            [](RyMeshParts &p) { p.looks[0].texture.setPixelColor(1, 2, Qt::blue); },
        };
        std::set<QString> texts{rySceneDump(Everything().scene)};
        for (const auto &edit : edits) {
            Everything a, b;
            setParts(a, edit);
            setParts(b, edit);
            QCOMPARE(rySceneDump(a.scene), rySceneDump(b.scene));
            QVERIFY(texts.insert(rySceneDump(a.scene)).second);
        }
    }

    /// A polygon is the same one wherever it starts, and another one when it runs the other way round.
    void startOfPolygons()
    {
        const auto withFacets = [](const std::vector<RyFacet> &facets) {
            Everything s;
            s.mesh->setFacets(facets);
            return rySceneDump(s.scene);
        };
        const QString dump = withFacets({{{0, 1, 2, 3}, -1}, {{2, 4, 3, -1}, -1}});
        QCOMPARE(withFacets({{{2, 3, 0, 1}, -1}, {{3, 2, 4, -1}, -1}}), dump);
        QCOMPARE(withFacets({{{1, 2, 3, 0}, -1}, {{4, 3, 2, -1}, -1}}), dump);
        QVERIFY(withFacets({{{0, 3, 2, 1}, -1}, {{2, 4, 3, -1}, -1}}) != dump);
        QVERIFY(withFacets({{{0, 1, 3, 2}, -1}, {{2, 4, 3, -1}, -1}}) != dump);
        QVERIFY(withFacets({{{0, 1, 2, 3}, -1}, {{2, 3, 4, -1}, -1}}) != dump);
    }

    void everyOtherEdit()
    {
        std::set<QString> texts;
        for (const auto &[name, edit] : otherEdits()) {
            Everything s;
            const QString before = rySceneDump(s.scene);
            edit(s);
            QVERIFY2(rySceneDump(s.scene) != before, name);
            QVERIFY2(texts.insert(rySceneDump(s.scene)).second, name);
        }
    }

    void oddNames()
    {
        Everything a;
        Everything b;
        a.hip->setName(QStringLiteral("a\"/\"b"));
        a.spine->setName(QStringLiteral("c"));
        b.hip->setName(QStringLiteral("a"));
        b.spine->setName(QStringLiteral("b\"/\"c\\\n"));
        QVERIFY(rySceneDump(a.scene) != rySceneDump(b.scene));
        QCOMPARE(rySceneDump(b.scene).count(QStringLiteral("\nnode ")), 5);
    }
};

RY_TEST(DumpTest)
#include "tst_dump.moc"
