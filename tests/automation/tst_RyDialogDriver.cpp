#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyNodeDlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

/// A dialog of a few fields that notes what it heard.
class FormDialog : public QDialog
{
public:
    explicit FormDialog(QWidget *parent = nullptr) : QDialog(parent)
    {
        setObjectName(QStringLiteral("FormDlg"));
        setWindowTitle(QStringLiteral("Form"));
        auto *layout = new QVBoxLayout(this);
        name.setObjectName(QStringLiteral("NameLed"));
        count.setObjectName(QStringLiteral("CountSpn"));
        count.setRange(1, 10);
        order.setObjectName(QStringLiteral("OrderCmb"));
        order.addItems({QStringLiteral("XYZ"), QStringLiteral("YZX")});
        mirror.setObjectName(QStringLiteral("MirrorChk"));
        for (QWidget *field : std::initializer_list<QWidget *>{&name, &count, &order, &mirror, &buttons})
            layout->addWidget(field);
        buttons.setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply);
        connect(&buttons, &QDialogButtonBox::accepted, this, [this] {
            ++accepts;
            if (!validate || validate())
                accept();
        });
        connect(&buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    }

    QLineEdit name;
    QSpinBox count;
    QComboBox order;
    QCheckBox mirror;
    QDialogButtonBox buttons;
    std::function<bool()> validate;
    int accepts = 0;
};

} // namespace

class RyDialogDriverTest : public QObject
{
    Q_OBJECT

private slots:
    void boxesGetTheirDefaultButton()
    {
        RyDialogDriver driver;
        QMainWindow window;
        window.setObjectName(QStringLiteral("Main"));
        const auto answer = QMessageBox::warning(&window, QStringLiteral("Title"), QStringLiteral("Text"),
                                                 QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel);
        QCOMPARE(int(answer), int(QMessageBox::Cancel));
        QCOMPARE(driver.records().size(), size_t(1));
        const RyDialogRecord &box = driver.records().front();
        QCOMPARE(box.kind, RyDialogRecord::MessageBox);
        QCOMPARE(box.title, QStringLiteral("Title"));
        QCOMPARE(box.text, QStringLiteral("Text"));
        QCOMPARE(box.iconName(), QStringLiteral("warning"));
        QCOMPARE(QSet<QString>(box.buttons.begin(), box.buttons.end()),
                 (QSet<QString>{QStringLiteral("Ok"), QStringLiteral("Cancel")}));
        QCOMPARE(box.defaultButton, QStringLiteral("Cancel"));
        QCOMPARE(box.escapeButton, QStringLiteral("Cancel"));
        QCOMPARE(box.parent.data(), static_cast<QWidget *>(&window));
        QCOMPARE(box.parentClass, QStringLiteral("QMainWindow"));
        QCOMPARE(box.parentName, QStringLiteral("Main"));
        QCOMPARE(box.answered, QStringLiteral("Cancel"));
        QVERIFY(!box.offersOnlyOk());

        QMessageBox::information(nullptr, QStringLiteral("Only"), QStringLiteral("Ok"));
        QVERIFY(driver.records().back().offersOnlyOk());
        QCOMPARE(driver.records().back().escapeButton, QStringLiteral("Ok"));
        QVERIFY(driver.errors().isEmpty());
    }

    void buttonsStandInTheOrderOfTheScreen()
    {
        RyDialogDriver driver;
        QMessageBox box;
        QPushButton *first = box.addButton(QStringLiteral("&Fix && Go"), QMessageBox::YesRole);
        QPushButton *second = box.addButton(QStringLiteral("No, Fix Mismatch"), QMessageBox::NoRole);
        QPushButton *third = box.addButton(QMessageBox::Cancel);
        QStringList byPlace;
        connect(&driver, &RyDialogDriver::opened, this, [&] {
            std::map<int, QString> places{{first->x(), QStringLiteral("Fix & Go")},
                                          {second->x(), QStringLiteral("No, Fix Mismatch")},
                                          {third->x(), QStringLiteral("Cancel")}};
            for (const auto &[x, text] : places)
                byPlace.append(text);
        });
        box.exec();
        QCOMPARE(byPlace.size(), 3);
        QCOMPARE(driver.records().front().buttons, byPlace);
    }

    void rulesChooseTheButton_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<int>("chosen");
        QTest::newRow("standard name") << QStringLiteral("No") << int(QMessageBox::No);
        QTest::newRow("another case") << QStringLiteral("yes") << int(QMessageBox::Yes);
        QTest::newRow("name of two words") << QStringLiteral("YesToAll") << int(QMessageBox::YesToAll);
        QTest::newRow("text of two words") << QStringLiteral("Yes to All") << int(QMessageBox::YesToAll);
    }

    void rulesChooseTheButton()
    {
        QFETCH(QString, rule);
        QFETCH(int, chosen);
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Other"), QStringLiteral("Cancel"));
        driver.setAnswer(QStringLiteral("Ask"), rule);
        QCOMPARE(
            int(QMessageBox::question(nullptr, QStringLiteral("Ask"), QString(),
                                      QMessageBox::Yes | QMessageBox::No | QMessageBox::YesToAll | QMessageBox::Cancel,
                                      QMessageBox::Cancel)),
            chosen);
        QCOMPARE(driver.unusedAnswers(), QStringList(QStringLiteral("Other")));
        QVERIFY(driver.errors().isEmpty());
    }

    void textsOfButtonsServeToo()
    {
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Mismatch"), QStringLiteral("No, Fix Mismatch"));
        QMessageBox box;
        box.setWindowTitle(QStringLiteral("Mismatch"));
        box.addButton(QStringLiteral("&Yes"), QMessageBox::YesRole);
        QPushButton *fix = box.addButton(QStringLiteral("No, &Fix Mismatch"), QMessageBox::NoRole);
        box.exec();
        QCOMPARE(box.clickedButton(), static_cast<QAbstractButton *>(fix));
        QCOMPARE(driver.records().front().answered, QStringLiteral("No, Fix Mismatch"));
    }

    void severalRulesOfOneTitleComeInTurn()
    {
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Ask"), QStringLiteral("Yes"));
        driver.setAnswer(QStringLiteral("Ask"), QStringLiteral("No"));
        QList<int> answers;
        for (int i = 0; i < 3; ++i)
            answers.append(QMessageBox::question(nullptr, QStringLiteral("Ask"), QString()));
        QCOMPARE(answers, (QList<int>{QMessageBox::Yes, QMessageBox::No, QMessageBox::No}));
    }

    void aButtonThatIsNotThereIsAnError()
    {
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Ask"), QStringLiteral("Maybe"));
        const auto answer = QMessageBox::question(nullptr, QStringLiteral("Ask"), QString(),
                                                  QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Yes);
        QCOMPARE(int(answer), int(QMessageBox::Cancel));
        QCOMPARE(driver.errors().size(), 1);
        for (const char *word : {"Ask", "Maybe", "Yes", "Cancel"})
            QVERIFY2(driver.errors().first().contains(QLatin1String(word)), qPrintable(driver.errors().first()));
        QVERIFY(driver.records().front().isRejected());
    }

    void fieldsAreFilledAndTheDialogAccepted()
    {
        RyDialogDriver driver;
        driver.setField(QStringLiteral("NameLed"), QStringLiteral("hip"));
        driver.setField(QStringLiteral("CountSpn"), QStringLiteral("7"));
        driver.setField(QStringLiteral("OrderCmb"), QStringLiteral("YZX"));
        driver.setField(QStringLiteral("MirrorChk"), QStringLiteral("true"));
        FormDialog dialog;
        QCOMPARE(dialog.exec(), int(QDialog::Accepted));
        QCOMPARE(dialog.name.text(), QStringLiteral("hip"));
        QCOMPARE(dialog.count.value(), 7);
        QCOMPARE(dialog.order.currentIndex(), 1);
        QVERIFY(dialog.mirror.isChecked());
        QCOMPARE(dialog.accepts, 1);
        const RyDialogRecord &record = driver.records().front();
        QCOMPARE(record.kind, RyDialogRecord::Dialog);
        QCOMPARE(record.title, QStringLiteral("Form"));
        QCOMPARE(record.objectName, QStringLiteral("FormDlg"));
        QCOMPARE(record.answered, QStringLiteral("Ok"));
        QVERIFY(!record.isRejected() && driver.errors().isEmpty() && driver.unusedFields().isEmpty());
    }

    void unknownFieldsRefuseTheDialog()
    {
        RyDialogDriver driver;
        driver.setField(QStringLiteral("NameLed"), QStringLiteral("hip"));
        driver.setField(QStringLiteral("NmaeLed"), QStringLiteral("hip"));
        FormDialog dialog;
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QCOMPARE(dialog.accepts, 0);
        QVERIFY(driver.records().front().isRejected());
        QCOMPARE(driver.records().front().answered, QStringLiteral("Cancel"));
        QCOMPARE(driver.errors().size(), 1);
        const QString error = driver.errors().first();
        for (const char *word : {"Form", "NmaeLed", "NameLed (text)", "CountSpn (1 to 10)", "OrderCmb (XYZ | YZX)",
                                 "MirrorChk (true or false)"})
            QVERIFY2(error.contains(QLatin1String(word)), qPrintable(error));
        QVERIFY2(!error.contains(QLatin1String("qt_")), qPrintable(error));
    }

    void dialogsThatStayOpenAreAcceptedAgainThenRejected()
    {
        RyDialogDriver driver;
        FormDialog correcting;
        correcting.validate = [&] {
            const bool fits = correcting.name.text() == QLatin1String("corrected");
            correcting.name.setText(QStringLiteral("corrected"));
            return fits;
        };
        QCOMPARE(correcting.exec(), int(QDialog::Accepted));
        QCOMPARE(correcting.accepts, 2);
        QVERIFY(!driver.records().back().isRejected());

        FormDialog stubborn;
        stubborn.validate = [] { return false; };
        QCOMPARE(stubborn.exec(), int(QDialog::Rejected));
        QCOMPARE(stubborn.accepts, 3);
        QVERIFY(driver.records().back().isRejected());
        QVERIFY(!driver.records().back().reason.isEmpty());
        QCOMPARE(driver.records().back().answered, QStringLiteral("Cancel"));
    }

    void aDisabledOkButtonRefuses()
    {
        RyDialogDriver driver;
        FormDialog dialog;
        dialog.buttons.button(QDialogButtonBox::Ok)->setEnabled(false);
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.records().front().isRejected());
        for (const char *word : {"Ok", "CountSpn (1 to 10)"})
            QVERIFY(driver.records().front().reason.contains(QLatin1String(word)));
    }

    void boxesFromWithinADialogAreTakenToo()
    {
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Inner"), QStringLiteral("Yes"));
        driver.setField(QStringLiteral("NameLed"), QStringLiteral("outer"));
        driver.setField(QStringLiteral("InnerDlg/NameLed"), QStringLiteral("inner"));
        FormDialog dialog;
        QString innerName;
        dialog.validate = [&] {
            if (QMessageBox::question(&dialog, QStringLiteral("Inner"), QString(), QMessageBox::Yes | QMessageBox::No,
                                      QMessageBox::No) != QMessageBox::Yes)
                return false;
            FormDialog inner(&dialog);
            inner.setObjectName(QStringLiteral("InnerDlg"));
            inner.validate = [&] {
                QMessageBox::information(&inner, QStringLiteral("Innermost"), QString());
                return true;
            };
            const bool accepted = inner.exec() == QDialog::Accepted;
            innerName = inner.name.text();
            return accepted;
        };
        QCOMPARE(dialog.exec(), int(QDialog::Accepted));
        QCOMPARE(dialog.name.text(), QStringLiteral("outer"));
        QCOMPARE(innerName, QStringLiteral("inner"));
        QStringList titles;
        for (const RyDialogRecord &record : driver.records())
            titles.append(record.title);
        QCOMPARE(titles, (QStringList{QStringLiteral("Form"), QStringLiteral("Inner"), QStringLiteral("Form"),
                                      QStringLiteral("Innermost")}));
        QCOMPARE(driver.boxes().size(), size_t(2));
    }

    void dialogsBelowADialogAreNotPartOfIt()
    {
        RyDialogDriver driver;
        FormDialog dialog;
        FormDialog hidden(&dialog);
        hidden.mirror.setObjectName(QStringLiteral("OtherChk"));
        dialog.validate = [] { return false; };
        driver.setField(QStringLiteral("NameLed"), QStringLiteral("hip"));
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QCOMPARE(driver.records().front().answered, QStringLiteral("Cancel"));
        QCOMPARE(driver.records().front().buttons.size(), 3);
        QVERIFY(hidden.name.text().isEmpty());
        driver.setField(QStringLiteral("OtherChk"), QStringLiteral("true"));
        dialog.exec();
        QCOMPARE(driver.errors().size(), 1);
        QVERIFY2(!driver.errors().first().contains(QLatin1String("NameLed#2")), qPrintable(driver.errors().first()));
    }

    void rulesCancelDialogs()
    {
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Form"), QStringLiteral("Cancel"));
        FormDialog dialog;
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(!driver.records().front().isRejected());
        QCOMPARE(driver.records().front().answered, QStringLiteral("Cancel"));
    }

    void endlessQuestionsEnd()
    {
        RyDialogDriver driver;
        FormDialog form;
        int shown = 0;
        while (shown < 100) {
            ++shown;
            if (form.exec() == QDialog::Rejected)
                break;
        }
        QVERIFY2(shown > 3 && shown < 100, qPrintable(QString::number(shown)));
        QVERIFY(driver.records().back().isRejected());
        shown = 0;
        while (shown < 1000) {
            ++shown;
            if (QMessageBox::warning(nullptr, QStringLiteral("Again?"), QString(),
                                     QMessageBox::Retry | QMessageBox::Cancel,
                                     QMessageBox::Retry) == QMessageBox::Cancel)
                break;
        }
        QVERIFY2(shown > 10 && shown < 1000, qPrintable(QString::number(shown)));
    }

    void otherWindowsAreLeftAlone()
    {
        FormDialog before;
        before.open();
        QVERIFY(before.isVisible());
        {
            RyDialogDriver driver;
            QTest::qWait(20);
            QVERIFY(before.isVisible());
            QMessageBox::information(nullptr, QStringLiteral("Above"), QString());
            QTest::qWait(20);
            QVERIFY(before.isVisible());
            QCOMPARE(driver.records().size(), size_t(1));
            QProgressDialog progress(QStringLiteral("Working"), QStringLiteral("Stop"), 0, 10);
            progress.setWindowModality(Qt::ApplicationModal);
            progress.setMinimumDuration(0);
            for (int i = 0; i < 10; ++i) {
                progress.setValue(i);
                QTest::qWait(2);
            }
            QVERIFY(!progress.wasCanceled());
            QCOMPARE(driver.records().size(), size_t(1));
        }
        before.reject();
    }

    void nodesArePickedByName()
    {
        RyScene scene;
        auto *figure = new RyFigure;
        figure->setName(QStringLiteral("Figure1"));
        auto *hip = new RyBone;
        hip->setName(QStringLiteral("hip"));
        hip->setLabel(QStringLiteral("The Hip"));
        auto *thigh = new RyBone;
        thigh->setName(QStringLiteral("lThigh"));
        thigh->setLabel(QStringLiteral("hip"));
        figure->addNodeChild(hip);
        hip->addNodeChild(thigh);
        scene.addNode(figure);
        const auto pick = [&](const char *value, QStringList *errors) {
            RyDialogDriver driver;
            driver.setField(QStringLiteral("NodeDlgTree"), QString::fromLatin1(value));
            RyNodeDlg dialog(nullptr, figure, QStringLiteral("RyNode"), true, true, false);
            const bool accepted = dialog.exec() == QDialog::Accepted;
            *errors = driver.errors();
            return accepted ? dialog.getNode() : nullptr;
        };
        QStringList errors;
        QCOMPARE(pick("hip", &errors), static_cast<RyNode *>(hip));
        QCOMPARE(pick("lThigh", &errors), static_cast<RyNode *>(thigh));
        QCOMPARE(pick("hip/lThigh", &errors), static_cast<RyNode *>(thigh));
        QCOMPARE(pick("The Hip", &errors), static_cast<RyNode *>(hip));
        QVERIFY(errors.isEmpty());
        QVERIFY(!pick("head", &errors));
        QCOMPARE(errors.size(), 1);
        QVERIFY2(errors.first().contains(QLatin1String("Figure1, hip, lThigh")), qPrintable(errors.first()));

        RyDialogDriver driver;
        RyNodeDlg nothingPicked(nullptr, figure, QStringLiteral("RyNode"), true, true, false);
        QCOMPARE(nothingPicked.exec(), int(QDialog::Rejected));
        QVERIFY(driver.records().front().isRejected());
    }

    void theLatestDriverWorks()
    {
        RyDialogDriver outer;
        {
            RyDialogDriver inner;
            QMessageBox::information(nullptr, QStringLiteral("One"), QString());
            QCOMPARE(inner.records().size(), size_t(1));
        }
        QMessageBox::information(nullptr, QStringLiteral("Two"), QString());
        QCOMPARE(outer.records().size(), size_t(1));
        QCOMPARE(outer.records().front().title, QStringLiteral("Two"));
        outer.clear();
        QVERIFY(outer.records().empty());
    }
};

RY_TEST(RyDialogDriverTest)
#include "tst_RyDialogDriver.moc"
