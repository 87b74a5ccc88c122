#include "support/RyTest.h"

#include "RyTranslationFile.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/start/HostTranslations.h"
#include "ryhost/window/HostWindow.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QMenuBar>
#include <QPushButton>
#include <QTemporaryDir>

class HostTranslationsTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_folder;

    QString path(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }
    static QStringList menuTexts()
    {
        HostWindow window(ryScene());
        QStringList texts;
        for (const QAction *menu : window.menuBar()->actions())
            texts.append(menu->text());
        return texts;
    }

private slots:
    void initTestCase() { RyAppSettings::setSettingsPath(m_settings.path()); }
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void filesByLanguage_data()
    {
        QTest::addColumn<QStringList>("languages");
        QTest::addColumn<QString>("file");
        QTest::newRow("the language") << QStringList{"de-DE"} << "ryhost_de.qm";
        QTest::newRow("the country first") << QStringList{"de-AT"} << "ryhost_de_AT.qm";
        QTest::newRow("none") << QStringList{"fr-FR"} << "";
        QTest::newRow("the next language") << QStringList{"fr-FR", "fr", "de-CH"} << "ryhost_de.qm";
        QTest::newRow("English") << QStringList{"en-US"} << "";
        QTest::newRow("English first") << QStringList{"en-US", "en", "de-DE"} << "";
        QTest::newRow("English as it is written elsewhere") << QStringList{"en-GB", "de-DE"} << "ryhost_en_GB.qm";
        QTest::newRow("English last") << QStringList{"de-DE", "en-GB"} << "ryhost_de.qm";
        QTest::newRow("no language") << QStringList() << "";
    }

    void filesByLanguage()
    {
        QFETCH(QStringList, languages);
        QFETCH(QString, file);
        for (const char *name : {"ryhost_de.qm", "ryhost_de_AT.qm", "ryhost_en_GB.qm", "other_fr.qm"})
            QVERIFY(writeTranslationFile(path(name), "HostMenus", {}));
        QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("ryhost_fr.qm")));
        const QString found = HostTranslations::findFile(m_folder->path(), QStringLiteral("ryhost"), languages);
        QCOMPARE(found.isEmpty() ? found : QDir(m_folder->path()).relativeFilePath(found), file);
        QCOMPARE(HostTranslations::findFile(path("nowhere"), QStringLiteral("ryhost"), languages), QString());
    }

    void menusSpeak()
    {
        QVERIFY(menuTexts().contains(QStringLiteral("&File")));
        QVERIFY(writeTranslationFile(path("ryhost_de.qm"), "FileMenu", {{"&File", QStringLiteral("&Datei")}}));
        {
            const HostTranslations translations(m_folder->path(), QLocale(QStringLiteral("de_DE")));
            const QStringList texts = menuTexts();
            QVERIFY2(texts.contains(QStringLiteral("&Datei")), qPrintable(texts.join(QLatin1Char(' '))));
            QVERIFY2(texts.contains(QStringLiteral("&View")), "what nobody translated stays");
        }
        QVERIFY2(menuTexts().contains(QStringLiteral("&File")), "the translations end with their object");
    }

    /// Those of plug-ins are in the same file.
    void actionsOfPluginsSpeak()
    {
        QVERIFY(writeTranslationFile(path("ryhost_de.qm"), "RyJEToolAction",
                                     {{"Align Node", QStringLiteral("Knoten ausrichten")},
                                      {"Rotation Order XYZ", QStringLiteral("Drehfolge XYZ")}}));
        const HostTranslations translations(m_folder->path(), QLocale(QStringLiteral("de_DE")));
        HostWindow window(ryScene());
        RyAction *order = window.getActionMgr()->findAction(QStringLiteral("RyJERotationOrderXYZAction"));
        const RyAction *action = window.getActionMgr()->findAction(QStringLiteral("RyJEAlignNodeAction"));
        QVERIFY2(action, "the plug-in is built before this program and must be found");
        QCOMPARE(action->text(), QStringLiteral("Knoten ausrichten"));
        QVERIFY(order);
        order->executeAction();
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Drehfolge XYZ"));
        ryUndoStack()->clearAll();
    }

    void qtSpeaks()
    {
        QVERIFY(writeTranslationFile(path("qtbase_de.qm"), "QPlatformTheme", {{"Cancel", QStringLiteral("Zurück")}}));
        const HostTranslations translations(m_folder->path(), QLocale(QStringLiteral("de_DE")));
        const QDialogButtonBox box(QDialogButtonBox::Cancel);
        QCOMPARE(box.button(QDialogButtonBox::Cancel)->text(), QStringLiteral("Zurück"));
    }

    void brokenFilesAreTold()
    {
        QFile file(path("ryhost_de.qm"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no translation at all") > 0);
        file.close();
        RyMessageLog::global().setEcho(false);
        const int before = RyMessageLog::global().warnings().size();
        const HostTranslations translations(m_folder->path(), QLocale(QStringLiteral("de_DE")));
        RyMessageLog::global().setEcho(true);
        QCOMPARE(RyMessageLog::global().warnings().size(), before + 1);
        QVERIFY(RyMessageLog::global().warnings().last().contains(QLatin1String("ryhost_de.qm")));
    }
};

RY_TEST(HostTranslationsTest)
#include "tst_HostTranslations.moc"
