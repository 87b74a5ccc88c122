#include "support/RyTest.h"

#include "RyFilledBoneDialog.h"
#include "RyMessageBoxes.h"
#include "tool/RyWindowScene.h"

#include "pluginsource/RyJointTools/dialogs/RyCreateBoneValidator.h"

namespace {

const QString suffixQuestion = QStringLiteral(
    "question|Name/Label Suffix Mismatch|The suffix of the Name and Label for the new bone do not match. This can lead "
    "to "
    "confusion later. Would you like to continue with the existing values or fix the mismatch?|Yes, Continue,No, Fix "
    "Mismatch|Yes, Continue|");
const QString suffixTitle = QStringLiteral("Name/Label Suffix Mismatch");
const QString one = QStringLiteral("An adjustment has been made. Verify the adjustment and try again.");
const QString several = QStringLiteral("Adjustments have been made. Verify the adjustments and try again.");

QString inputError(const QStringList &messages)
{
    return QStringLiteral("warning|Input Error|%1|Ok|Ok|Ok").arg(messages.join(QStringLiteral("\n\n")));
}

} // namespace

/// What lets the bone creation dialog close.
class RyCreateBoneValidatorTest : public QObject
{
    Q_OBJECT

private slots:
    void foreignDialog();
    void needsASelectedBone_data();
    void needsASelectedBone();
    void suffixQuestions_data();
    void suffixQuestions();
    void fixesSuffixes_data();
    void fixesSuffixes();
    void closedQuestionGoesOn();
    void dialogGoesDuringTheQuestion_data();
    void dialogGoesDuringTheQuestion();
    void textsAreShownAsTheyAre();
    void conflicts_data();
    void conflicts();
};

void RyCreateBoneValidatorTest::foreignDialog()
{
    RyWindowScene scene;
    RyMessageBoxes boxes;
    RyBasicDialog other;
    RyCreateBoneValidator validator;
    QVERIFY(!validator.validate(&other));
    QVERIFY(!validator.validate(nullptr));
    const QString message = QStringLiteral("warning|Unexpected Error|An unexpected error has occurred.|Ok|Ok|Ok");
    QCOMPARE(boxes.facts, QStringList({message, message}));
    QCOMPARE(boxes.parents, QList<QWidget *>({scene.window.get(), scene.window.get()}));
}

void RyCreateBoneValidatorTest::needsASelectedBone_data()
{
    QTest::addColumn<QString>("selected");
    QTest::addColumn<bool>("accepts");
    QTest::newRow("a bone") << "hip" << true;
    QTest::newRow("the figure") << "figure" << false;
    QTest::newRow("a prop") << "prop" << false;
    QTest::newRow("nothing") << "" << false;
    QTest::newRow("a bone without a skeleton") << "loose" << false;
}

void RyCreateBoneValidatorTest::needsASelectedBone()
{
    QFETCH(QString, selected);
    RyToolScene scene;
    auto *loose = new RyBone;
    loose->setName(QStringLiteral("loose"));
    ryScene()->addNode(loose);
    ryScene()->setSelection({selected.isEmpty() ? nullptr : ryScene()->findNode(selected)});
    const size_t nodes = ryScene()->getNodes().size();
    RyMessageBoxes boxes;
    RyFilledBoneDialog dialog;
    dialog.fill(QStringLiteral("Tail"), QStringLiteral("Tail"));
    const bool closed = dialog.accepts();
    QTEST(closed, "accepts");
    QCOMPARE(boxes.facts, QStringList());
    QCOMPARE(ryScene()->getNodes().size(), nodes + (closed ? 1 : 0));
}

void RyCreateBoneValidatorTest::suffixQuestions_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    QTest::addColumn<bool>("asks");
    QTest::newRow("none") << "Tail"
                          << "Tail" << false;
    QTest::newRow("name only") << "Tail2"
                               << "Tail" << false;
    QTest::newRow("label only") << "Tail"
                                << "Tail 2" << false;
    QTest::newRow("equal") << "Tail2"
                           << "Tail 2" << false;
    QTest::newRow("different") << "Tail2"
                               << "Tail 3" << true;
    QTest::newRow("equal numbers, other digits") << "Tail02"
                                                 << "Tail 2" << true;
    QTest::newRow("all digits count as none") << "22"
                                              << "Tail 3" << false;
}

void RyCreateBoneValidatorTest::suffixQuestions()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    QFETCH(bool, asks);
    RyToolScene scene;
    ryScene()->setSelection({scene.hip});
    RyMessageBoxes boxes;
    RyFilledBoneDialog dialog;
    dialog.fill(name, label);
    // The default answer goes on.
    QVERIFY(dialog.accepts());
    QCOMPARE(boxes.facts, asks ? QStringList(suffixQuestion) : QStringList());
    if (asks)
        QCOMPARE(boxes.parents.first(), static_cast<QWidget *>(&dialog));
    const RyBone *bone = scene.figure->findBone(name);
    QVERIFY(bone);
    QCOMPARE(bone->getLabel(), label);
}

void RyCreateBoneValidatorTest::fixesSuffixes_data()
{
    QTest::addColumn<QString>("takenName");
    QTest::addColumn<QString>("takenLabel");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    // Filled in: Tail2 and "The Tail 3".
    QTest::newRow("nothing taken: by the name") << "x"
                                                << "x"
                                                << "Tail2"
                                                << "The Tail 2";
    QTest::newRow("label taken: by the label") << "x"
                                               << "The Tail 2"
                                               << "Tail3"
                                               << "The Tail 3";
    QTest::newRow("name taken: by the label") << "Tail2"
                                              << "x"
                                              << "Tail3"
                                              << "The Tail 3";
    QTest::newRow("both taken: as they are") << "Tail3"
                                             << "The Tail 2"
                                             << "Tail2"
                                             << "The Tail 3";
    QTest::newRow("name and its label taken: as they are") << "Tail2"
                                                           << "The Tail 3"
                                                           << "Tail2"
                                                           << "The Tail 3";
}

void RyCreateBoneValidatorTest::fixesSuffixes()
{
    QFETCH(QString, takenName);
    QFETCH(QString, takenLabel);
    RyToolScene scene;
    scene.lFoot->setName(takenName);
    scene.lFoot->setLabel(QStringLiteral("Foot"));
    scene.lShin->setLabel(takenLabel);
    // What is unique among top-level nodes does not matter here.
    scene.prop->setName(QStringLiteral("Tail2"));
    scene.prop->setLabel(QStringLiteral("The Tail 2"));
    ryScene()->setSelection({scene.hip});
    RyMessageBoxes boxes;
    boxes.setAnswer(suffixTitle, QStringLiteral("No, Fix Mismatch"));
    RyFilledBoneDialog dialog;
    dialog.fill(QStringLiteral("Tail2"), QStringLiteral("The Tail 3"));
    QVERIFY(!dialog.accepts());
    QCOMPARE(boxes.facts, QStringList(suffixQuestion));
    QTEST(dialog.getBoneName(), "name");
    QTEST(dialog.getBoneLabel(), "label");
    QCOMPARE(int(scene.figure->getAllBones().size()), 5);
}

void RyCreateBoneValidatorTest::closedQuestionGoesOn()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.hip});
    RyDialogDriver driver;
    connect(&driver, &RyDialogDriver::opened, &driver, [](QDialog *box) { box->reject(); });
    RyFilledBoneDialog dialog;
    dialog.fill(QStringLiteral("Tail2"), QStringLiteral("Tail 3"));
    QVERIFY(dialog.accepts());
    QCOMPARE(int(driver.records().size()), 1);
    QCOMPARE(driver.records()[0].title, suffixTitle);
    QCOMPARE(scene.figure->findBone(QStringLiteral("Tail2"))->getLabel(), QStringLiteral("Tail 3"));
}

void RyCreateBoneValidatorTest::dialogGoesDuringTheQuestion_data()
{
    QTest::addColumn<QString>("gone");
    QTest::newRow("the dialog") << "dialog";
    QTest::newRow("the figure") << "figure";
    QTest::newRow("the selection") << "selection";
}

void RyCreateBoneValidatorTest::dialogGoesDuringTheQuestion()
{
    QFETCH(QString, gone);
    RyToolScene scene;
    ryScene()->setSelection({scene.hip});
    const QPointer<RyFilledBoneDialog> dialog = new RyFilledBoneDialog;
    dialog->fill(QStringLiteral("Tail2"), QStringLiteral("Tail 3"));
    RyDialogDriver driver;
    driver.setAnswer(suffixTitle, QStringLiteral("No, Fix Mismatch"));
    connect(&driver, &RyDialogDriver::opened, &driver, [&] {
        if (gone == "dialog")
            delete dialog;
        else if (gone == "figure")
            ryScene()->removeNode(scene.figure);
        else
            ryScene()->setSelection({scene.prop});
    });
    dialog->accept();
    QCOMPARE(int(driver.records().size()), 1);
    QCOMPARE(dialog.isNull(), gone == "dialog");
    if (dialog)
        QCOMPARE(dialog->getBoneLabel(), QStringLiteral("Tail 3"));
    QVERIFY(!ryScene()->findNode(QStringLiteral("Tail2")));
    delete dialog;
}

void RyCreateBoneValidatorTest::textsAreShownAsTheyAre()
{
    RyToolScene scene;
    scene.figure->setLabel(QStringLiteral("<i>The</i> Figure"));
    scene.lShin->setLabel(QStringLiteral("<b>x</b>"));
    ryScene()->setSelection({scene.hip});
    Qt::TextFormat format = Qt::AutoText;
    RyDialogDriver driver;
    connect(&driver, &RyDialogDriver::opened, &driver,
            [&](QDialog *box) { format = qobject_cast<QMessageBox *>(box)->textFormat(); });
    RyFilledBoneDialog dialog;
    dialog.fill(QStringLiteral("Tail"), QStringLiteral("<b>x</b>"));
    QVERIFY(!dialog.accepts());
    QCOMPARE(int(driver.boxes().size()), 1);
    QCOMPARE(driver.boxes()[0].text,
             QStringLiteral("A bone labeled \"<b>x</b>\" already exists in \"<i>The</i> Figure\". \n\n") + one);
    QCOMPARE(format, Qt::PlainText);
}

void RyCreateBoneValidatorTest::conflicts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QString>("newName");
    QTest::addColumn<QString>("newLabel");
    const QString labeled = QStringLiteral("A bone labeled \"Left Shin\" already exists in \"The Figure\". ");
    const QString named = QStringLiteral("A bone named \"lShin\" already exists in \"The Figure\". ");
    QTest::newRow("none") << "Tail"
                          << "Tail" << QStringList() << "Tail"
                          << "Tail";
    QTest::newRow("label") << "Tail"
                           << "Left Shin" << QStringList({labeled, one}) << "Tail"
                           << "Left Shin 2";
    QTest::newRow("name") << "lShin"
                          << "Tail" << QStringList({named, one}) << "lShin2"
                          << "Tail";
    QTest::newRow("both") << "lShin"
                          << "Left Shin" << QStringList({labeled, named, several}) << "lShin2"
                          << "Left Shin 2";
    // What is free among the bones is made unique among the top-level nodes too: there is a prop "lThigh2", "Left Thigh
    // 2".
    const QString labeledThigh = QStringLiteral("A bone labeled \"Left Thigh\" already exists in \"The Figure\". ");
    const QString namedThigh = QStringLiteral("A bone named \"lThigh\" already exists in \"The Figure\". ");
    QTest::newRow("both, and at the top")
        << "lThigh"
        << "Left Thigh" << QStringList({labeledThigh, namedThigh, several}) << "lThigh3"
        << "Left Thigh 3";
}

void RyCreateBoneValidatorTest::conflicts()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    QFETCH(QStringList, messages);
    RyToolScene scene;
    scene.figure->setLabel(QStringLiteral("The Figure"));
    scene.lShin->setLabel(QStringLiteral("Left Shin"));
    scene.lThigh->setLabel(QStringLiteral("Left Thigh"));
    scene.prop->setName(QStringLiteral("lThigh2"));
    scene.prop->setLabel(QStringLiteral("Left Thigh 2"));
    ryScene()->setSelection({scene.hip});
    RyMessageBoxes boxes;
    RyFilledBoneDialog dialog;
    dialog.fill(name, label);
    QCOMPARE(dialog.accepts(), messages.isEmpty());
    QCOMPARE(boxes.facts, messages.isEmpty() ? QStringList() : QStringList(inputError(messages)));
    QTEST(dialog.getBoneName(), "newName");
    QTEST(dialog.getBoneLabel(), "newLabel");
    if (messages.isEmpty())
        return;
    QCOMPARE(boxes.parents.first(), static_cast<QWidget *>(&dialog));
    QCOMPARE(int(scene.figure->getAllBones().size()), 5);
    // What it wrote is free.
    QVERIFY(dialog.accepts());
    QCOMPARE(int(scene.figure->getAllBones().size()), 6);
}

RY_TEST(RyCreateBoneValidatorTest)

#include "tst_boneValidator.moc"
