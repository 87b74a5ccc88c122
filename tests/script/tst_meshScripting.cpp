#include "ScriptStage.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "support/RyTest.h"

/// Meshes and face groups as scripts see them: a strip of two quads and a triangle.
class MeshScriptingTest : public QObject, private ScriptStage
{
    Q_OBJECT

    RyFigure *m_figure = nullptr;
    RyFacetMesh *m_mesh = nullptr;

private slots:
    void init()
    {
        open();
        m_figure = new RyFigure;
        m_figure->setName("figure");
        for (const char *name : {"hip", "foot"}) {
            auto *bone = new RyBone;
            bone->setName(QString::fromLatin1(name));
            m_figure->addNodeChild(bone);
        }
        m_mesh = new RyFacetMesh;
        m_mesh->setPositions({{0, 0, 0}, {0, 2, 0}, {3, 0, 0}, {3, 2, 0}, {6, 0, 0}, {6, 2, 0}, {9, 1, 0}});
        std::vector<RyFacet> facets(3);
        const int corners[3][4] = {{0, 2, 3, 1}, {2, 4, 5, 3}, {4, 6, 5, -1}};
        for (size_t i = 0; i < 3; ++i)
            std::copy(corners[i], corners[i] + 4, facets[i].vertices);
        m_mesh->setFacets(facets);
        auto *shape = new RyFacetShape;
        shape->setFacetMesh(m_mesh);
        auto *object = new RyObject;
        object->addShape(shape);
        m_figure->setObject(object);
        auto *prop = new RyNode;
        prop->setName("empty");
        auto *other = new RyFigure;
        other->setName("other");
        auto *tail = new RyBone;
        tail->setName("tail");
        other->addNodeChild(tail);
        for (RyNode *node : {static_cast<RyNode *>(m_figure), prop, static_cast<RyNode *>(other)})
            m_scene->addNode(node);
        QVERIFY(holds("var figure = Scene.find('figure'), mesh = figure.getMesh(), hip = Scene.find('hip'),"
                      "foot = Scene.find('foot'); true"));
    }

    void cleanup() { close(); }

    void whatItIsMadeOf()
    {
        QVERIFY(holds("mesh.getNumVertices() === 7 && mesh.getNumFacets() === 3"));
        QVERIFY(holds("var v = mesh.getVertex(6); v.x === 9 && v.y === 1 && v.z === 0"));
        QVERIFY(holds("mesh.getFacetVertices(1).join() === '2,4,5,3' && mesh.getFacetVertices(2).join() === '4,6,5'"));
        QVERIFY(holds("figure.getNumVertices() === 7 && figure.getNumFacets() === 3"));
        QVERIFY(holds("var empty = Scene.find('empty'); empty.getMesh() === null && empty.getNumVertices() === 0 &&"
                      "empty.getNumFacets() === 0 && empty.getFaceGroupNames().length === 0"));
        QCOMPARE(errorOf("mesh.getVertex(7)"), QString("Error: There is no vertex 7: the mesh has 7."));
        QCOMPARE(errorOf("mesh.getFacetVertices(-1)"), QString("Error: There is no facet -1: the mesh has 3."));
    }

    void groups()
    {
        QVERIFY(holds("mesh.setFaceGroup('arm', [2, 0]); mesh.getFaceGroup('arm').join() === '0,2'"));
        QVERIFY(holds("mesh.setFaceGroup('leg', [0, 1]); mesh.getFaceGroup('arm').join() === '2' &&"
                      "mesh.getFaceGroup('leg').join() === '0,1' && mesh.getFaceGroupNames().join() === 'arm,leg' &&"
                      "figure.getFaceGroupNames().join() === 'arm,leg'"));
        QVERIFY(holds("mesh.setFaceGroup('leg', [1]); mesh.getFaceGroup('leg').join() === '1'"));
        QVERIFY(holds("Undo.step('All', function () { mesh.setFaceGroup('arm', [0, 1, 2]); });"
                      "mesh.getFaceGroup('leg').length === 0 && mesh.getFaceGroup('arm').length === 3"));
        QVERIFY(holds("Undo.undo() && mesh.getFaceGroup('leg').join() === '1'"));
    }

    void refusedGroups_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::addColumn<QString>("error");
        const QString numbers("Error: The facets of a group are an array of numbers from 0 to 2.");
        QTest::newRow("no name") << QByteArray("mesh.setFaceGroup('', [0])") << "Error: A face group needs a name.";
        QTest::newRow("unknown") << QByteArray("mesh.getFaceGroup('tail')")
                                 << "Error: The mesh has no face group called \"tail\".";
        for (const char *facets : {"[3]", "[-1]", "[0.5]", "['0']", "0", "undefined"})
            QTest::newRow(facets) << QByteArray("mesh.setFaceGroup('arm', ") + facets + ")" << numbers;
    }
    void refusedGroups()
    {
        QFETCH(QByteArray, program);
        QFETCH(QString, error);
        QCOMPARE(errorOf(program), error);
        QCOMPARE(m_mesh->getNumFaceGroups(), 0);
    }

    void groupsOfBones()
    {
        QVERIFY(holds("mesh.setFaceGroup('arm', [0]); mesh.setFaceGroup('leg', [1]); figure.getFaceGroup(hip) === ''"));
        QVERIFY(holds("figure.setFaceGroup(hip, 'arm'); figure.getFaceGroup(hip) === 'arm'"));
        QVERIFY(holds("figure.setFaceGroup(foot, 'arm'); figure.getFaceGroup(foot) === 'arm' &&"
                      "figure.getFaceGroup(hip) === ''"));
        QVERIFY(holds("figure.setFaceGroup(foot, 'leg'); figure.getFaceGroup(foot) === 'leg'"));
        QCOMPARE(m_figure->getSelectionMap()->getNumPairs(), 1);
        QVERIFY(holds("Undo.step('None', function () { figure.setFaceGroup(foot, ''); });"
                      "figure.getFaceGroup(foot) === ''"));
        QVERIFY(holds("Undo.undo() && figure.getFaceGroup(foot) === 'leg'"));
        QCOMPARE(errorOf("figure.setFaceGroup(foot, 'tail')"),
                 QString("Error: The mesh has no face group called \"tail\"."));
        for (const char *bone : {"null", "Scene.find('tail')"}) {
            const QByteArray program = QByteArray("figure.setFaceGroup(") + bone + ", 'leg')";
            QCOMPARE(errorOf(program), QString("Error: Only a bone of \"figure\" can have a face group of it."));
        }
    }
};

RY_TEST(MeshScriptingTest)
#include "tst_meshScripting.moc"
