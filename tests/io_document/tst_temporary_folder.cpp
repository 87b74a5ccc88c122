#include "GltfFixture.h"
#include "support/RyTest.h"

#include "rycore/base/RyTemporaryFolder.h"

#include <sys/wait.h>
#include <unistd.h>

/// Folders for the files of one moment: nothing is left of them, and nobody's are taken from under him.
class RyTemporaryFolderTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_before = qgetenv("TMPDIR");
        qputenv("TMPDIR", QFile::encodeName(m_place.path()));
    }
    void cleanupTestCase() { m_before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", m_before); }

    void goes()
    {
        {
            const RyTemporaryFolder folder(QStringLiteral("ryhost-test"));
            QVERIFY(folder.isValid());
            GltfFixture::put(m_place, folder.filePath(QStringLiteral("file")).mid(m_place.path().size() + 1), "x");
            QCOMPARE(QDir(folder.filePath(QString())).entryList(QDir::Files), QStringList{QStringLiteral("file")});
        }
        QCOMPARE(left(), QStringList());
    }

    void whatIsUsedStays()
    {
        const RyTemporaryFolder first(QStringLiteral("ryhost-test"));
        const QStringList one = left();
        QCOMPARE(one.size(), 1);
        {
            const RyTemporaryFolder second(QStringLiteral("ryhost-test"));
            QVERIFY(second.isValid());
            QCOMPARE(left().size(), 2);
            QVERIFY(left().contains(one.first()));
        }
        QCOMPARE(left(), one);
    }

    void whatAKilledOneLeftGoes()
    {
        const pid_t child = ::fork();
        if (child == 0) {
            const RyTemporaryFolder folder(QStringLiteral("ryhost-test"));
            ::_exit(folder.isValid() ? 0 : 1);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        QCOMPARE(left().size(), 1);
        // Neither a folder of another purpose sweeps it, nor does it sweep what only looks alike.
        const QStringList others{QStringLiteral("ryhost-test-abcdefg"), QStringLiteral("ryhost-tests-abcdef")};
        for (const QString &other : others)
            QVERIFY(QDir(m_place.path()).mkdir(other));
        const RyTemporaryFolder elsewhere(QStringLiteral("ryhost-other"));
        QCOMPARE(left().size(), 4);
        {
            const RyTemporaryFolder next(QStringLiteral("ryhost-test"));
            QCOMPARE(left().size(), 4);
        }
        QCOMPARE(left().filter(QStringLiteral("ryhost-test")), others);
        for (const QString &other : others)
            QVERIFY(QDir(m_place.path()).rmdir(other));
    }

    void saysWhyThereIsNone()
    {
        qputenv("TMPDIR", QFile::encodeName(GltfFixture::put(m_place, "file", "no folder")));
        const RyTemporaryFolder folder(QStringLiteral("ryhost-test"));
        qputenv("TMPDIR", QFile::encodeName(m_place.path()));
        QVERIFY(!folder.isValid());
        QVERIFY(!folder.errorString().isEmpty());
    }

private:
    QStringList left() const { return QDir(m_place.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name); }

    QTemporaryDir m_place;
    QByteArray m_before;
};

RY_TEST(RyTemporaryFolderTest)
#include "tst_temporary_folder.moc"
