#include "support/RyTest.h"

#include "FigureSketch.h"
#include "RyBatchRun.h"

#include <QFile>
#include <QImage>

#include <cmath>

/// Clips in runs without a window.
class BatchClipsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        FigureSketch sketch;
        sketch.addTurningClip(2);
        sketch.tree["animations"][0]["name"] = "wave";
        // To the side, so that it is seen from the front.
        const int turns = int(sketch.tree["accessors"].size()) - 1;
        const float last[4] = {0.0f, 0.0f, std::sqrt(0.5f), std::sqrt(0.5f)};
        for (size_t i = 0; i < 4; ++i)
            sketch.set(turns, 4 + i, last[i]);
        m_file = sketch.write(m_run.file(QStringLiteral("sketch.gltf")));
        const RyBatchRun::Result listed = run({"--clip", "?"});
        QCOMPARE(listed.code, 2);
        const QByteArray text = listed.err.mid(listed.err.indexOf("there are \"") + 11);
        m_clip = QString::fromUtf8(text.left(text.indexOf('"')));
        QVERIFY2(m_clip.endsWith(QLatin1String("/wave")), listed.err.constData());
    }

    void pictures()
    {
        const QImage rest = picture({});
        const QImage start = picture({"--clip", m_clip});
        const QImage late = picture({"--clip", m_clip, "--time", "0.8"});
        QVERIFY(!rest.isNull());
        QVERIFY(start != late);
        QCOMPARE(picture({"--clip", numbered(1), "--time", "0.8"}), late);
        QCOMPARE(picture({"--clip", m_clip, "--time", "-5"}), start);
        // The pose again.
        QCOMPARE(picture({"--clip", m_clip, "--time", "0.8", "--clip", "none"}), rest);
        QCOMPARE(picture({"--pose", "low:xtran=0", "--undo"}), rest);
        QCOMPARE(picture({"--clip", m_clip, "--time", "0.8", "--pose", "low:xtran=0"}), rest);
    }
    /// Neither in what is written nor in the undo history.
    void leavesNoTrace()
    {
        const QString plain = m_run.file(QStringLiteral("plain.gltf")),
                      shown = m_run.file(QStringLiteral("shown.gltf"));
        const QStringList edit{"--property", "high:originX=3", "--pose", "high:zrot=20"};
        const RyBatchRun::Result first = run(edit + QStringList{"--save", plain, "--dump"});
        const RyBatchRun::Result second = run(QStringList{"--clip", m_clip} + edit +
                                              QStringList{"--clip", m_clip, "--time", "1", "--save", shown, "--dump"});
        QVERIFY2(first.code == 0, first.err.constData());
        QVERIFY2(second.code == 0, second.err.constData());
        QCOMPARE(second.out, first.out);
        QCOMPARE(bytesOf(shown).replace("shown", "plain"), bytesOf(plain));
    }
    void wrongUse_data()
    {
        QTest::addColumn<QStringList>("verbs");
        QTest::addColumn<QByteArray>("says");
        const auto row = [](const char *name, const QStringList &verbs, const QByteArray &says) {
            QTest::newRow(name) << verbs << says;
        };
        row("unknown", {"--clip", "nobody/wave"}, "no clip is called \"nobody/wave\"; there are \"");
        row("number", {"--clip", numbered(2)}, "no clip is called");
        row("no value", {"--clip"}, "--clip needs a value");
        row("time alone", {"--time", "1"}, "--time belongs after --clip");
        row("time elsewhere", {"--clip", m_clip, "--undo", "--time", "1"}, "--time belongs after --clip");
        row("no number", {"--clip", m_clip, "--time", "late"}, "\"late\" is no number of seconds");
        row("not finite", {"--clip", m_clip, "--time", "inf"}, "\"inf\" is no number of seconds");
        row("time without number", {"--clip", m_clip, "--time"}, "--time needs a value");
    }
    void wrongUse()
    {
        QFETCH(QStringList, verbs);
        QFETCH(QByteArray, says);
        const RyBatchRun::Result result = run(verbs);
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(says), result.err.constData());
    }
    void withoutClips()
    {
        const QString bare = QStringLiteral(RY_SOURCE_DIR "/resources/samples/hand.obj");
        const RyBatchRun::Result result = m_run.run({"--batch", bare, "--clip", "hand/walk"});
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains("there are no clips"), result.err.constData());
    }

private:
    RyBatchRun::Result run(const QStringList &verbs) const { return m_run.run(QStringList{"--batch", m_file} + verbs); }
    QImage picture(const QStringList &verbs) const
    {
        const QString path = m_run.file(QStringLiteral("picture.png"));
        QFile::remove(path);
        const RyBatchRun::Result result = run(verbs + QStringList{"--screenshot", path, "--size", "200x200"});
        if (result.code != 0)
            qWarning("%s", result.err.constData());
        return QImage(path);
    }
    QString numbered(int number) const
    {
        return m_clip.section(QLatin1Char('/'), 0, -2) + QStringLiteral("/%1").arg(number);
    }
    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    RyBatchRun m_run;
    QString m_file, m_clip;
};

RY_TEST(BatchClipsTest)
#include "tst_batch_clips.moc"
