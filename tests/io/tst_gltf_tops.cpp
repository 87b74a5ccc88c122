#include "support/RyTest.h"

#include "rycore/io/gltf/save/RyGltfTops.h"

#include <vector>

class RyGltfTopsTest : public QObject
{
    Q_OBJECT

private slots:
    void everyNodeHasItsTop()
    {
        // 3 above 1 above 0 and 4, 5 above 2, 6 alone
        RyGltfTops tops({1, 3, 5, -1, 1, -1, -1});
        const std::vector<int> expected{3, 3, 5, 3, 3, 5, 6};
        for (int pass = 0; pass < 2; ++pass) {
            for (int node = 0; node < 7; ++node)
                QCOMPARE(tops.of(node), expected[size_t(node)]);
        }
    }

    /// What asked before a tree was hung elsewhere finds the new top.
    void hangingATop()
    {
        RyGltfTops tops({1, 2, -1, 4, -1});
        QCOMPARE(tops.of(0), 2);
        QCOMPARE(tops.of(3), 4);
        tops.add();
        tops.hang(2, 5);
        tops.hang(4, 5);
        for (int node = 0; node < 6; ++node)
            QCOMPARE(tops.of(node), 5);
    }

    /// A walk to the top for every node of such a chain would not end before the test is given up.
    void deepChain()
    {
        constexpr int Depth = 1 << 20;
        std::vector<int> parents;
        for (int node = 0; node < Depth; ++node)
            parents.push_back(node - 1);
        RyGltfTops fromEnd(parents);
        RyGltfTops fromTop(parents);
        bool right = true;
        for (int node = 0; node < Depth; ++node)
            right = right && fromEnd.of(Depth - 1 - node) == 0 && fromTop.of(node) == 0;
        QVERIFY(right);
    }
};

RY_TEST(RyGltfTopsTest)
#include "tst_gltf_tops.moc"
