#include "rycore/math/RyLargePages.h"
#include "support/RyTest.h"

#include <QFile>

#include <cstdint>
#include <memory>
#include <vector>

#include <unistd.h>

/// Room at the end of the heap, as the system sees it.
class RyLargePagesTest : public QObject
{
    Q_OBJECT

    static constexpr quintptr Near = 512 << 10, Room = 30 << 20;

    static quintptr heapEnd() { return reinterpret_cast<quintptr>(sbrk(0)); }

    /// Something that lies near the end of the heap; what stands before it is kept.
    const char *makeLatest()
    {
        for (int i = 0; i < 10000; ++i) {
            m_pieces.push_back(std::make_unique<char[]>(100000));
            if (heapEnd() - reinterpret_cast<quintptr>(m_pieces.back().get()) < Near)
                return m_pieces.back().get();
        }
        return nullptr;
    }

    /// Whether large pages are wished for at a place.
    static bool wantsLargePages(quintptr place)
    {
        QFile file(QStringLiteral("/proc/self/smaps"));
        if (!file.open(QIODevice::ReadOnly))
            return false;
        bool isThere = false;
        for (const QByteArray &line : file.readAll().split('\n')) {
            const int dash = line.indexOf('-'), blank = line.indexOf(' ');
            bool isRange = false, isEnd = false;
            const quintptr begin = line.left(dash).toULongLong(&isRange, 16);
            const quintptr end = line.mid(dash + 1, blank - dash - 1).toULongLong(&isEnd, 16);
            if (dash > 0 && isRange && isEnd)
                isThere = begin <= place && place < end;
            if (isThere && line.startsWith("VmFlags:"))
                return line.contains(" hg");
        }
        return false;
    }

private slots:
    void roomBehindTheLatest_data()
    {
        QTest::addColumn<bool>("isLatest");
        QTest::newRow("elsewhere") << false;
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) // the sanitizer has a heap of its own
        QTest::newRow("the latest") << true;
#endif
    }

    void roomBehindTheLatest()
    {
        QFETCH(bool, isLatest);
        const char elsewhere = 0; // on the stack
        const char *latest = isLatest ? makeLatest() : &elsewhere;
        QVERIFY(latest);
        const quintptr before = heapEnd();
        RyLargePages::growHeapBehind(latest);
        const quintptr after = heapEnd();
        if (!isLatest) {
            QCOMPARE(after, before);
            return;
        }
        QVERIFY(after - before >= Room);
        if (QFile::exists(QStringLiteral("/sys/kernel/mm/transparent_hugepage/enabled")))
            QVERIFY(wantsLargePages(before + Room / 2));
        // There is room now.
        RyLargePages::growHeapBehind(latest);
        QCOMPARE(heapEnd(), after);
    }

private:
    std::vector<std::unique_ptr<char[]>> m_pieces;
};

RY_TEST(RyLargePagesTest)
#include "tst_RyLargePages.moc"
