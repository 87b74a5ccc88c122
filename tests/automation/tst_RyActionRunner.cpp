#include "support/RyTest.h"

#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/script/RyScript.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"

#include <QDialogButtonBox>
#include <QSpinBox>
#include <QVBoxLayout>

#include <functional>

class RyJEPlainAction : public RyAction
{
    Q_OBJECT
public:
    RyJEPlainAction() : RyAction(QStringLiteral("Plain"), QString()) {}
    using RyAction::setUnavailableReason;
    void executeAction() override
    {
        ++runs;
        if (work)
            work();
    }
    int runs = 0;
    std::function<void()> work;
};

class RyJEAskAction : public RyAction
{
    Q_OBJECT
public:
    RyJEAskAction() : RyAction(QStringLiteral("Ask"), QString()) {}
    void executeAction() override
    {
        chosen = QMessageBox::question(nullptr, QStringLiteral("Sure?"), QStringLiteral("Go on?"),
                                       QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    }
    int chosen = 0;
};

class RyJERefuseAction : public RyAction
{
    Q_OBJECT
public:
    RyJERefuseAction() : RyAction(QStringLiteral("Refuse"), QString()) {}
    void executeAction() override
    {
        QMessageBox::information(nullptr, QStringLiteral("Selection Error"),
                                 QStringLiteral("Select a <b>bone</b>,<br />then a figure."));
    }
};

class RyJECountAction : public RyAction
{
    Q_OBJECT
public:
    RyJECountAction() : RyAction(QStringLiteral("Count"), QString()) {}
    void executeAction() override
    {
        QDialog dialog;
        dialog.setWindowTitle(QStringLiteral("Count Things"));
        auto *layout = new QVBoxLayout(&dialog);
        auto *field = new QSpinBox(&dialog);
        field->setObjectName(QStringLiteral("CountSpn"));
        auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
        layout->addWidget(field);
        layout->addWidget(buttons);
        connect(buttons, &QDialogButtonBox::accepted, &dialog, [&] {
            if (field->value() % 2 == 0)
                return dialog.accept();
            QMessageBox::warning(&dialog, QStringLiteral("Input Error"), QStringLiteral("Even numbers only."));
            if (field->value() > 50)
                field->setValue(50);
        });
        connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
        if (dialog.exec() == QDialog::Accepted)
            count = field->value();
    }
    int count = -1;
};

class RyActionRunnerTest : public QObject
{
    Q_OBJECT

    RyActionMgr m_manager{nullptr};
    RyJEPlainAction *m_plain = new RyJEPlainAction;
    RyJEAskAction *m_ask = new RyJEAskAction;
    RyJECountAction *m_count = new RyJECountAction;
    const RyActionRunner m_runner{&m_manager};

    using Requests = QList<QPair<const char *, const char *>>;
    RyActionResult run(const char *name, const Requests &fields = {}, const Requests &answers = {}) const
    {
        RyDialogDriver driver;
        for (const auto &[field, value] : fields)
            driver.setField(QString::fromLatin1(field), QString::fromLatin1(value));
        for (const auto &[title, button] : answers)
            driver.setAnswer(QString::fromLatin1(title), QString::fromLatin1(button));
        return m_runner.run(QString::fromLatin1(name), driver);
    }

private slots:
    void initTestCase()
    {
        for (RyAction *action : std::initializer_list<RyAction *>{m_plain, m_ask, m_count, new RyJERefuseAction})
            m_manager.addAction(action);
    }

    void runs()
    {
        const RyActionResult result = run("RyJEPlainAction");
        QCOMPARE(result.outcome, RyOutcome::Ran);
        QVERIFY(result.reason.isEmpty() && result.dialogs.empty() && result.notes.isEmpty());
        QCOMPARE(m_plain->runs, 1);
    }

    void namesThatAreNot_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("offered");
        const auto didYouMean = [](const char *names) { return QStringLiteral(" (did you mean %1?).").arg(names); };
        QTest::newRow("short") << QStringLiteral("Plain") << didYouMean("RyJEPlainAction");
        QTest::newRow("lower case") << QStringLiteral("ryjeplainaction") << didYouMean("RyJEPlainAction");
        QTest::newRow("a letter off") << QStringLiteral("RyJEReuseAction") << didYouMean("RyJERefuseAction");
        QTest::newRow("swapped") << QStringLiteral("RyJECuontAction") << didYouMean("RyJECountAction");
        QTest::newRow("several") << QStringLiteral("RefusePlain") << didYouMean("RyJERefuseAction or RyJEPlainAction");
        // As far off as no other name would be offered.
        const QString all =
            QStringLiteral("; there is RyJEAskAction, RyJECountAction, RyJEPlainAction, RyJERefuseAction.");
        QTest::newRow("two of five letters off") << QStringLiteral("RyJECxyntAction") << all;
        QTest::newRow("nothing alike") << QStringLiteral("Frobnicate") << all;
    }

    void namesThatAreNot()
    {
        QFETCH(QString, name);
        QFETCH(QString, offered);
        const RyActionResult result = m_runner.run(name, RyDialogDriver());
        QCOMPARE(result.outcome, RyOutcome::WrongUse);
        QCOMPARE(result.reason, QStringLiteral("There is no action %1%2").arg(name, offered));
    }

    void disabledActionsSayWhy()
    {
        m_plain->setEnabled(false);
        const int before = m_plain->runs;
        RyActionResult result = run("RyJEPlainAction");
        QCOMPARE(result.outcome, RyOutcome::Refused);
        QVERIFY2(result.reason.contains(QLatin1String("Plain")), qPrintable(result.reason));
        m_plain->setUnavailableReason(QStringLiteral("Select a bone first."));
        result = run("RyJEPlainAction");
        QCOMPARE(result.reason, QStringLiteral("Select a bone first."));
        QCOMPARE(m_plain->runs, before);
        m_plain->setEnabled(true);
    }

    void answersOfBoxes()
    {
        const RyActionResult result = run("RyJEAskAction", {}, {{"Sure?", "Yes"}, {"Other", "Yes"}});
        QCOMPARE(result.outcome, RyOutcome::Ran);
        QCOMPARE(m_ask->chosen, int(QMessageBox::Yes));
        QCOMPARE(result.dialogs.size(), size_t(1));
        QCOMPARE(result.notes.size(), 1);
        QVERIFY(result.notes.first().contains(QLatin1String("Other")));
        run("RyJEAskAction");
        QCOMPARE(m_ask->chosen, int(QMessageBox::No));
        QCOMPARE(run("RyJEAskAction", {}, {{"Sure?", "Perhaps"}}).outcome, RyOutcome::WrongUse);
    }

    /// What opened before the action belongs to its run, and is judged with it.
    void theDriverMayBeOlder()
    {
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Before"), QStringLiteral("Cancel"));
        QMessageBox::question(nullptr, QStringLiteral("Before"), QStringLiteral("On?"),
                              QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok);
        const RyActionResult result = m_runner.run(QStringLiteral("RyJEAskAction"), driver);
        QCOMPARE(result.outcome, RyOutcome::Cancelled);
        QVERIFY2(result.reason.contains(QLatin1String("Before")), qPrintable(result.reason));
        QVERIFY(result.notes.isEmpty());
        QCOMPARE(result.dialogs.size(), size_t(2));
        QCOMPARE(result.dialogs.back().title, QStringLiteral("Sure?"));
    }

    void boxesThatLeaveNoChoiceRefuse()
    {
        const RyActionResult result = run("RyJERefuseAction");
        QCOMPARE(result.outcome, RyOutcome::Refused);
        QCOMPARE(result.reason, QStringLiteral("Select a bone, then a figure."));
        const QVariantMap map = result.toMap();
        QCOMPARE(map.value(QStringLiteral("refused")).toBool(), true);
        const QVariantMap box = map.value(QStringLiteral("boxes")).toList().value(0).toMap();
        QCOMPARE(box.value(QStringLiteral("title")).toString(), QStringLiteral("Selection Error"));
        QCOMPARE(box.value(QStringLiteral("text")).toString(), QStringLiteral("Select a bone, then a figure."));
        QCOMPARE(box.value(QStringLiteral("icon")).toString(), QStringLiteral("information"));
        QCOMPARE(box.value(QStringLiteral("buttons")).toStringList(), QStringList(QStringLiteral("Ok")));
        QCOMPARE(box.value(QStringLiteral("answered")).toString(), QStringLiteral("Ok"));
    }

    void fieldsOfDialogs()
    {
        RyActionResult result = run("RyJECountAction", {{"CountSpn", "12"}});
        QCOMPARE(result.outcome, RyOutcome::Ran);
        QCOMPARE(m_count->count, 12);

        result = run("RyJECountAction", {{"CountSpn", "13"}});
        QCOMPARE(result.outcome, RyOutcome::Refused);
        for (const char *words : {"Count Things", "Even numbers only."})
            QVERIFY2(result.reason.contains(QLatin1String(words)), qPrintable(result.reason));
        QCOMPARE(result.dialogs.size(), size_t(4));

        // Corrected by the dialog, which then takes it: told, but no refusal.
        result = run("RyJECountAction", {{"CountSpn", "51"}});
        QCOMPARE(result.outcome, RyOutcome::Ran);
        QCOMPARE(result.dialogs.size(), size_t(2));
        QCOMPARE(m_count->count, 50);

        result = run("RyJECountAction", {{"CountSpin", "14"}});
        QCOMPARE(result.outcome, RyOutcome::WrongUse);
        QVERIFY2(result.reason.contains(QLatin1String("CountSpn (0 to 99)")), qPrintable(result.reason));
        QCOMPARE(m_count->count, 50);

        result = run("RyJEPlainAction", {{"CountSpn", "14"}});
        QCOMPARE(result.outcome, RyOutcome::RanWithUnusedFields);
        QVERIFY2(result.toMap().value(QStringLiteral("ran")).toBool(), "the action has run all the same");
        QVERIFY2(result.reason.startsWith(QLatin1String("It ran, but")) &&
                     result.reason.contains(QLatin1String("CountSpn")),
                 qPrintable(result.reason));

        result = run("RyJECountAction", {{"Other/CountSpn", "14"}});
        QCOMPARE(result.outcome, RyOutcome::RanWithUnusedFields);
        QVERIFY2(result.reason.contains(QLatin1String("Count Things")), qPrintable(result.reason));
    }

    void withoutActions()
    {
        const RyActionRunner none(nullptr);
        QCOMPARE(none.run(QStringLiteral("RyJEPlainAction"), RyDialogDriver()).outcome, RyOutcome::WrongUse);
        QVERIFY(none.names().isEmpty());
    }

    void answersThatGiveUpAreNoRefusal()
    {
        const RyActionResult result = run("RyJECountAction", {}, {{"Count Things", "Cancel"}});
        QCOMPARE(result.outcome, RyOutcome::Cancelled);
        QVERIFY2(result.reason.contains(QLatin1String("Count Things")), qPrintable(result.reason));
        const QVariantMap map = result.toMap();
        QCOMPARE(map.value(QStringLiteral("cancelled")).toBool(), true);
        QCOMPARE(map.value(QStringLiteral("ran")).toBool(), false);
        const RyActionResult unused = run("RyJECountAction", {{"Other/CountSpn", "14"}}, {{"Count Things", "Cancel"}});
        QCOMPARE(unused.outcome, RyOutcome::CancelledWithUnusedFields);
        QVERIFY2(unused.reason.contains(QLatin1String("Other/CountSpn")), qPrintable(unused.reason));
        QCOMPARE(unused.toMap().value(QStringLiteral("cancelled")).toBool(), true);
        // To say no is an answer like any other.
        QCOMPARE(run("RyJEAskAction", {}, {{"Sure?", "No"}}).outcome, RyOutcome::Ran);
    }

    void whatTheLogGets()
    {
        m_plain->work = [] { RyMessageLog::global().warning(QStringLiteral("The vertex 7 has no weight.")); };
        RyMessageLog::global().setEcho(false);
        RyActionResult result = run("RyJEPlainAction");
        QCOMPARE(result.outcome, RyOutcome::Ran);
        QCOMPARE(result.notes, QStringList(QStringLiteral("The vertex 7 has no weight.")));
        RyScriptEngine scripts;
        m_plain->work = [] {
            RyScript script(QStringLiteral("broken"));
            script.setSource(QStringLiteral("\nmissing();"));
            script.execute();
        };
        result = run("RyJEPlainAction");
        QCOMPARE(result.outcome, RyOutcome::Refused);
        QVERIFY2(result.reason.startsWith(QLatin1String("broken(2): ")), qPrintable(result.reason));
        m_plain->work = [] { RyScript(QString()).loadFromFile(QStringLiteral("/nowhere/at/all.rsx"), true); };
        result = run("RyJEPlainAction");
        QCOMPARE(result.outcome, RyOutcome::Refused);
        QVERIFY2(result.reason.contains(QLatin1String("all.rsx")) &&
                     result.reason.contains(QLatin1String("no such file")),
                 qPrintable(result.reason));
        m_plain->work = nullptr;
        RyMessageLog::global().setEcho(true);
        QCOMPARE(run("RyJEPlainAction").outcome, RyOutcome::Ran);
    }
};

RY_TEST(RyActionRunnerTest)
#include "tst_RyActionRunner.moc"
