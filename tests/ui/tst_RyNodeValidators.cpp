#include "support/RyTest.h"

#include "rycore/ui/RyNodeLabelValidator.h"
#include "rycore/ui/RyNodeNameValidator.h"

#include <QLineEdit>

/// What may be typed as the name and as the label of a node.
class RyNodeValidatorsTest : public QObject
{
    Q_OBJECT
private slots:
    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("name");
        QTest::addColumn<int>("label");
        const auto add = [](const char *row, const QString &text, QValidator::State name, QValidator::State label) {
            QTest::newRow(row) << text << int(name) << int(label);
        };
        constexpr auto yes = QValidator::Acceptable;
        constexpr auto soon = QValidator::Intermediate;
        constexpr auto no = QValidator::Invalid;
        add("letters", QStringLiteral("lForearm"), yes, yes);
        add("all kinds", QStringLiteral("_Bone-2(7)"), yes, yes);
        add("digits", QStringLiteral("12"), yes, yes);
        add("other script", QStringLiteral("Kn\u00f6chel\u5de6"), yes, yes);
        add("beyond the first plane", QStringLiteral("\U00020000"), yes, yes);
        add("blank between", QStringLiteral("left arm"), yes, yes);
        add("blank before", QStringLiteral(" arm"), soon, yes);
        add("blank after", QStringLiteral("arm "), soon, yes);
        add("empty", QString(), soon, soon);
        add("only blanks", QStringLiteral("  "), soon, soon);
        add("colon", QStringLiteral("rig:arm"), no, yes);
        add("dot", QStringLiteral("arm.L"), no, yes);
        add("slash", QStringLiteral("arm/hand"), no, yes);
        add("quote", QStringLiteral("\"arm\""), no, yes);
        add("tab", QStringLiteral("arm\thand"), no, no);
        add("line feed", QStringLiteral("arm\n"), no, no);
        add("zero", QString(QChar(0)), no, no);
    }
    void texts()
    {
        QFETCH(QString, text);
        QFETCH(int, name);
        QFETCH(int, label);
        int position = 0;
        QString copy = text;
        QCOMPARE(int(RyNodeNameValidator().validate(copy, position)), name);
        QCOMPARE(int(RyNodeLabelValidator().validate(copy, position)), label);
        QCOMPARE(copy, text);
    }

    void inAField()
    {
        QLineEdit field;
        field.setValidator(new RyNodeNameValidator(&field));
        QTest::keyClicks(&field, QStringLiteral("a:b/c d "));
        QCOMPARE(field.text(), QStringLiteral("abc d "));
        QVERIFY(!field.hasAcceptableInput());
        // Confirming takes the blank off.
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(field.text(), QStringLiteral("abc d"));
        QVERIFY(field.hasAcceptableInput());
    }
};

RY_TEST(RyNodeValidatorsTest)
#include "tst_RyNodeValidators.moc"
