#include "RyGroupedFigure.h"

#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"

namespace {

const QString noSkin = QStringLiteral("Figure has no skinbinding.");
const QString noShape = QStringLiteral("Figure has no shape (or none wrong kind of shape).");
const QString noFaces = QStringLiteral("Figure does not have a mesh with faces.");
const QString notBound = QStringLiteral("Figure is not bound to any bones.");

/// A shape of points alone.
class CloudShape : public RyShape
{
public:
    RyVertexMesh *getGeometry() const override { return m_mesh.get(); }

private:
    RyRef<RyVertexMesh> m_mesh = RyRef<RyVertexMesh>(new RyVertexMesh);
};

} // namespace

/// Puts a skin that binds nothing and that shape, if any, in place of the figure's object.
static void putShape(const RyGroupedFigure &scene, RyShape *shape)
{
    auto *object = new RyObject;
    if (shape)
        object->addShape(shape);
    object->addModifier(new RySkinBinding);
    scene.figure->setObject(object);
}

/// Which figures are refused, with which code and text, and that nothing is changed then.
class MapBuilderRefusalsTest : public QObject
{
    Q_OBJECT

    /// The figure has a pair that a success would clear.
    static void checkRefused(RyFigure *figure, int code, const QString &error)
    {
        RyBindingToSelectionMapBuilder builder;
        builder.setMaintainExistingSelectionMappings(false);
        const QString before = rySceneDump(*ryScene());
        const RySelectionMap *map = figure ? figure->getSelectionMap() : nullptr;
        for (const bool regroup : {true, false}) {
            builder.setAllowRegrouping(regroup);
            QCOMPARE(builder.buildSelectionMap(figure).code(), code);
            QCOMPARE(builder.getLastError(), error);
            QCOMPARE(rySceneDump(*ryScene()), before);
            QCOMPARE(figure ? figure->getSelectionMap() : nullptr, map);
        }
    }

private slots:
    void null() { checkRefused(nullptr, 96, noSkin); }

    void noSkinBinding()
    {
        RyGroupedFigure scene;
        scene.object->removeModifier(scene.skin);
        checkRefused(scene.figure, 96, noSkin);
        scene.addPair("upper", scene.leg);
        checkRefused(scene.figure, 96, noSkin);
        scene.figure->setObject(nullptr);
        checkRefused(scene.figure, 96, noSkin);
    }

    void noShapeOfFacets()
    {
        RyGroupedFigure scene;
        scene.addPair("upper", scene.leg);
        putShape(scene, nullptr);
        checkRefused(scene.figure, 96, noShape);
        putShape(scene, new CloudShape);
        QVERIFY(RyShape::getCurrentShapeForNode(scene.figure));
        checkRefused(scene.figure, 96, noShape);
    }

    void noMeshWithFaces()
    {
        RyGroupedFigure scene;
        scene.bind(scene.arm, {65535});
        scene.addPair("upper", scene.leg);
        auto *shape = qobject_cast<RyFacetShape *>(scene.object->getCurrentShape());
        QVERIFY(shape);
        shape->setFacetMesh(nullptr);
        checkRefused(scene.figure, 96, noFaces);
        // Facets, but no vertex.
        const RyRef<RyFacetMesh> empty(new RyFacetMesh);
        empty->setFacets({{{0, 0, 0, -1}, -1}});
        shape->setFacetMesh(empty.get());
        QCOMPARE(empty->getNumFacets(), 1);
        checkRefused(scene.figure, 96, noFaces);
        // Vertices, but no facet.
        const RyRef<RyFacetMesh> cloud(new RyFacetMesh);
        cloud->setPositions(std::vector<RyVec3>(15));
        shape->setFacetMesh(cloud.get());
        checkRefused(scene.figure, 96, noFaces);
        QCOMPARE(empty->refCount(), 1);
        QCOMPARE(cloud->refCount(), 2);
    }

    void noBones()
    {
        RyGroupedFigure scene;
        scene.addPair("upper", scene.leg);
        checkRefused(scene.figure, 98, notBound);
        // One of two bindings has no map.
        scene.bind(scene.arm, {65535});
        auto *bare = new RyBoneBinding;
        bare->setBone(scene.hand);
        scene.skin->addBoneBinding(bare);
        checkRefused(scene.figure, 98, notBound);
    }

    /// Also where nobody has pairs that would keep it.
    void noMapIsMade()
    {
        RyGroupedFigure scene;
        checkRefused(scene.figure, 98, notBound);
        QVERIFY(!scene.figure->getSelectionMap());
    }

    void theFirstFaultIsTold()
    {
        RyGroupedFigure scene;
        putShape(scene, nullptr);
        checkRefused(scene.figure, 96, noShape);
        putShape(scene, new RyFacetShape);
        checkRefused(scene.figure, 96, noFaces);
        RyObject *object = scene.figure->getObject();
        object->removeModifier(object->findModifier<RySkinBinding>());
        checkRefused(scene.figure, 96, noSkin);
    }

    void aSuccessClearsTheText()
    {
        RyGroupedFigure scene;
        RyBindingToSelectionMapBuilder builder;
        QCOMPARE(builder.buildSelectionMap(nullptr).code(), 96);
        QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 98);
        QCOMPARE(builder.getLastError(), notBound);
        scene.bind(scene.arm, {65535});
        QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
        QCOMPARE(builder.getLastError(), QString());
    }

    void theMeshIsLetGo()
    {
        RyGroupedFigure scene;
        RyBindingToSelectionMapBuilder builder;
        const int count = scene.mesh->refCount();
        QVERIFY(count > 0);
        QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 98);
        QCOMPARE(scene.mesh->refCount(), count);
        scene.bind(scene.arm, {65535});
        for (const bool regroup : {false, true}) {
            builder.setAllowRegrouping(regroup);
            QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
            QCOMPARE(scene.mesh->refCount(), count);
        }
    }
};

RY_TEST(MapBuilderRefusalsTest)

#include "tst_mapBuilderRefusals.moc"
