#include "support/RyTest.h"

#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyTextDistance.h"
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
    RyActionRunner m_runner{&m_manager};

    RyActionResult run(const char *name) { return m_runner.run(QString::fromLatin1(name)); }

private slots:
    void initTestCase()
    {
        for (RyAction *action : std::initializer_list<RyAction *>{m_plain, m_ask, m_count, new RyJERefuseAction})
            m_manager.addAction(action);
    }

    void runs()
    {
        const RyActionResult result = run("RyJEPlainAction");
        QVERIFY(result.ran && !result.refused && !result.wrongUse);
        QVERIFY(result.reason.isEmpty() && result.dialogs.empty() && result.notes.isEmpty());
        QCOMPARE(m_plain->runs, 1);
    }

    void namesThatAreNot_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("meant");
        QTest::newRow("short") << QStringLiteral("Plain") << QStringLiteral("RyJEPlainAction");
        QTest::newRow("lower case") << QStringLiteral("ryjeplainaction") << QStringLiteral("RyJEPlainAction");
        QTest::newRow("a letter off") << QStringLiteral("RyJEReuseAction") << QStringLiteral("RyJERefuseAction");
        QTest::newRow("swapped") << QStringLiteral("RyJECuontAction") << QStringLiteral("RyJECountAction");
        QTest::newRow("nothing alike") << QStringLiteral("Frobnicate")
                                       << QStringLiteral(
                                              "RyJEAskAction, RyJECountAction, RyJEPlainAction, RyJERefuseAction");
    }

    void namesThatAreNot()
    {
        QFETCH(QString, name);
        QFETCH(QString, meant);
        const RyActionResult result = m_runner.run(name);
        QVERIFY(!result.ran && !result.refused && result.wrongUse);
        QVERIFY2(result.reason.contains(name) && result.reason.contains(meant), qPrintable(result.reason));
    }

    void disabledActionsSayWhy()
    {
        m_plain->setEnabled(false);
        const int before = m_plain->runs;
        RyActionResult result = run("RyJEPlainAction");
        QVERIFY(!result.ran && result.refused);
        QVERIFY2(result.reason.contains(QLatin1String("Plain")), qPrintable(result.reason));
        m_plain->setUnavailableReason(QStringLiteral("Select a bone first."));
        result = run("RyJEPlainAction");
        QCOMPARE(result.reason, QStringLiteral("Select a bone first."));
        QCOMPARE(m_plain->runs, before);
        m_plain->setEnabled(true);
    }

    void answersAreForOneRun()
    {
        m_runner.setAnswer(QStringLiteral("Sure?"), QStringLiteral("Yes"));
        m_runner.setAnswer(QStringLiteral("Other"), QStringLiteral("Yes"));
        const RyActionResult result = run("RyJEAskAction");
        QVERIFY(result.ran);
        QCOMPARE(m_ask->chosen, int(QMessageBox::Yes));
        QCOMPARE(result.dialogs.size(), size_t(1));
        QCOMPARE(result.notes.size(), 1);
        QVERIFY(result.notes.first().contains(QLatin1String("Other")));
        run("RyJEAskAction");
        QCOMPARE(m_ask->chosen, int(QMessageBox::No));
        m_runner.setAnswer(QStringLiteral("Sure?"), QStringLiteral("Perhaps"));
        QVERIFY(run("RyJEAskAction").wrongUse);
    }

    void boxesThatLeaveNoChoiceRefuse()
    {
        const RyActionResult result = run("RyJERefuseAction");
        QVERIFY(!result.ran && result.refused && !result.wrongUse);
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
        m_runner.setField(QStringLiteral("CountSpn"), QStringLiteral("12"));
        RyActionResult result = run("RyJECountAction");
        QVERIFY(result.ran);
        QCOMPARE(m_count->count, 12);

        m_runner.setField(QStringLiteral("CountSpn"), QStringLiteral("13"));
        result = run("RyJECountAction");
        QVERIFY(!result.ran && result.refused && !result.wrongUse);
        for (const char *words : {"Count Things", "Even numbers only."})
            QVERIFY2(result.reason.contains(QLatin1String(words)), qPrintable(result.reason));
        QCOMPARE(result.dialogs.size(), size_t(4));

        // Corrected by the dialog, which then takes it: told, but no refusal.
        m_runner.setField(QStringLiteral("CountSpn"), QStringLiteral("51"));
        result = run("RyJECountAction");
        QVERIFY(result.ran && !result.refused);
        QCOMPARE(result.dialogs.size(), size_t(2));
        QCOMPARE(m_count->count, 50);

        m_runner.setField(QStringLiteral("CountSpin"), QStringLiteral("14"));
        result = run("RyJECountAction");
        QVERIFY(!result.ran && !result.refused && result.wrongUse);
        QVERIFY2(result.reason.contains(QLatin1String("CountSpn (0 to 99)")), qPrintable(result.reason));
        QCOMPARE(m_count->count, 50);

        m_runner.setField(QStringLiteral("CountSpn"), QStringLiteral("14"));
        result = run("RyJEPlainAction");
        QVERIFY2(result.ran && result.wrongUse, "the action has run all the same");
        QVERIFY2(result.reason.startsWith(QLatin1String("It ran, but")) &&
                     result.reason.contains(QLatin1String("CountSpn")),
                 qPrintable(result.reason));

        m_runner.setField(QStringLiteral("Other/CountSpn"), QStringLiteral("14"));
        result = run("RyJECountAction");
        QVERIFY(result.wrongUse);
        QVERIFY2(result.reason.contains(QLatin1String("Count Things")), qPrintable(result.reason));
    }

    void withoutActions()
    {
        RyActionRunner none(nullptr);
        QVERIFY(none.run(QStringLiteral("RyJEPlainAction")).wrongUse);
        QVERIFY(none.names().isEmpty());
    }

    void distances()
    {
        const auto distance = [](const char *a, const char *b) {
            return ryTextDistance(QLatin1String(a), QLatin1String(b));
        };
        QCOMPARE(distance("", ""), 0);
        QCOMPARE(distance("", "abc"), 3);
        QCOMPARE(distance("abc", "abc"), 0);
        QCOMPARE(distance("bone", "bones"), 1);
        QCOMPARE(distance("kitten", "sitting"), 3);
        QCOMPARE(distance("align", "snap"), distance("snap", "align"));
    }

    void answersThatGiveUpAreNoRefusal()
    {
        m_runner.setAnswer(QStringLiteral("Count Things"), QStringLiteral("Cancel"));
        const RyActionResult result = run("RyJECountAction");
        QVERIFY(result.cancelled && !result.ran && !result.refused && !result.wrongUse);
        QVERIFY2(result.reason.contains(QLatin1String("Count Things")), qPrintable(result.reason));
        QCOMPARE(result.toMap().value(QStringLiteral("cancelled")).toBool(), true);
        // To say no is an answer like any other.
        m_runner.setAnswer(QStringLiteral("Sure?"), QStringLiteral("No"));
        QVERIFY(run("RyJEAskAction").ran);
    }

    void whatTheLogGets()
    {
        m_plain->work = [] { RyMessageLog::global().warning(QStringLiteral("The vertex 7 has no weight.")); };
        RyMessageLog::global().setEcho(false);
        RyActionResult result = run("RyJEPlainAction");
        QVERIFY(result.ran);
        QCOMPARE(result.notes, QStringList(QStringLiteral("The vertex 7 has no weight.")));
        RyScriptEngine scripts;
        m_plain->work = [] {
            RyScript script(QStringLiteral("broken"));
            script.setSource(QStringLiteral("\nmissing();"));
            script.execute();
        };
        result = run("RyJEPlainAction");
        QVERIFY(!result.ran && result.refused);
        QVERIFY2(result.reason.startsWith(QLatin1String("broken(2): ")), qPrintable(result.reason));
        m_plain->work = [] { RyScript(QString()).loadFromFile(QStringLiteral("/nowhere/at/all.rsx"), true); };
        result = run("RyJEPlainAction");
        QVERIFY(!result.ran && result.refused);
        QVERIFY2(result.reason.contains(QLatin1String("all.rsx")) &&
                     result.reason.contains(QLatin1String("no such file")),
                 qPrintable(result.reason));
        m_plain->work = nullptr;
        RyMessageLog::global().setEcho(true);
        QVERIFY(run("RyJEPlainAction").ran);
    }
};

RY_TEST(RyActionRunnerTest)
#include "tst_RyActionRunner.moc"
