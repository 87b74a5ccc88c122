#include "support/RyTest.h"

#include "rycore/automation/RyDialogButtons.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/automation/RyDialogVerdict.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTranslator>
#include <QVBoxLayout>

namespace {

/// Qt's own texts in a language that this program does not know.
class ForeignTexts : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *source, const char *, int) const override
    {
        const QByteArray text = QByteArray(source).replace('&', "");
        return text == "OK" ? QStringLiteral("Gut") : text == "Cancel" ? QStringLiteral("Abbrechen (&A)") : QString();
    }
};

} // namespace

/// What buttons are called by scripts, batch runs and reports.
class RyDialogButtonsTest : public QObject
{
    Q_OBJECT

private slots:
    void namesAreTheSameInEveryLanguage_data()
    {
        QTest::addColumn<bool>("foreign");
        QTest::newRow("source texts") << false;
        QTest::newRow("translated") << true;
    }

    void namesAreTheSameInEveryLanguage()
    {
        QFETCH(bool, foreign);
        ForeignTexts texts;
        if (foreign)
            QCoreApplication::installTranslator(&texts);
        RyDialogDriver driver;
        const auto answer = QMessageBox::question(nullptr, QStringLiteral("Sure?"), QStringLiteral("On?"),
                                                  QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel);
        QCOMPARE(int(answer), int(QMessageBox::Cancel));
        driver.setAnswer(QStringLiteral("Sure?"), QStringLiteral("ok"));
        QCOMPARE(int(QMessageBox::question(nullptr, QStringLiteral("Sure?"), QStringLiteral("On?"),
                                           QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel)),
                 int(QMessageBox::Ok));
        QMessageBox::warning(nullptr, QStringLiteral("No"), QStringLiteral("It cannot be."));
        QCoreApplication::removeTranslator(&texts);
        const std::vector<RyDialogRecord> &records = driver.records();
        QCOMPARE(records.size(), size_t(3));
        QCOMPARE(QStringList(records[0].buttons).filter(QRegularExpression(QStringLiteral("^(Ok|Cancel)$"))).size(), 2);
        QCOMPARE(records[0].answered, QStringLiteral("Cancel"));
        QCOMPARE(records[1].answered, QStringLiteral("Ok"));
        QVERIFY(records[2].offersOnlyOk());
        QCOMPARE(ryJudgeDialogs(driver).outcome, RyOutcome::Refused);
    }

    void ownTextsAreNames()
    {
        QDialog dialog;
        QDialogButtonBox box(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
        auto *layout = new QVBoxLayout(&dialog);
        layout->addWidget(&box);
        QPushButton *ok = box.button(QDialogButtonBox::Ok);
        ok->setText(QStringLiteral("Save && &Quit"));
        QPushButton *all = box.addButton(QStringLiteral("&Yes to All"), QDialogButtonBox::ApplyRole);
        dialog.show();
        QCOMPARE(RyDialogButtons::nameOf(ok), QStringLiteral("Save & Quit"));
        QCOMPARE(RyDialogButtons::nameOf(all), QStringLiteral("YesToAll"));
        QCOMPARE(RyDialogButtons::nameOf(box.button(QDialogButtonBox::Cancel)), QStringLiteral("Cancel"));
        for (const char *name : {"Save & Quit", "save && &quit", "SAVE&QUIT"})
            QCOMPARE(RyDialogButtons::findButton(&dialog, QString::fromLatin1(name)),
                     static_cast<QAbstractButton *>(ok));
        for (const char *name : {"Yes to All", "&YesToAll"})
            QCOMPARE(RyDialogButtons::findButton(&dialog, QString::fromLatin1(name)),
                     static_cast<QAbstractButton *>(all));
        QVERIFY(!RyDialogButtons::findButton(&dialog, QStringLiteral("Quit")));
    }
};

RY_TEST(RyDialogButtonsTest)
#include "tst_RyDialogButtons.moc"
