#include "RyLiteralMapBuilder.h"
#include "RyRandomFigure.h"

#include "pluginsource/RyJointTools/operations/RyBindingInfluences.h"
#include "pluginsource/RyJointTools/operations/findSelectableBindings.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <tuple>

/// The influences that the plain implementation gathers, and those that the builder counts.
class PlainMapBuilderTest : public QObject
{
    Q_OBJECT

    using Entry = std::tuple<int, int>; // binding, weight
    static const RyFacetMesh *meshOf(const RyFigure *figure)
    {
        return qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure))->getFacetMesh();
    }

private slots:
    void cleanup()
    {
        ryScene()->clear();
        ryUndoStack()->clearAll();
    }

    void listsOfVertices()
    {
        RyRandom random;
        int ties = 0;
        for (int i = 0; i < 20; ++i) {
            const RyRandomFigure made(random, 20, 300, 30);
            RyLiteralMapBuilder plain;
            QCOMPARE(plain.build(made.figure()).code(), 0);
            const auto vertexCount = size_t(meshOf(made.figure())->getNumVertices());
            QVERIFY(plain.reservedNodes >= 8 * vertexCount + 1);
            QCOMPARE(plain.offsets.size(), vertexCount + 1);
            QCOMPARE(plain.offsets.front(), 0);
            QCOMPARE(size_t(plain.offsets.back()), plain.influences.size());
            for (size_t v = 0; v < vertexCount; ++v) {
                QVERIFY(plain.offsets[v] <= plain.offsets[v + 1]);
                for (int k = plain.offsets[v]; k + 1 < plain.offsets[v + 1]; ++k) {
                    const auto &[index, weight] = plain.influences[size_t(k)];
                    const auto &[nextIndex, nextWeight] = plain.influences[size_t(k) + 1];
                    QVERIFY(weight > nextWeight || (weight == nextWeight && index <= nextIndex));
                    ties += weight == nextWeight ? 1 : 0;
                }
            }
        }
        QVERIFY(ties > 0);
    }

    /// Of a figure whose vertices have more than the nodes that are reserved for them.
    void moreThanReserved()
    {
        RyRandom random;
        RyLiteralMapBuilder plain;
        size_t most = 0;
        for (int i = 0; i < 30 && most <= plain.reservedNodes; ++i) {
            const RyRandomFigure made(random, 120, 10, 10);
            QCOMPARE(plain.build(made.figure()).code(), 0);
            most = plain.influences.size();
        }
        QVERIFY(most > plain.reservedNodes);
    }

    /// The same entries, in whatever order; more vertices than one thread fills at once.
    void countedInfluences()
    {
        RyRandom random;
        for (const bool respect : {true, false}) {
            for (const int most : {100, 30000}) {
                const RyRandomFigure made(random, 40, most, 10);
                RyLiteralMapBuilder plain;
                plain.respectSelectable = respect;
                QCOMPARE(plain.build(made.figure()).code(), 0);
                std::vector<RyRef<RyWeightMap>> maps;
                std::vector<RyBoneBinding *> bindings;
                made.figure()->getSkinBinding()->buildGeneralWeightMaps(maps, bindings, 54);
                std::vector<int> bindingOfMap;
                for (size_t i = 0; i < bindings.size(); ++i)
                    bindingOfMap.push_back(int(i));
                if (respect)
                    bindingOfMap = findSelectableBindings(bindings);
                const int vertexCount = meshOf(made.figure())->getNumVertices();
                const RyBindingInfluences counted(listBindingWeights(maps, bindingOfMap, vertexCount), vertexCount);
                for (int v = 0; v < vertexCount; ++v) {
                    std::vector<Entry> wanted;
                    for (int k = plain.offsets[size_t(v)]; k < plain.offsets[size_t(v) + 1]; ++k)
                        wanted.emplace_back(plain.influences[size_t(k)].index, plain.influences[size_t(k)].weight);
                    std::vector<Entry> entries;
                    for (const RyBindingInfluences::Influence &influence : counted.of(v))
                        entries.emplace_back(influence.binding, influence.weight);
                    std::sort(wanted.begin(), wanted.end());
                    std::sort(entries.begin(), entries.end());
                    QCOMPARE(entries, wanted);
                }
                QVERIFY(counted.of(-1).empty());
                QVERIFY(counted.of(vertexCount).empty());
            }
        }
    }
};

RY_TEST(PlainMapBuilderTest)

#include "tst_plainMapBuilder.moc"
