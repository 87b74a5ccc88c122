#include "support/RyTest.h"

#include "RyScriptScene.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/ui/RyScriptForm.h"

#include <QLineEdit>
#include <QPushButton>

/// The script that renames the selected node.
class RenameScriptTest : public QObject
{
    Q_OBJECT

    static QStringList captions()
    {
        QStringList captions;
        for (int i = 0; i < ryUndoStack()->count(); ++i)
            captions.append(ryUndoStack()->caption(i));
        return captions;
    }

private slots:
    void renamesInOneStep()
    {
        RyScriptScene s;
        RyDialogDriver driver;
        driver.setField(QStringLiteral("name"), QStringLiteral("pelvis"));
        driver.setField(QStringLiteral("label"), QStringLiteral("The Pelvis"));
        s.scene()->setSelection({s.hip});
        const QString before = s.dump();
        QVERIFY2(s.rename(s.hip), qPrintable(RyMessageLog::global().warnings().join(QLatin1Char('\n'))));
        QCOMPARE(s.hip->getName(), QStringLiteral("pelvis"));
        QCOMPARE(s.hip->getLabel(), QStringLiteral("The Pelvis"));
        QCOMPARE(captions(), QStringList(QStringLiteral("Rename Node")));
        QCOMPARE(driver.records().size(), size_t(1));
        QCOMPARE(driver.records().front().title, QStringLiteral("Rename Node"));
        const QString after = s.dump();
        QVERIFY(after != before);
        ryUndoStack()->undo();
        QCOMPARE(s.dump(), before);
        QVERIFY(!s.hip->hasOwnLabel());
        ryUndoStack()->redo();
        QCOMPARE(s.dump(), after);
    }

    void cancelChangesNothing()
    {
        RyScriptScene s;
        RyDialogDriver driver;
        driver.setField(QStringLiteral("name"), QStringLiteral("pelvis"));
        driver.setAnswer(QStringLiteral("Rename Node"), QStringLiteral("Cancel"));
        s.scene()->setSelection({s.hip});
        const QString before = s.dump();
        QVERIFY(s.rename(s.hip));
        QCOMPARE(s.dump(), before);
        QVERIFY(captions().isEmpty());
    }

    void nothingChangedIsNoStep()
    {
        RyScriptScene s;
        RyDialogDriver driver;
        QVERIFY(s.rename(s.hip));
        QCOMPARE(driver.records().front().answered, QStringLiteral("Ok"));
        QVERIFY(captions().isEmpty());
    }

    void withoutSelectionNothingOpens()
    {
        RyScriptScene s;
        RyDialogDriver driver;
        s.scene()->setSelection({});
        RyScript script{QString()};
        QVERIFY(script.loadFromFile(
            RyApp::getHomePath() + QStringLiteral("/scripts/support/Velmor/OstraToolkit/ryRenameNode.rsx"), true));
        QVERIFY(script.execute());
        QVERIFY(driver.records().empty());
    }

    void conflictsKeepTheFormOpen()
    {
        RyScriptScene s;
        RyDialogDriver driver;
        QStringList said;
        bool stayed = false;
        connect(&driver, &RyDialogDriver::opened, this, [&](QDialog *dialog) {
            auto *form = qobject_cast<RyScriptForm *>(dialog);
            QVERIFY(form);
            auto *name = form->findChild<QLineEdit *>(QStringLiteral("name"));
            name->setText(QStringLiteral("abdomen"));
            form->findChild<QPushButton *>(QStringLiteral("BasicDialogOkBtn"))->click();
            stayed = form->isVisible();
            said.append(form->getMessage());
            name->setText(QStringLiteral("pelvis"));
            said.append(form->getMessage());
        });
        QVERIFY(s.rename(s.hip));
        QVERIFY(stayed);
        QCOMPARE(said.size(), 2);
        QVERIFY2(said.at(0).contains(QLatin1String("\"abdomen\"")) &&
                     said.at(0).contains(QLatin1String("figure/hip/abdomen")),
                 qPrintable(said.at(0)));
        QVERIFY2(said.at(1).isEmpty(), qPrintable(said.at(1)));
        QCOMPARE(s.hip->getName(), QStringLiteral("pelvis"));
    }

    void namesThatAreTaken_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("taken");
        QTest::newRow("another bone") << "hip"
                                      << "thigh" << true;
        QTest::newRow("another case") << "hip"
                                      << "Thigh" << false;
        QTest::newRow("a top-level node, for a bone") << "hip"
                                                      << "prop" << false;
        QTest::newRow("a top-level node, for another") << "figure"
                                                       << "prop" << true;
        QTest::newRow("a bone, for a top-level node") << "prop"
                                                      << "thigh" << false;
        QTest::newRow("the figure, for its bone") << "hip"
                                                  << "figure" << false;
    }

    void namesThatAreTaken()
    {
        QFETCH(QString, node);
        QFETCH(QString, name);
        QFETCH(bool, taken);
        RyScriptScene s;
        RyDialogDriver driver;
        driver.setField(QStringLiteral("name"), name);
        RyNode *renamed = s.scene()->findNode(node);
        QVERIFY(s.rename(renamed));
        QCOMPARE(driver.records().front().isRejected(), taken);
        QCOMPARE(renamed->getName(), taken ? node : name);
        if (taken)
            QVERIFY2(driver.records().front().reason.contains(name), qPrintable(driver.records().front().reason));
    }

    void labelsCannotBeEmpty()
    {
        RyScriptScene s;
        RyDialogDriver driver;
        driver.setField(QStringLiteral("label"), QStringLiteral("  "));
        QVERIFY(s.rename(s.hip));
        QVERIFY(driver.records().front().isRejected());
        QVERIFY(captions().isEmpty());
    }

    void theLabelIsTheOneThatWasShown()
    {
        RyScriptScene s;
        RyDialogDriver driver;
        driver.setField(QStringLiteral("name"), QStringLiteral("pelvis"));
        QVERIFY(s.rename(s.hip));
        QCOMPARE(s.hip->getLabel(), QStringLiteral("hip"));
    }

    void namesOfFilesMayStay()
    {
        RyScriptScene s;
        s.hip->setName(QStringLiteral("rig:hip.001"));
        RyDialogDriver driver;
        driver.setField(QStringLiteral("label"), QStringLiteral("Hip"));
        QVERIFY(s.rename(s.hip));
        QCOMPARE(s.hip->getName(), QStringLiteral("rig:hip.001"));
        QCOMPARE(s.hip->getLabel(), QStringLiteral("Hip"));
        driver.setField(QStringLiteral("name"), QStringLiteral("rig:pelvis"));
        QVERIFY(s.rename(s.hip));
        QVERIFY(driver.records().back().isRejected());
        QCOMPARE(s.hip->getName(), QStringLiteral("rig:hip.001"));
        driver.setField(QStringLiteral("name"), QString());
        QVERIFY(s.rename(s.hip));
        QVERIFY(driver.records().back().isRejected());
        driver.setField(QStringLiteral("name"), QStringLiteral("pelvis"));
        QVERIFY(s.rename(s.hip));
        QCOMPARE(s.hip->getName(), QStringLiteral("pelvis"));
    }
};

RY_TEST(RenameScriptTest)
#include "tst_renameScript.moc"
