#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/tool/drawing/RyBoundaryDrawing.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"

#include <set>

namespace {

/// Three by three squares of 10 in the plane z = 0, the one in the middle split into two triangles. Column x = 0 is the
/// group "left". Vertices row by row, four in a row.
RyFacetMesh *makeGrid()
{
    auto *mesh = new RyFacetMesh;
    std::vector<RyVec3> positions;
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x)
            positions.push_back({10.0f * float(x), 10.0f * float(y), 0});
    }
    mesh->setPositions(positions);
    std::vector<RyFacet> facets;
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 3; ++x) {
            const int a = 4 * y + x;
            if (x == 1 && y == 1) {
                facets.push_back({{a, a + 1, a + 5, -1}, -1});
                facets.push_back({{a, a + 5, a + 4, -1}, -1});
            } else {
                facets.push_back({{a, a + 1, a + 5, a + 4}, -1});
            }
        }
    }
    mesh->setFacets(facets);
    mesh->createFaceGroup(QStringLiteral("left"));
    RyIndexList left;
    for (int facet : {0, 3, 7})
        left.addSortedIndex(facet);
    mesh->selectFacetsByIndexList(left, true);
    mesh->addSelectedFacetsToGroup(QStringLiteral("left"));
    return mesh;
}

using Edge = std::pair<int, int>;

std::set<Edge> edgesOf(const std::vector<int> &pairs)
{
    std::set<Edge> edges;
    for (size_t i = 0; i + 1 < pairs.size(); i += 2)
        edges.insert(std::minmax(pairs[i], pairs[i + 1]));
    return edges;
}

const std::set<Edge> leftBoundary = {{0, 1}, {1, 5}, {5, 9}, {9, 13}, {12, 13}, {8, 12}, {4, 8}, {0, 4}};
const std::set<Edge> wholeBoundary = {{0, 1},   {1, 2},   {2, 3},   {3, 7},  {7, 11}, {11, 15},
                                      {14, 15}, {13, 14}, {12, 13}, {8, 12}, {4, 8},  {0, 4}};

/// The stage with the grid on the figure, its left column paired with the shin.
class BoundaryStage : public RyDrawingStage
{
public:
    BoundaryStage()
    {
        mesh = makeGrid();
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        figure->setObject(object);
        auto *map = new RySelectionMap;
        map->addPair(QStringLiteral("left"), lShin, true);
        figure->setSelectionMap(map);
        tool->setBoneDrawMode(RyJointEditorTool::NoBones);
    }
    /// The boundary's vertices in the world, or nothing when there was not exactly one run of them.
    std::vector<RyVec3> boundary(const RyGLRecorder &recording, GLenum mode) const
    {
        std::vector<RyVec3> points;
        for (const auto &primitive : recording.ofMode(mode)) {
            if (primitive.color().kind == "4f" && primitive.color().a == double(0.4f)) {
                for (size_t i = 0; i < primitive.vertices.size(); ++i)
                    points.push_back(world(primitive, i));
            }
        }
        return points;
    }
    RyFacetMesh *mesh;
};

} // namespace

/// Where a bone's face group ends.
class RyBoundaryDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void edges();
    void linesOfTheGroup();
    void wholeMeshWithoutGroup();
    void followsTheFigure();
    void ownObjectFirst();
    void objectWithoutShape();
    void colorAndState();
    void pointSizes_data();
    void pointSizes();
    void notInPickPassNorWhenOff();
    void comesLast();
    void stateIsLeftAsItWas_data();
    void stateIsLeftAsItWas();
};

void RyBoundaryDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyBoundaryDrawingTest::edges()
{
    const RyRef<RyFacetMesh> mesh(makeGrid());
    const std::vector<int> left = RyBoundaryDrawing::findEdges(*mesh, mesh->findFaceGroup(QStringLiteral("left")));
    QCOMPARE(left.size(), size_t(16));
    QVERIFY(edgesOf(left) == leftBoundary);
    const std::vector<int> whole = RyBoundaryDrawing::findEdges(*mesh, nullptr);
    QCOMPARE(whole.size(), size_t(24));
    QVERIFY(edgesOf(whole) == wholeBoundary);
}

void RyBoundaryDrawingTest::linesOfTheGroup()
{
    BoundaryStage stage;
    stage.select(stage.lShin);
    const std::vector<RyVec3> points = stage.boundary(*stage.draw(), GL_LINES);
    QCOMPARE(points.size(), size_t(16));
    for (const RyVec3 &point : points)
        QVERIFY(point.x < 10.1f);
}

void RyBoundaryDrawingTest::wholeMeshWithoutGroup()
{
    BoundaryStage stage;
    for (RyNode *node : {static_cast<RyNode *>(stage.lFoot), static_cast<RyNode *>(stage.figure)}) {
        stage.select(node);
        QCOMPARE(stage.boundary(*stage.draw(), GL_LINES).size(), size_t(24));
    }
    // A pair whose group the mesh does not have is no group.
    stage.figure->getSelectionMap()->addPair(QStringLiteral("elsewhere"), stage.lFoot, true);
    stage.select(stage.lFoot);
    QCOMPARE(stage.boundary(*stage.draw(), GL_LINES).size(), size_t(24));
    stage.mesh->setFacets({{{0, 1, 5, -1}, -1}});
    QCOMPARE(stage.boundary(*stage.draw(), GL_LINES).size(), size_t(6));
    stage.select(stage.prop);
    QCOMPARE(stage.boundary(*stage.draw(), GL_LINES).size(), size_t(0));
}

void RyBoundaryDrawingTest::followsTheFigure()
{
    BoundaryStage stage;
    stage.figure->getXTransControl()->setValue(100.0f);
    stage.figure->getYRotControl()->setValue(90.0f);
    stage.select(stage.lShin);
    RyBox3 box;
    for (const RyVec3 &point : stage.boundary(*stage.draw(), GL_LINES))
        box.include(point);
    // X (0 to 10) points to -Z now.
    QVERIFY((box.getMin() - RyVec3(100, 0, -10)).length() < 1e-2f);
    QVERIFY((box.getMax() - RyVec3(100, 30, 0)).length() < 1e-2f);
}

void RyBoundaryDrawingTest::ownObjectFirst()
{
    BoundaryStage stage;
    auto *mesh = new RyFacetMesh;
    mesh->setPositions({{0, 0, 5}, {1, 0, 5}, {0, 1, 5}});
    mesh->setFacets({{{0, 1, 2, -1}, -1}});
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    stage.lShin->setObject(object);
    stage.select(stage.lShin);
    QCOMPARE(stage.boundary(*stage.draw(), GL_LINES).size(), size_t(6));
}

void RyBoundaryDrawingTest::objectWithoutShape()
{
    BoundaryStage stage;
    stage.lShin->setObject(new RyObject);
    stage.select(stage.lShin);
    QCOMPARE(stage.boundary(*stage.draw(), GL_LINES).size(), size_t(0));
}

void RyBoundaryDrawingTest::colorAndState()
{
    BoundaryStage stage;
    stage.tool->setBoundaryColor(QColor(10, 20, 30));
    stage.select(stage.lShin);
    const auto drawn = stage.draw()->ofColor(rgbaFloats(10, 20, 30, double(0.4f)));
    QCOMPARE(drawn.size(), size_t(1));
    QVERIFY(!drawn[0].lighting);
    QVERIFY(!drawn[0].depthTest);
}

void RyBoundaryDrawingTest::pointSizes_data()
{
    QTest::addColumn<float>("distance");
    QTest::addColumn<float>("size");
    QTest::newRow("100") << 100.0f << 8.0f;
    QTest::newRow("100.1") << 100.1f << 6.0f;
    QTest::newRow("200") << 200.0f << 6.0f;
    QTest::newRow("200.1") << 200.1f << 4.0f;
    QTest::newRow("300") << 300.0f << 4.0f;
    QTest::newRow("301") << 301.0f << 2.0f;
}

void RyBoundaryDrawingTest::pointSizes()
{
    QFETCH(float, distance);
    QFETCH(float, size);
    BoundaryStage stage;
    stage.tool->setBoundaryStyle(0);
    stage.select(stage.lShin);
    stage.viewport->getCamera()->lookAt({0, 0, distance}, {0, 0, 0}); // the first vertex
    const auto recording = stage.draw();
    QCOMPARE(stage.boundary(*recording, GL_LINES).size(), size_t(0));
    QCOMPARE(stage.boundary(*recording, GL_POINTS).size(), size_t(16));
    QCOMPARE(recording->ofMode(GL_POINTS).at(0).pointSize, size);
}

void RyBoundaryDrawingTest::notInPickPassNorWhenOff()
{
    BoundaryStage stage;
    stage.select(stage.lShin);
    QCOMPARE(stage.draw(RyDrawingStage::PickPass)->count("glColor4f"), 0);
    stage.tool->setDrawMeshBoundaries(false);
    QCOMPARE(stage.boundary(*stage.draw(), GL_LINES).size(), size_t(0));
}

void RyBoundaryDrawingTest::comesLast()
{
    BoundaryStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::EntireFigure);
    stage.select(stage.lShin);
    const auto recording = stage.draw();
    QCOMPARE(recording->primitives.back().color(), rgbaFloats(255, 255, 255, double(0.4f)));
    QCOMPARE(recording->primitives.back().vertices.size(), size_t(16));
}

void RyBoundaryDrawingTest::stateIsLeftAsItWas_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("node");
    QTest::newRow("lines of the group") << 1 << "lShin";
    QTest::newRow("points of the group") << 0 << "lShin";
    QTest::newRow("lines of the mesh") << 1 << "lFoot";
    QTest::newRow("points of the mesh") << 0 << "lFoot";
}

void RyBoundaryDrawingTest::stateIsLeftAsItWas()
{
    QFETCH(int, style);
    QFETCH(QString, node);
    BoundaryStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::EntireFigure);
    stage.tool->setBoundaryStyle(style);
    stage.select(ryScene()->findNode(node));
    // Loads the matrices that the state is compared with; what this leaves behind is set anew.
    QVERIFY(!stage.boundary(*stage.draw(), style == 1 ? GL_LINES : GL_POINTS).empty());
    RyDrawingStage::setUncommonState();
    const QVector<float> before = RyDrawingStage::glState();
    stage.draw();
    QCOMPARE(RyDrawingStage::glState(), before);
    QCOMPARE(glGetError(), GLenum(GL_NO_ERROR));
    RyDrawingStage::setCommonState();
}

RY_TEST(RyBoundaryDrawingTest)

#include "tst_RyBoundaryDrawing.moc"
