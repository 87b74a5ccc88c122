#include "recovery/AutosaveStage.h"
#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyAppSettings.h"
#include "ryhost/preferences/PreferencesDialog.h"
#include "ryhost/recovery/AutosaveSettings.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>

class PreferencesDialogTest : public QObject, private AutosaveStage
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(open());
        AutosaveSettings::global().setState(QString());
    }
    void cleanup() { close(); }

    void saysWhetherAndWhere()
    {
        PreferencesDialog dialog;
        auto *on = dialog.findChild<QCheckBox *>(QStringLiteral("AutosaveOn"));
        auto *folder = dialog.findChild<QLineEdit *>(QStringLiteral("AutosaveFolder"));
        const auto *state = dialog.findChild<QLabel *>(QStringLiteral("AutosaveState"));
        QVERIFY(on->isChecked());
        QCOMPARE(folder->text(), QString());
        QCOMPARE(folder->placeholderText(), settings() + QStringLiteral("/autosave"));
        QCOMPARE(state->text(), QStringLiteral("Unsaved work will be kept in %1/autosave.").arg(settings()));
        AutosaveSettings::global().setState(QStringLiteral("It really is there."));
        QCOMPARE(state->text(), QStringLiteral("It really is there."));
        folder->setText(QStringLiteral("/elsewhere"));
        QCOMPARE(state->text(), QStringLiteral("Unsaved work will be kept in /elsewhere."));
        on->setChecked(false);
        QCOMPARE(state->text(), QStringLiteral("After a crash, everything since the last save is lost."));
        QVERIFY(!folder->isEnabled());
        dialog.reject();
        QVERIFY(AutosaveSettings::global().isOn());
        QCOMPARE(AutosaveSettings::global().chosenFolder(), QString());
    }

    void sets()
    {
        const QString chosen = path(QStringLiteral("chosen"));
        {
            PreferencesDialog dialog;
            dialog.findChild<QLineEdit *>(QStringLiteral("AutosaveFolder"))->setText(chosen);
            dialog.accept();
        }
        QVERIFY(AutosaveSettings::global().isOn());
        QCOMPARE(AutosaveSettings::global().folders().front(), chosen);
        {
            PreferencesDialog dialog;
            QCOMPARE(dialog.findChild<QLineEdit *>(QStringLiteral("AutosaveFolder"))->text(), chosen);
            dialog.findChild<QCheckBox *>(QStringLiteral("AutosaveOn"))->setChecked(false);
            dialog.accept();
        }
        QVERIFY(!AutosaveSettings::global().isOn());
    }

    void foldersOfNoUse_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("reason");
        QTest::newRow("read-only") << QStringLiteral("%1/read only")
                                   << QStringLiteral("the folder %1/read only is write-protected");
        QTest::newRow("below one") << QStringLiteral("%1/read only/new/folder")
                                   << QStringLiteral("the folder %1/read only is write-protected");
        QTest::newRow("a file") << QStringLiteral("%1/mannequin.glb")
                                << QStringLiteral("%1/mannequin.glb is not a folder");
        QTest::newRow("relative") << QStringLiteral("here")
                                  << QStringLiteral("here does not say where it begins; write the whole path");
    }
    void foldersOfNoUse()
    {
        QFETCH(QString, folder);
        QFETCH(QString, reason);
        const QString readOnly = path(QStringLiteral("read only"));
        QVERIFY(QDir().mkpath(readOnly));
        QVERIFY(QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::ExeOwner));
        const auto filled = [this](const QString &text) {
            return text.contains(QStringLiteral("%1")) ? text.arg(m_folder->path()) : text;
        };
        PreferencesDialog dialog;
        dialog.findChild<QLineEdit *>(QStringLiteral("AutosaveFolder"))->setText(filled(folder));
        dialog.show();
        RyDialogDriver driver;
        dialog.accept();
        QVERIFY(dialog.isVisible());
        QCOMPARE(driver.boxes().size(), size_t(1));
        QCOMPARE(driver.boxes().front().title, QStringLiteral("Folder Not Usable"));
        QCOMPARE(driver.boxes().front().text,
                 QStringLiteral("Unsaved work cannot be kept there: %1.\n\nChoose another folder, or leave the field "
                                "empty for the ordinary place.")
                     .arg(filled(reason)));
        QCOMPARE(driver.boxes().front().buttons, QStringList{QStringLiteral("Ok")});
        QCOMPARE(AutosaveSettings::global().chosenFolder(), QString());
        QVERIFY(QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
};

RY_TEST(PreferencesDialogTest)
#include "tst_PreferencesDialog.moc"
