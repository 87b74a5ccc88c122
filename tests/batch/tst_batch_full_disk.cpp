#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QMap>

/// No room on the disk: the run fails with a message that names the file and the reason, what was there before stays,
/// and nothing half is left.
class BatchFullDiskTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_run = std::make_unique<RyBatchRun>();
        m_run->setLargestFile(20480);
        QVERIFY(QFile::copy(RyBatchRun::sample(), m_run->file(QStringLiteral("in.glb"))));
        QVERIFY(QDir().mkpath(m_run->file(QStringLiteral("out"))));
        m_run->write(QStringLiteral("out/in.glb"), "what was there before");
    }

    void nothingIsHalfWritten_data()
    {
        QTest::addColumn<QStringList>("verbs");
        QTest::addColumn<QString>("target");
        QTest::newRow("--save") << QStringList{"--save", "out/in.glb"} << QStringLiteral("out/in.glb");
        QTest::newRow("--save over the input") << QStringList{"--save", "in.glb"} << QStringLiteral("in.glb");
        QTest::newRow("--save text") << QStringList{"--save", "out/new.gltf"} << QStringLiteral("out/new.gltf");
        QTest::newRow("--save OBJ") << QStringList{"--save", "out/new.obj"} << QStringLiteral("out/new.obj");
        QTest::newRow("--save-to") << QStringList{"--save-to", "out"} << QStringLiteral("out/in.glb");
        QTest::newRow("--save-to a new folder") << QStringList{"--save-to", "new"} << QStringLiteral("new/in.glb");
    }
    void nothingIsHalfWritten()
    {
        QFETCH(QStringList, verbs);
        QFETCH(QString, target);
        const QMap<QString, QByteArray> before = files();
        const RyBatchRun::Result result =
            m_run->run(QStringList{"--batch", "in.glb", "--property", "lForearm:endX=61.5"} + verbs);
        QCOMPARE(result.code, 4);
        QVERIFY2(result.says(qPrintable(target)) && result.says("cannot be written: File too large"),
                 result.err.constData());
        QVERIFY(files() == before);
    }

    /// Of several files each says so, and those that fit are written.
    void severalFiles()
    {
        m_run->write(QStringLiteral("small.obj"), "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        const QByteArray former = files().value(QStringLiteral("out/in.glb"));
        const RyBatchRun::Result result =
            m_run->run(QStringList{"--batch", "in.glb", "small.obj", "--save-to", "out", "--json"});
        QCOMPARE(result.code, 4);
        const QJsonArray each = result.json().value(QStringLiteral("files")).toArray();
        QCOMPARE(each.size(), 2);
        QCOMPARE(each.at(0).toObject().value(QStringLiteral("code")).toInt(), 4);
        QCOMPARE(each.at(1).toObject().value(QStringLiteral("code")).toInt(), 0);
        QVERIFY2(result.says("out/in.glb cannot be written: File too large"), result.err.constData());
        const QMap<QString, QByteArray> after = files();
        QVERIFY(after.value(QStringLiteral("out/in.glb")) == former);
        QVERIFY(!after.value(QStringLiteral("out/small.obj")).isEmpty());
        QCOMPARE(after.size(), 4);
    }

private:
    /// All but the settings: names below the folder of the run, and contents.
    QMap<QString, QByteArray> files() const
    {
        QMap<QString, QByteArray> contents;
        for (const char *folder : {"", "out/", "new/"}) {
            const QDir dir(m_run->file(QString::fromLatin1(folder)));
            for (const QString &name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
                QFile file(dir.filePath(name));
                if (file.open(QIODevice::ReadOnly))
                    contents[QString::fromLatin1(folder) + name] = file.readAll();
            }
        }
        return contents;
    }

    std::unique_ptr<RyBatchRun> m_run;
};

RY_TEST(BatchFullDiskTest)
#include "tst_batch_full_disk.moc"
