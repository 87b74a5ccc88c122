#include "support/RyTest.h"

#include "rycore/base/RyFirstPlaces.h"

#include <vector>

class RyFirstPlacesTest : public QObject
{
    Q_OBJECT
private:
    auto keyAt()
    {
        return [this](int place) {
            ++m_read;
            return m_list[size_t(place)];
        };
    }
    int find(int key) { return m_places.find(key, int(m_list.size()), keyAt()); }
    void append(int key)
    {
        m_places.append(key, int(m_list.size()), keyAt());
        m_list.push_back(key);
    }

    std::vector<int> m_list;
    RyFirstPlaces<int> m_places;
    int m_read = 0;

private slots:
    void init()
    {
        m_list.clear();
        m_places.forget();
        m_read = 0;
    }

    void manyQuestionsReadTheListAFewTimes()
    {
        constexpr int Count = 1000;
        for (int i = 0; i < Count; ++i)
            append(7 * i);
        for (int i = 0; i < Count; ++i)
            QCOMPARE(find(7 * i), i);
        QCOMPARE(find(3), -1);
        QVERIFY2(m_read < 12 * Count, qPrintable(QString::number(m_read)));
    }

    void appendingKeepsWhatIsKnown()
    {
        constexpr int Count = 1000;
        for (int i = 0; i < Count; ++i) {
            QCOMPARE(find(i), -1);
            append(i);
        }
        for (int i = 0; i < Count; ++i)
            QCOMPARE(find(i), i);
        QVERIFY2(m_read < 3 * Count, qPrintable(QString::number(m_read)));
    }

    /// A few questions between changes cost less than a hash would.
    void askingAndChangingInTurnWalks()
    {
        for (int i = 0; i < 100; ++i)
            append(i);
        for (int i = 0; i < 100; ++i) {
            QCOMPARE(find(i), 0);
            m_list.erase(m_list.begin());
            m_places.forget();
        }
        QCOMPARE(m_read, 100);
    }

    void theFirstOfEqualKeysCounts()
    {
        for (const int key : {5, 6, 5, 7})
            append(key);
        for (int i = 0; i < 20; ++i)
            QCOMPARE(find(5), 0);
        append(6);
        append(8);
        for (int i = 0; i < 20; ++i) {
            QCOMPARE(find(6), 1);
            QCOMPARE(find(8), 5);
        }
    }

    void aKeyThatWentAndCameBackStandsElsewhere()
    {
        for (const int key : {5, 6, 7})
            append(key);
        for (int i = 0; i < 20; ++i)
            QCOMPARE(find(6), 1);
        m_list[1] = 0; // what had the address went
        QCOMPARE(find(6), -1);
        append(6);
        for (int i = 0; i < 20; ++i)
            QCOMPARE(find(6), 3);
    }

    /// Each question reads the one key that it is about, of many that are multiples of the same.
    void aKnownListIsReadWhereTheKeyStands()
    {
        constexpr int Count = 1 << 15;
        for (int i = 0; i < Count; ++i)
            append(i * 4096);
        for (int i = 0; i < 20; ++i)
            find(0);
        m_read = 0;
        for (int i = 0; i < Count; ++i)
            QCOMPARE(find(i * 4096), i);
        QCOMPARE(m_read, Count);
    }
};

RY_TEST(RyFirstPlacesTest)
#include "tst_RyFirstPlaces.moc"
