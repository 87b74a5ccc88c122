#include "support/RyTest.h"

#include "RyScriptScene.h"

#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QVBoxLayout>

class RyTestAskAction : public RyAction
{
    Q_OBJECT
public:
    RyTestAskAction() : RyAction(QStringLiteral("Ask"), QString()) {}
    void executeAction() override
    {
        QDialog dialog;
        dialog.setWindowTitle(QStringLiteral("Words"));
        auto *word = new QLineEdit(&dialog);
        word->setObjectName(QStringLiteral("WordLed"));
        auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
        auto *layout = new QVBoxLayout(&dialog);
        layout->addWidget(word);
        layout->addWidget(buttons);
        connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
        if (dialog.exec() == QDialog::Accepted)
            said = word->text();
        const auto answer = QMessageBox::question(nullptr, QStringLiteral("Sure?"), QStringLiteral("Go on?"));
        said += answer == QMessageBox::Yes ? QStringLiteral("!") : QStringLiteral("?");
    }
    QString said;
};

/// `Actions` and forms in scripts.
class ScriptActionsTest : public QObject
{
    Q_OBJECT

    static QString lastWarning()
    {
        return RyMessageLog::global().warnings().value(RyMessageLog::global().warnings().size() - 1);
    }

private slots:
    void runWithFieldsAndAnswers()
    {
        RyScriptScene s;
        auto *action = new RyTestAskAction;
        s.window->getActionMgr()->addAction(action);
        QVERIFY(s.evaluate("Actions.names().indexOf('RyTestAskAction') >= 0 && Actions.isEnabled('RyTestAskAction')")
                    .toBool());
        QVERIFY(
            s.evaluate("var r = Actions.run('RyTestAskAction', {WordLed: 12.5}, {'Sure?': 'Yes'});"
                       "r.ran && !r.refused && r.reason === '' && r.boxes.length == 2 && r.boxes[1].title == 'Sure?'"
                       " && r.boxes[1].answered == 'Yes' && r.boxes[1].buttons.length == 2")
                .toBool());
        QCOMPARE(action->said, QStringLiteral("12.5!"));
        QVERIFY(
            s.evaluate("Actions.run('RyTestAskAction', null, {'Sure?': 'No', 'Words': 'Cancel'}).cancelled").toBool());
        QCOMPARE(action->said, QStringLiteral("12.5!?"));
        action->setEnabled(false);
        QVERIFY(s.evaluate("r = Actions.run('RyTestAskAction'); !r.ran && r.refused && r.reason != ''").toBool());
        QVERIFY(!s.evaluate("Actions.isEnabled('RyTestAskAction')").toBool());
    }

    void mistakesAreErrors_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::addColumn<QString>("says");
        QTest::newRow("class") << QByteArray("Actions.run('RyTestAksAction')") << QStringLiteral("RyTestAskAction");
        QTest::newRow("class to ask for")
            << QByteArray("Actions.isEnabled('RyTestAksAction')") << QStringLiteral("RyTestAskAction");
        QTest::newRow("field") << QByteArray("Actions.run('RyTestAskAction', {Word: 'a'})")
                               << QStringLiteral("WordLed (text)");
        QTest::newRow("button") << QByteArray("Actions.run('RyTestAskAction', {}, {'Sure?': 'Perhaps'})")
                                << QStringLiteral("Perhaps");
        QTest::newRow("no object") << QByteArray("Actions.run('RyTestAskAction', 'WordLed')")
                                   << QStringLiteral("object of fields");
    }

    void mistakesAreErrors()
    {
        QFETCH(QByteArray, program);
        QFETCH(QString, says);
        RyScriptScene s;
        s.window->getActionMgr()->addAction(new RyTestAskAction);
        s.evaluate(program.constData());
        QVERIFY(s.window->getScriptEngine()->hasFailed());
        QVERIFY2(lastWarning().contains(says), qPrintable(lastWarning()));
        QVERIFY2(lastWarning().startsWith(QLatin1String("test(1): ")), qPrintable(lastWarning()));
    }

    void formsTellOfMistakes()
    {
        RyScriptScene s;
        QVERIFY(
            s.evaluate("var f = new RyScriptForm('Title'); f.addText('a', 'A:', 'x'); f.value('a') === 'x'").toBool());
        s.evaluate("f.addText('a', 'A:', 'x')");
        QVERIFY(s.window->getScriptEngine()->hasFailed());
        QVERIFY2(lastWarning().contains(QLatin1String("\"a\"")), qPrintable(lastWarning()));
    }
};

RY_TEST(ScriptActionsTest)
#include "tst_scriptActions.moc"
