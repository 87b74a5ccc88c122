#include "recovery/leaveUnsaved.h"
#include "support/RyTest.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

/// The program itself, started where one that crashed has left something: what it asks, and what is on the screen then.
class StartAfterCrashTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        RyAppSettings::setSettingsPath(path(QStringLiteral("settings")));
        m_file = path(QStringLiteral("hero.glb"));
        QVERIFY(QFile::copy(sample(), m_file));
    }
    void cleanup()
    {
        ryScene()->clear();
        ryUndoStack()->clearAll();
        ryUndoStack()->setClean();
    }

    void nothingLeft()
    {
        QVERIFY(start({}, QString()));
        QCOMPARE(dialogs().size(), 0);
        QCOMPARE(windowTitle(), QStringLiteral("mannequin.glb[*] - ryhost"));
        QVERIFY(!isModified());
    }

    void offered()
    {
        leave();
        QVERIFY(start({}, QStringLiteral("Recover")));
        QCOMPARE(dialogs().size(), 1);
        checkOffer();
        QCOMPARE(windowTitle(), QStringLiteral("hero.glb (recovered)[*] - ryhost"));
        QVERIFY(isModified());
    }

    void later_data()
    {
        QTest::addColumn<bool>("withFile");
        QTest::addColumn<QString>("title");
        QTest::newRow("the sample figure") << false << QStringLiteral("mannequin.glb[*] - ryhost");
        QTest::newRow("the file that was asked for") << true << QStringLiteral("other.glb[*] - ryhost");
    }
    /// What the program was started for happens, and the work is still there for the next start.
    void later()
    {
        QFETCH(bool, withFile);
        QFETCH(QString, title);
        leave();
        const QMap<QString, QByteArray> before = leftovers();
        QVERIFY(start(withFile ? QStringList{other()} : QStringList(), QStringLiteral("Later")));
        QCOMPARE(dialogs().size(), 1);
        checkOffer();
        QCOMPARE(windowTitle(), title);
        QVERIFY(!isModified());
        QVERIFY(leftovers() == before);
        QCOMPARE(left().size(), 1);
    }

    /// With files on the command line the recovered work comes first, and they are named.
    void withFiles()
    {
        leave();
        QVERIFY(start({other(), m_file}, QStringLiteral("Recover")));
        QCOMPARE(dialogs().size(), 2);
        checkOffer();
        const QJsonObject box = dialogs().at(1).toObject();
        QCOMPARE(box.value(QStringLiteral("title")).toString(), QStringLiteral("Not Opened"));
        QCOMPARE(box.value(QStringLiteral("text")).toString(),
                 QStringLiteral("The recovered work is on the screen, so this was not opened:\n\n%1\n%2\n\nSave the "
                                "recovered work, then File > Open opens it.")
                     .arg(other(), m_file));
        QCOMPARE(textsOf(box, "buttons"), QStringList{QStringLiteral("Ok")});
        QCOMPARE(windowTitle(), QStringLiteral("hero.glb (recovered)[*] - ryhost"));
    }

    /// A farm shares its settings with a person who may come back for the work.
    void neverInBatch()
    {
        leave();
        const QMap<QString, QByteArray> before = leftovers();
        const QString written = path(QStringLiteral("written.glb"));
        QVERIFY(run({QStringLiteral("--batch"), m_file, QStringLiteral("--save"), written}, QString()));
        QVERIFY(QFile::exists(written));
        QCOMPARE(dialogs().size(), 0);
        QVERIFY(leftovers() == before);
        QCOMPARE(left().size(), 1);
    }

private:
    static constexpr int Patience = 120000;

    QString path(const QString &name) const { return m_folder->filePath(name); }
    static QString sample() { return QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb"); }
    QString other() const
    {
        const QString path = this->path(QStringLiteral("other.glb"));
        QFile::copy(sample(), path);
        return path;
    }
    static QStringList left() { return RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()); }
    static QStringList textsOf(const QJsonObject &object, const char *name)
    {
        QStringList texts;
        for (const QJsonValue &value : object.value(QLatin1String(name)).toArray())
            texts.append(value.toString());
        return texts;
    }

    /// Work on the file, as a program that was killed leaves it.
    void leave()
    {
        QString error;
        QVERIFY2(RySceneFile::open(ryScene(), m_file, &error), qPrintable(error));
        ryScene()->findNode(QStringLiteral("lForearm"))->getZRotControl()->setValue(20);
        m_about.path = m_file;
        m_about.stamp = OpenedFile::stampOf(m_file);
        m_about.time = QDateTime::currentDateTimeUtc();
        QCOMPARE(leaveUnsaved(*ryScene(), m_about), QString());
    }
    /// Name and hash of everything that lies there.
    static QMap<QString, QByteArray> leftovers()
    {
        QMap<QString, QByteArray> hashes;
        QDirIterator files(AutosaveSettings::ordinaryFolder(), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (file.open(QIODevice::ReadOnly))
                hashes[file.fileName()] = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1);
        }
        return hashes;
    }

    /// Starts the program and lets somebody answer the offer, until nothing is asked any more.
    [[nodiscard]] bool start(const QStringList &files, const QString &answer)
    {
        return run(files, answer) && !m_window.isEmpty() && textsOf(m_window, "errors").isEmpty();
    }
    [[nodiscard]] bool run(const QStringList &arguments, const QString &answer)
    {
        const QString report = path(QStringLiteral("report"));
        QFile::remove(report);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("RYHOST_SETTINGS_DIR"), path(QStringLiteral("settings")));
        environment.insert(QStringLiteral("RYHOST_PLUGIN_PATH"), QStringLiteral(RY_BINARY_DIR "/testplugins_host"));
        environment.insert(QStringLiteral("RYHOST_HOME"), QStringLiteral(RY_SOURCE_DIR "/resources"));
        environment.insert(QStringLiteral("RY_START_REPORT"), report);
        environment.insert(QStringLiteral("RY_START_ANSWERS"), QStringLiteral("Recover Unsaved Work=") + answer);
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8")); // texts are compared
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(RY_BINARY_DIR "/bin/ryhost"), arguments);
        const bool ended = process.waitForFinished(Patience);
        m_dialogs = QJsonArray();
        m_window = QJsonObject();
        QFile file(report);
        const QByteArray said = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        for (const QByteArray &line : said.split('\n')) {
            const QJsonObject object = QJsonDocument::fromJson(line).object();
            if (object.value(QStringLiteral("kind")) == QLatin1String("dialog"))
                m_dialogs.append(object);
            else if (!object.isEmpty())
                m_window = object;
        }
        return ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    }

    const QJsonArray &dialogs() const { return m_dialogs; }
    QString windowTitle() const { return m_window.value(QStringLiteral("title")).toString(); }
    bool isModified() const { return m_window.value(QStringLiteral("modified")).toBool(); }
    void checkOffer() const
    {
        const QJsonObject offer = m_dialogs.at(0).toObject();
        QCOMPARE(offer.value(QStringLiteral("title")).toString(), QStringLiteral("Recover Unsaved Work"));
        const QStringList labels = textsOf(offer, "labels");
        QCOMPARE(QSet<QString>(labels.begin(), labels.end()),
                 (QSet<QString>{
                     QStringLiteral("The program ended before this was saved. What would you like to bring back?"),
                     QStringLiteral("%1 is as it was and is replaced only when you save.\nThe undo history is gone.")
                         .arg(m_file)}));
        QCOMPARE(textsOf(offer, "rows"), QStringList{QStringLiteral("hero.glb, as of %1").arg(m_about.timeText())});
        const QStringList buttons = textsOf(offer, "buttons");
        QCOMPARE(QSet<QString>(buttons.begin(), buttons.end()),
                 (QSet<QString>{QStringLiteral("Recover"), QStringLiteral("Delete..."), QStringLiteral("Later")}));
        QCOMPARE(offer.value(QStringLiteral("default")).toString(), QStringLiteral("Recover"));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
    RecoveryInfo m_about;
    QJsonArray m_dialogs;
    QJsonObject m_window;
};

RY_TEST(StartAfterCrashTest)
#include "tst_StartAfterCrash.moc"
