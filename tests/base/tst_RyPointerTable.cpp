#include "support/RyTest.h"

#include "rycore/base/RyPointerTable.h"

#include <algorithm>
#include <map>
#include <random>

class RyPointerTableTest : public QObject
{
    Q_OBJECT
private:
    static std::vector<int> sorted(const RyPointerTable<int> &table, const void *key)
    {
        std::vector<int> values;
        table.visit(key, [&](int value) { values.push_back(value); });
        std::sort(values.begin(), values.end());
        return values;
    }

private slots:
    void anEmptyTableHasNothing()
    {
        RyPointerTable<int> table;
        const int object = 0;
        QVERIFY(!table.find(&object));
        table.remove(&object, 1);
        table.remove(nullptr, 1);
        QVERIFY(sorted(table, &object).empty());
        QCOMPARE(table.size(), size_t(0));
    }

    void aNewValueIsTakenWhereThereIsNone()
    {
        RyPointerTable<int> table;
        const int objects[2] = {};
        QVERIFY(table.insertNew(&objects[0], 7));
        QVERIFY(!table.insertNew(&objects[0], 8));
        QVERIFY(table.insertNew(&objects[1], 8));
        QCOMPARE(*table.find(&objects[0]), 7);
        QCOMPARE(*table.find(&objects[1]), 8);
        QCOMPARE(table.size(), size_t(2));
    }

    /// Few addresses, so that values meet at one and table places are shared and freed again and again.
    void comesAndGoesLikeAPlainMap_data()
    {
        QTest::addColumn<int>("addresses");
        QTest::newRow("few") << 5;
        QTest::newRow("some") << 200;
        QTest::newRow("many") << 5000;
    }

    void comesAndGoesLikeAPlainMap()
    {
        QFETCH(int, addresses);
        std::mt19937 random(ryTestSeed());
        const std::vector<std::pair<double, double>> objects(size_t(addresses), std::pair(0.0, 0.0)); // 16 bytes each
        RyPointerTable<int> table;
        std::map<const void *, std::vector<int>> plain;
        size_t count = 0;
        for (int i = 0; i < 20000; ++i) {
            const void *key = &objects[random() % objects.size()];
            std::vector<int> &values = plain[key];
            const int value = int(random() % 3);
            const auto place = std::lower_bound(values.begin(), values.end(), value);
            if (random() % 2) {
                table.insert(key, value);
                values.insert(place, value);
                ++count;
            } else {
                table.remove(key, value);
                if (place != values.end() && *place == value) {
                    values.erase(place);
                    --count;
                }
            }
            QCOMPARE(sorted(table, key), values);
            QCOMPARE(table.size(), count);
        }
        for (const auto &object : objects) {
            QCOMPARE(sorted(table, &object), plain[&object]);
            QCOMPARE(table.find(&object) != nullptr, !plain[&object].empty());
        }
    }
};

RY_TEST(RyPointerTableTest)
#include "tst_RyPointerTable.moc"
