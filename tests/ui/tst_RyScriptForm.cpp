#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/ui/RyScriptForm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScriptEngine>

class RyScriptFormTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_form = std::make_unique<RyScriptForm>();
        m_form->setTitle(QStringLiteral("Rename Node"));
    }
    void cleanup() { m_form.reset(); }

    void fieldsByTheirKeys()
    {
        QVERIFY(m_form->addText(QStringLiteral("name"), QStringLiteral("Name :"), QStringLiteral("hip"),
                                QStringLiteral("name")));
        QVERIFY(m_form->addText(QStringLiteral("note"), QStringLiteral("Note :")));
        QVERIFY(m_form->addChoice(QStringLiteral("side"), QStringLiteral("Side :"), {"left", "right"}, 1));
        QVERIFY(m_form->addCheck(QStringLiteral("deep"), QStringLiteral("With children"), true));
        QCOMPARE(m_form->windowTitle(), QStringLiteral("Rename Node"));
        QCOMPARE(m_form->value(QStringLiteral("name")), QVariant(QStringLiteral("hip")));
        QCOMPARE(m_form->value(QStringLiteral("note")), QVariant(QString()));
        QCOMPARE(m_form->value(QStringLiteral("side")), QVariant(QStringLiteral("right")));
        QCOMPARE(m_form->value(QStringLiteral("deep")), QVariant(true));
        edit("note")->setText(QStringLiteral(" as it is "));
        m_form->findChild<QComboBox *>(QStringLiteral("side"))->setCurrentIndex(0);
        m_form->findChild<QCheckBox *>(QStringLiteral("deep"))->click();
        QCOMPARE(m_form->value(QStringLiteral("note")), QVariant(QStringLiteral(" as it is ")));
        QCOMPARE(m_form->value(QStringLiteral("side")), QVariant(QStringLiteral("left")));
        QCOMPARE(m_form->value(QStringLiteral("deep")), QVariant(false));
        // For screen readers, and with Alt where the label has a mnemonic.
        QCOMPARE(edit("name")->accessibleName(), QStringLiteral("Name"));
        QCOMPARE(m_form->findChild<QLabel *>(QStringLiteral("nameLbl"))->buddy(), edit("name"));
    }

    void setsValues()
    {
        m_form->addText(QStringLiteral("name"), QString());
        m_form->addChoice(QStringLiteral("side"), QString(), {"left", "right"});
        m_form->addCheck(QStringLiteral("deep"), QString());
        QVERIFY(m_form->setValue(QStringLiteral("name"), QStringLiteral("a")));
        QVERIFY(m_form->setValue(QStringLiteral("side"), QStringLiteral("right")));
        QVERIFY(m_form->setValue(QStringLiteral("deep"), true));
        QVERIFY(!m_form->setValue(QStringLiteral("side"), QStringLiteral("up")));
        QVERIFY(!m_form->setValue(QStringLiteral("depth"), true));
        QCOMPARE(m_form->value(QStringLiteral("name")), QVariant(QStringLiteral("a")));
        QCOMPARE(m_form->value(QStringLiteral("side")), QVariant(QStringLiteral("right")));
        QCOMPARE(m_form->value(QStringLiteral("deep")), QVariant(true));
        QVERIFY(!m_form->value(QStringLiteral("depth")).isValid());
    }

    void refusesMistakes()
    {
        QVERIFY(m_form->addText(QStringLiteral("name"), QString()));
        QVERIFY(!m_form->addCheck(QStringLiteral("name"), QString()));
        QVERIFY(!m_form->addText(QString(), QString()));
        QVERIFY(!m_form->addText(QStringLiteral("other"), QString(), QString(), QStringLiteral("number")));
        QVERIFY(!m_form->addText(QStringLiteral("BasicDialogOkBtn"), QString()));
        QCOMPARE(m_form->findChildren<QLineEdit *>().size(), 1);
        QVERIFY(!m_form->findChild<QCheckBox *>());
    }

    void rulesSwitchOk()
    {
        m_form->addText(QStringLiteral("name"), QStringLiteral("Name :"), QStringLiteral("hip"),
                        QStringLiteral("name"));
        m_form->addText(QStringLiteral("label"), QStringLiteral("Label :"), QString(), QStringLiteral("label"));
        QVERIFY(!m_form->isAcceptEnabled());
        QCOMPARE(m_form->getMessage(), QStringLiteral("\"Label\" is empty."));
        edit("label")->setText(QStringLiteral("Hip: left"));
        QVERIFY(m_form->isAcceptEnabled());
        QCOMPARE(m_form->getMessage(), QString());
        edit("name")->clear();
        QVERIFY(!m_form->isAcceptEnabled());
        QCOMPARE(m_form->getMessage(), QStringLiteral("\"Name\" is empty."));
        // Blanks at the ends do not count.
        edit("name")->setText(QStringLiteral(" left hip "));
        QVERIFY(m_form->isAcceptEnabled());
        QCOMPARE(m_form->value(QStringLiteral("name")), QVariant(QStringLiteral("left hip")));
        edit("name")->setText(QStringLiteral("left:hip"));
        QVERIFY(!m_form->isAcceptEnabled());
        QVERIFY(m_form->getMessage().contains(QStringLiteral("letters, digits")));
        edit("name")->setText(QStringLiteral("hip"));
        QVERIFY(m_form->isAcceptEnabled());
        QCOMPARE(m_form->getMessage(), QString());
    }

    void saysWhyACharacterIsNotTaken()
    {
        m_form->addText(QStringLiteral("name"), QStringLiteral("Name :"), QString(), QStringLiteral("name"));
        show();
        QTest::keyClicks(edit("name"), QStringLiteral("hip:"));
        QCOMPARE(edit("name")->text(), QStringLiteral("hip"));
        QVERIFY(message()->isVisible());
        QVERIFY(message()->text().contains(QStringLiteral("letters, digits")));
        QVERIFY(m_form->isAcceptEnabled());
        QTest::keyClicks(edit("name"), QStringLiteral("s"));
        QVERIFY(!message()->isVisible());
    }

    void aMessageKeepsItOpen()
    {
        m_form->addText(QStringLiteral("name"), QStringLiteral("Name :"), QStringLiteral("hip"),
                        QStringLiteral("name"));
        QString seen;
        connect(m_form.get(), &RyScriptForm::accepting, this, [&] {
            seen = m_form->getMessage();
            if (m_form->value(QStringLiteral("name")) == QVariant(QStringLiteral("hip")))
                m_form->setMessage(QStringLiteral("A bone is called so already."));
        });
        show();
        const int height = m_form->height();
        for (int i = 0; i < 2; ++i) {
            button()->click();
            QCOMPARE(seen, QString());
            QVERIFY(m_form->isVisible());
            QVERIFY(message()->isVisible());
            QCOMPARE(message()->text(), QStringLiteral("A bone is called so already."));
            QVERIFY(m_form->isAcceptEnabled());
        }
        QCOMPARE(m_form->height(), height);
        QTest::keyClicks(edit("name"), QStringLiteral("2"));
        QVERIFY(!message()->isVisible());
        QTest::keyClick(edit("name"), Qt::Key_Return);
        QVERIFY(!m_form->isVisible());
        QCOMPARE(m_form->result(), int(QDialog::Accepted));
    }

    void aLongMessageFindsRoom()
    {
        m_form->addText(QStringLiteral("name"), QStringLiteral("Name :"));
        show();
        m_form->setMessage(QStringLiteral("A bone is called so already. ").repeated(12));
        QCoreApplication::processEvents();
        QVERIFY(message()->height() >= message()->heightForWidth(message()->width()));
        QVERIFY(message()->heightForWidth(message()->width()) > 2 * message()->fontMetrics().height());
    }

    void fromAScript()
    {
        QScriptEngine engine;
        engine.globalObject().setProperty(QStringLiteral("form"), engine.newQObject(m_form.get()));
        RyDialogDriver driver;
        driver.setField(QStringLiteral("name"), QStringLiteral("hip"));
        driver.setField(QStringLiteral("side"), QStringLiteral("right"));
        const QScriptValue result = engine.evaluate(QStringLiteral(
            "form.setTitle('Title'); form.addText('name', 'Name :', 'old', 'name');"
            "form.addChoice('side', 'Side :', ['left', 'right']); form.addCheck('deep', 'Deep', true);"
            "var tries = 0;"
            "form.accepting.connect(function() {"
            "    if (++tries == 1) { form.setMessage('Taken.'); form.setValue('name', form.value('name') + '2'); }"
            "});"
            "form.exec() ? [tries, form.value('name'), form.value('side'), form.value('deep')].join() : 'cancelled'"));
        QCOMPARE(result.toString(), QStringLiteral("2,hip2,right,true"));
        QCOMPARE(driver.errors(), QStringList());
        QCOMPARE(driver.records().size(), size_t(1));
    }

    void staysOpenWhenItsScriptThrows()
    {
        QScriptEngine engine;
        engine.globalObject().setProperty(QStringLiteral("form"), engine.newQObject(m_form.get()));
        RyDialogDriver driver;
        const QScriptValue result = engine.evaluate(QStringLiteral(
            "form.setTitle('Check'); form.addText('name', 'Name :', 'hip');"
            "form.accepting.connect(function() { missing(); }); form.exec() ? 'accepted' : 'cancelled'"));
        QVERIFY2(!engine.hasUncaughtException(), qPrintable(engine.uncaughtException().toString()));
        QCOMPARE(result.toString(), QStringLiteral("cancelled"));
        QVERIFY(driver.records().at(0).isRejected());
        QVERIFY2(driver.records().at(0).reason.contains(QLatin1String("missing")),
                 qPrintable(driver.records().at(0).reason));
    }

    void greyButtonsSayWhy()
    {
        m_form->addText(QStringLiteral("name"), QStringLiteral("Name :"), QString(), QStringLiteral("name"));
        RyDialogDriver driver;
        QCOMPARE(m_form->exec(), int(QDialog::Rejected));
        QVERIFY2(driver.records().at(0).reason.contains(QLatin1String("\"Name\" is empty.")),
                 qPrintable(driver.records().at(0).reason));
    }

    void scriptErrors_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("message");
        QTest::newRow("key twice") << "form.addText('a', 'A'); form.addText('a', 'A')"
                                   << "The form already has a field \"a\".";
        QTest::newRow("no key") << "form.addCheck('', 'A')"
                                << "A field of the form needs a key.";
        QTest::newRow("rule") << "form.addText('a', 'A', '', 'odd')"
                              << "\"odd\" is no rule for texts of a form; there are \"name\" and \"label\".";
        QTest::newRow("value") << "form.value('a')"
                               << "The form has no field \"a\".";
        QTest::newRow("set") << "form.setValue('a', 1)"
                             << "The form has no field \"a\".";
        QTest::newRow("item") << "form.addChoice('a', 'A', ['b']); form.setValue('a', 'c')"
                              << "The field \"a\" of the form has no item \"c\".";
    }
    void scriptErrors()
    {
        QFETCH(QString, program);
        QFETCH(QString, message);
        QScriptEngine engine;
        engine.globalObject().setProperty(QStringLiteral("form"), engine.newQObject(m_form.get()));
        const QScriptValue result = engine.evaluate(program);
        QVERIFY(result.isError());
        QCOMPARE(result.property(QStringLiteral("message")).toString(), message);
    }

private:
    void show()
    {
        m_form->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
    }
    QLineEdit *edit(const char *key) const { return m_form->findChild<QLineEdit *>(QLatin1String(key)); }
    QLabel *message() const { return m_form->findChild<QLabel *>(QStringLiteral("ScriptFormMessageLbl")); }
    QPushButton *button() const { return m_form->findChild<QPushButton *>(QStringLiteral("BasicDialogOkBtn")); }

    std::unique_ptr<RyScriptForm> m_form;
};

RY_TEST(RyScriptFormTest)
#include "tst_RyScriptForm.moc"
