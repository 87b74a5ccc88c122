#include "support/RyTest.h"

#include "rycore/ui/RyNumberExpression.h"

class RyNumberExpressionTest : public QObject
{
    Q_OBJECT
private slots:
    void evaluates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("number") << " 12.5 " << 12.5;
        QTest::newRow("comma") << "12,5" << 12.5;
        QTest::newRow("leading point") << ".25" << 0.25;
        QTest::newRow("exponent") << "1e-2" << 0.01;
        QTest::newRow("product first") << "3*4+1" << 13.0;
        QTest::newRow("parentheses") << "3*(4+1)" << 15.0;
        QTest::newRow("from left") << "10-4-3" << 3.0;
        QTest::newRow("division from left") << "24/4/2" << 3.0;
        QTest::newRow("signs") << "-2*-3 - -1" << 7.0;
        QTest::newRow("blanks") << " ( 1 + 2 ) * 3 " << 9.0;
    }
    void evaluates()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        double result = -1;
        QVERIFY(RyNumberExpression::evaluate(text, result));
        QCOMPARE(result, value);
    }

    void refuses_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text :
             {"", "abc", "1+", "(1", "1)", "1 2", "1..2", "*3", "1/0", "1e999", "2**3", "--", "0x10", "nan"})
            QTest::newRow(text) << QString::fromLatin1(text);
        QTest::newRow("deep") << QString(5000, QLatin1Char('('));
    }
    void refuses()
    {
        QFETCH(QString, text);
        double result = 42;
        QString error;
        QVERIFY(!RyNumberExpression::evaluate(text, result, &error));
        QCOMPARE(result, 42.0);
        QVERIFY(!error.isEmpty());
    }

    void formats()
    {
        QCOMPARE(RyNumberExpression::format(1.5), QStringLiteral("1.5"));
        QCOMPARE(RyNumberExpression::format(100), QStringLiteral("100"));
        QCOMPARE(RyNumberExpression::format(0.123456), QStringLiteral("0.1235"));
        QCOMPARE(RyNumberExpression::format(-0.00001), QStringLiteral("0"));
        QCOMPARE(RyNumberExpression::format(-2.10), QStringLiteral("-2.1"));
    }
};

RY_TEST(RyNumberExpressionTest)
#include "tst_RyNumberExpression.moc"
