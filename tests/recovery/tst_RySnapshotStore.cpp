#include "support/RyTest.h"

#include "rycore/io/snapshot/RyByteDifference.h"
#include "rycore/io/snapshot/RySnapshotStore.h"

#include <QCryptographicHash>
#include <QDir>
#include <QTemporaryDir>

#include <limits>
#include <random>

#include <sys/mman.h>

inline bool operator==(const RySnapshotPart &a, const RySnapshotPart &b)
{
    return a.name == b.name && a.bytes == b.bytes;
}

class RySnapshotStoreTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void givesPartsBack()
    {
        RySnapshotStore store(m_folder->path());
        RySnapshotParts parts{part("large", large(), true), part("small", "abc", true), part("text", "{}", false)};
        QString error;
        for (int round = 0; round < 5; ++round) {
            QVERIFY2(store.write(parts, &error), qPrintable(error));
            QVERIFY(readBack() == parts);
            parts[0].bytes[round * 9000] = char(round + 1);
            parts[0].bytes.append(QByteArray(round * 3000, char(round)));
            parts[2].bytes.append(QByteArray::number(round));
        }
    }

    /// A large part that changes a little is written once; the snapshot has the rest.
    void keepsLargePartsOnce()
    {
        RySnapshotStore store(m_folder->path());
        RySnapshotParts parts{part("large", large(), true)};
        QString error;
        QVERIFY(store.write(parts, &error));
        const QStringList bases = baseFiles();
        QCOMPARE(bases.size(), 1);
        parts[0].bytes[12345] = 1;
        QVERIFY(store.write(parts, &error));
        QCOMPARE(baseFiles(), bases);
        QVERIFY(QFileInfo(snapshot()).size() < 10000);
        QVERIFY(readBack() == parts);
        // One that has nothing to do with it takes its place.
        parts[0].bytes = large();
        QVERIFY(store.write(parts, &error));
        QCOMPARE(baseFiles().size(), 1);
        QVERIFY(baseFiles() != bases);
        QVERIFY(readBack() == parts);
    }

    /// Somebody who tidies up may take a file away at any time.
    void writesAgainWhatIsGone()
    {
        RySnapshotStore store(m_folder->path());
        const RySnapshotParts parts{part("large", large(), true)};
        QString error;
        QVERIFY(store.write(parts, &error));
        QVERIFY(QFile::remove(m_folder->filePath(baseFiles().front())));
        QVERIFY(store.write(parts, &error));
        QVERIFY(readBack() == parts);
    }

    /// Nothing that is cut off or changed is taken for a snapshot.
    void damage()
    {
        RySnapshotStore store(m_folder->path());
        QString error;
        QVERIFY(store.write({part("large", large(), true), part("info", "about", false)}, &error));
        RySnapshotParts others;
        QVERIFY2(RySnapshotStore::readOthers(m_folder->path(), &others, &error), qPrintable(error));
        QVERIFY(others == RySnapshotParts{part("info", "about", false)});
        for (const QString &path : {snapshot(), m_folder->filePath(baseFiles().front())}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            const QByteArray whole = file.readAll();
            for (const bool isCut : {false, true}) {
                QByteArray damaged = whole;
                damaged[whole.size() / 2] = char(whole[whole.size() / 2] + 1);
                file.resize(0);
                file.seek(0);
                file.write(isCut ? whole.left(whole.size() - 1) : damaged);
                file.flush();
                RySnapshotParts parts;
                error.clear();
                QVERIFY(!RySnapshotStore::read(m_folder->path(), &parts, &error));
                QCOMPARE(error, QStringLiteral("%1 is damaged").arg(path));
            }
            file.resize(0);
            file.seek(0);
            file.write(whole);
        }
    }

    /// The hash is of what was written, and says nothing of what was not.
    void entryThatIsCutOff()
    {
        RySnapshotStore store(m_folder->path());
        QString error;
        QVERIFY2(store.write({part("info", "about", false)}, &error), qPrintable(error));
        QFile file(snapshot());
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray bytes = file.readAll();
        bytes.chop(20 + 2); // of the hash and of the last entry
        bytes += QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
        QVERIFY(file.resize(0) && file.seek(0));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
        file.close();
        RySnapshotParts parts;
        QVERIFY(!RySnapshotStore::read(m_folder->path(), &parts, &error));
        QCOMPARE(error, QStringLiteral("%1 is damaged").arg(snapshot()));
    }

    /// Nobody is told that work is kept of which a part would be missing; and what was kept before stays.
    void tooLarge()
    {
        RySnapshotStore store(m_folder->path());
        const RySnapshotParts small{part("tree", "{}", false)};
        QString error;
        QVERIFY2(store.write(small, &error), qPrintable(error));
        const int size = std::numeric_limits<int>::max() - 4096;
        void *nothing = ::mmap(nullptr, size_t(size), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        QVERIFY(nothing != MAP_FAILED);
        const QByteArray huge = QByteArray::fromRawData(static_cast<char *>(nothing), size);
        QVERIFY(!store.write({part("info", QByteArray(8192, 'a'), false), part("tree", huge, false)}, &error));
        QCOMPARE(error, QStringLiteral("the scene is larger than the 2 GB that can be kept"));
        ::munmap(nothing, size_t(size));
        QVERIFY(readBack() == small);
    }

    void clears()
    {
        RySnapshotStore store(m_folder->path());
        QString error;
        QVERIFY(store.write({part("large", large(), true)}, &error));
        QVERIFY(RySnapshotStore::hasSnapshot(m_folder->path()));
        store.clear();
        QVERIFY(!RySnapshotStore::hasSnapshot(m_folder->path()));
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files).size(), 0);
        RySnapshotParts parts;
        QVERIFY(!RySnapshotStore::read(m_folder->path(), &parts, &error));
    }

    void differences()
    {
        std::mt19937 random(ryTestSeed());
        for (int round = 0; round < 300; ++round) {
            const QByteArray from(int(random() % 30000), 'a');
            QByteArray to = from.left(int(random() % 40000)) + QByteArray(int(random() % 9000), 'b');
            for (int change = int(random() % 5); change > 0 && !to.isEmpty(); --change)
                to[int(random() % unsigned(to.size()))] = char(random());
            QByteArray again;
            QByteArray difference = RyByteDifference::between(from, to);
            QVERIFY(RyByteDifference::apply(from, difference, &again));
            QVERIFY(again == to);
            // A run that would lie outside is refused.
            if (difference.size() > 4) {
                difference.data()[3] = 0;
                difference.data()[2] = 0;
                difference.data()[1] = 0;
                difference.data()[0] = 0;
                QVERIFY(!RyByteDifference::apply(from, difference, &again));
            }
        }
    }

private:
    static RySnapshotPart part(const char *name, const QByteArray &bytes, bool isLasting)
    {
        return {name, bytes, isLasting, {}};
    }
    QByteArray large()
    {
        QByteArray bytes(500000, '\0');
        for (char &byte : bytes)
            byte = char(m_random());
        return bytes;
    }
    QString snapshot() const { return m_folder->filePath(QStringLiteral("snapshot")); }
    QStringList baseFiles() const { return QDir(m_folder->path()).entryList({QStringLiteral("*.bytes")}, QDir::Files); }
    RySnapshotParts readBack() const
    {
        RySnapshotParts parts;
        QString error;
        if (!RySnapshotStore::read(m_folder->path(), &parts, &error))
            qWarning("%s", qPrintable(error));
        return parts;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::mt19937 m_random{ryTestSeed()};
};

RY_TEST(RySnapshotStoreTest)
#include "tst_RySnapshotStore.moc"
