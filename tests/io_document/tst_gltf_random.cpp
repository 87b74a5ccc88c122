#include "GltfFixture.h"
#include "support/RyTest.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"

#include <nlohmann/json.hpp>

#include <random>

using Json = nlohmann::ordered_json;
using namespace GltfFixture;

/// Documents made at random through the patching functions: what goes in is what is read back, in either form.
class RyGltfRandomTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

private slots:
    void builtAndReadBack();
};

void RyGltfRandomTest::builtAndReadBack()
{
    std::mt19937 random(ryTestSeed());
    const auto below = [&random](int limit) { return int(random() % unsigned(limit)); };
    std::uniform_real_distribution<double> number(-100.0, 100.0);
    for (int round = 0; round < 120; ++round) {
        std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
        std::vector<RyGltfTransform> transforms;
        std::vector<int> parents;
        const int nodeCount = 1 + below(20);
        for (int i = 0; i < nodeCount; ++i) {
            RyGltfTransform t;
            t.hasMatrix = below(4) == 0;
            if (t.hasMatrix) {
                for (double &value : t.matrix)
                    value = number(random);
            } else {
                for (double &value : t.translation)
                    value = below(3) == 0 ? 0.0 : number(random);
                for (double &value : t.rotation)
                    value = number(random) / 100.0;
                for (double &value : t.scale)
                    value = below(2) == 0 ? 1.0 : number(random);
            }
            const int parent = i == 0 || below(5) == 0 ? -1 : below(i);
            QCOMPARE(document->addNode(QStringLiteral("n%1").arg(i), t, parent), i);
            transforms.push_back(t);
            parents.push_back(parent);
        }
        std::vector<std::vector<float>> floats;
        std::vector<std::vector<std::uint32_t>> uints;
        for (int i = 0; i < 6; ++i) {
            static const int counts[] = {1, 2, 3, 4, 9, 16};
            const int components = counts[below(6)];
            std::vector<float> values(std::size_t(components * (1 + below(30))));
            for (float &value : values)
                value = float(number(random));
            QCOMPARE(document->addFloatAccessor(values, components, 0, below(2) == 0), 2 * i);
            floats.push_back(values);
            const int wide = below(4) + 1;
            std::vector<std::uint32_t> list(std::size_t(wide * (1 + below(30))));
            const int type = 5121 + 2 * below(3);
            for (std::uint32_t &value : list)
                value = type == 5121 ? random() % 256 : type == 5123 ? random() % 65536 : std::uint32_t(random());
            QCOMPARE(document->addUintAccessor(list, wide, type, below(2) == 0 ? 34962 : 0), 2 * i + 1);
            uints.push_back(list);
        }
        for (int pass = 0; pass < 3; ++pass) {
            const QString ending = below(2) == 0 ? QStringLiteral("glb") : QStringLiteral("gltf");
            const QByteArray bytes = document->toBytes(ending);
            QCOMPARE(document->toBytes(ending), bytes);
            QString error;
            QStringList warnings;
            document = RyGltfDocument::read(put(m_folder, "random." + ending, bytes), &error, &warnings);
            QVERIFY2(document, qPrintable(error));
            QVERIFY2(warnings.isEmpty(), qPrintable(warnings.join('\n')));
            QCOMPARE(document->toBytes(ending), bytes);
            const RyGltfModel &model = document->model();
            for (int i = 0; i < nodeCount; ++i) {
                const RyGltfNode &node = model.nodes[std::size_t(i)];
                const RyGltfTransform &t = transforms[std::size_t(i)];
                QCOMPARE(node.parent, parents[std::size_t(i)]);
                QCOMPARE(node.transform.hasMatrix, t.hasMatrix);
                QCOMPARE(node.transform.matrix, t.matrix);
                QCOMPARE(node.transform.translation, t.translation);
                QCOMPARE(node.transform.rotation, t.rotation);
                QCOMPARE(node.transform.scale, t.scale);
            }
            for (int i = 0; i < 6; ++i) {
                QCOMPARE(document->readFloats(2 * i), floats[std::size_t(i)]);
                QCOMPARE(document->readUints(2 * i + 1), uints[std::size_t(i)]);
            }
            // One change to each kind before the next pass.
            const int node = below(nodeCount);
            transforms[std::size_t(node)].translation[0] = number(random);
            transforms[std::size_t(node)].matrix[12] = transforms[std::size_t(node)].hasMatrix ? number(random) : 0.0;
            if (transforms[std::size_t(node)].hasMatrix)
                transforms[std::size_t(node)].translation[0] = 0.0;
            document->setNodeTransform(node, transforms[std::size_t(node)]);
            const int accessor = below(6);
            floats[std::size_t(accessor)][0] = float(number(random));
            QCOMPARE(document->replaceFloats(2 * accessor, floats[std::size_t(accessor)]), 2 * accessor);
        }
    }
}

RY_TEST(RyGltfRandomTest)
#include "tst_gltf_random.moc"
