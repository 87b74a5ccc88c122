#include "recovery/AutosaveStage.h"
#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"

#include <QDir>
#include <QFile>

#include <csignal>

#include <sys/resource.h>

namespace {

/// While one lives no file of this process may grow beyond that, as if the disk were full then.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit low{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &low);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

constexpr rlim_t Room = 20000; // less than the figure, more than its settings

} // namespace

/// The disk has no room for what the program writes: somebody is told which file and why, what was there before stays,
/// and nothing half is left behind.
class FullDiskTest : public QObject, private AutosaveStage
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(open());
        m_warnings.clear();
        m_connection = connect(&RyMessageLog::global(), &RyMessageLog::messageAdded, this,
                               [this](const QString &text) { m_warnings.append(text); });
    }
    void cleanup()
    {
        disconnect(m_connection);
        close();
    }

    void ofAWindow_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("name");
        for (const char *command : {"save", "save as", "copy", "export"}) {
            const QString ending = QStringLiteral("glb");
            QTest::addRow("%s", command) << QString::fromLatin1(command)
                                         << (qstrcmp(command, "save") == 0 ? QStringLiteral("mannequin.glb")
                                                                           : QStringLiteral("other.") + ending);
        }
        QTest::newRow("text") << QStringLiteral("copy") << QStringLiteral("other.gltf");
        QTest::newRow("obj") << QStringLiteral("copy") << QStringLiteral("other.obj");
    }
    void ofAWindow()
    {
        QFETCH(QString, command);
        QFETCH(QString, name);
        const QString target = path(name);
        if (!QFile::exists(target)) {
            QFile former(target);
            QVERIFY(former.open(QIODevice::WriteOnly));
            former.write("what was there before");
        }
        edit();
        const QMap<QString, QByteArray> before = files();
        const QString scene = dump(), file = m_files->path(), changes = m_files->file().unsavedChanges();
        RyDialogDriver driver;
        bool isDone = true;
        {
            const FullDisk full(Room);
            if (command == QLatin1String("save"))
                isDone = m_files->save();
            else if (command == QLatin1String("save as"))
                isDone = m_files->savePath(target);
            else if (command == QLatin1String("copy"))
                isDone = m_files->saveCopyTo(target);
            else
                isDone = m_files->exportTo(target);
        }
        QVERIFY(!isDone);
        QCOMPARE(driver.boxes().size(), size_t(1));
        QCOMPARE(driver.boxes().front().title, QStringLiteral("Not Saved"));
        QCOMPARE(driver.boxes().front().text,
                 QStringLiteral("%1 cannot be written: File too large\n\nThe file on disk is as it was before.")
                     .arg(target));
        QCOMPARE(driver.boxes().front().buttons, QStringList{QStringLiteral("Ok")});
        QVERIFY(files() == before);
        QCOMPARE(dump(), scene);
        QCOMPARE(m_files->path(), file);
        QCOMPARE(m_files->file().unsavedChanges(), changes);
        QVERIFY(!ryUndoStack()->isClean());
        // With room again nothing stands in the way.
        QVERIFY(m_files->savePath(target));
    }

    /// The message says what becomes of the settings meanwhile.
    void ofTheSettings()
    {
        RyAppSettings settings(QStringLiteral("Test"));
        settings.setStringValue(QStringLiteral("Name"), QStringLiteral("former"));
        const QMap<QString, QByteArray> before = files(this->settings());
        QVERIFY(!before.isEmpty());
        m_warnings.clear();
        const QString large(30000, QLatin1Char('x'));
        {
            const FullDisk full(Room);
            settings.setStringValue(QStringLiteral("Large"), large);
            settings.setStringValue(QStringLiteral("Name"), QStringLiteral("present"));
        }
        QCOMPARE(m_warnings.size(), 1);
        QCOMPARE(m_warnings.front(),
                 QStringLiteral("The settings file %1/settings.ini cannot be written (group Test, key Large): File too "
                                "large. The settings last until the program ends.")
                     .arg(this->settings()));
        QVERIFY(files(this->settings()) == before);
        QCOMPARE(settings.getStringValue(QStringLiteral("Large"), QString()), large);
        QCOMPARE(settings.getStringValue(QStringLiteral("Name"), QString()), QStringLiteral("present"));
        // They reach the disk with the next that finds room.
        settings.setIntValue(QStringLiteral("Number"), 1);
        RyAppSettings::setSettingsPath(path(QStringLiteral("elsewhere")));
        RyAppSettings::setSettingsPath(this->settings());
        QCOMPARE(settings.getStringValue(QStringLiteral("Large"), QString()), large);
        QCOMPARE(settings.getStringValue(QStringLiteral("Name"), QString()), QStringLiteral("present"));
    }

    /// The message names the file that there is no room for; the work is kept as soon as there is.
    void ofUnsavedWork()
    {
        start();
        edit();
        {
            const FullDisk full(Room);
            QTRY_COMPARE(m_messages.size(), 1);
            QTRY_VERIFY(m_autosave->isUpToDate());
        }
        QVERIFY2(m_messages.front().startsWith(
                     QStringLiteral("Unsaved work is not being kept: %1/autosave/session-").arg(settings())) &&
                     m_messages.front().endsWith(QStringLiteral(
                         " cannot be written: File too large. Save it; Edit > Preferences chooses another folder.")),
                 qPrintable(m_messages.front()));
        QVERIFY(!isKept());
        QCOMPARE(files(settings() + QStringLiteral("/autosave")).size(), 0);
        edit();
        QTRY_VERIFY(isKept() && m_autosave->isUpToDate());
        QCOMPARE(m_messages.size(), 2);
        QVERIFY2(m_messages.back().startsWith(QStringLiteral("Unsaved work is kept in ")),
                 qPrintable(m_messages.back()));
    }

private:
    /// Names and contents of all that lies in a folder, hidden things too.
    QMap<QString, QByteArray> files(const QString &folder = QString()) const
    {
        QMap<QString, QByteArray> contents;
        const QDir dir(folder.isEmpty() ? m_folder->path() : folder);
        for (const QString &name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
            QFile file(dir.filePath(name));
            if (file.open(QIODevice::ReadOnly))
                contents[name] = file.readAll();
        }
        return contents;
    }

    QStringList m_warnings;
    QMetaObject::Connection m_connection;
};

RY_TEST(FullDiskTest)
#include "tst_fullDisk.moc"
