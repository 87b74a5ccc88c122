#include "rycore/scene/RyUniqueNames.h"
#include "support/RyTest.h"

class RyUniqueNamesTest : public QObject
{
    Q_OBJECT
private slots:
    void freeTextsStay();
    void numbersAreReplaced_data();
    void numbersAreReplaced();
    void manyInARow();
};

void RyUniqueNamesTest::freeTextsStay()
{
    RyUniqueNames names(RyUniqueNames::Names);
    names.add("arm");
    QCOMPARE(names.find("leg7"), QString("leg7"));
    QCOMPARE(names.find("leg7"), QString("leg7")); // nothing is taken by asking
    QCOMPARE(names.find("Arm"), QString("Arm"));
    QCOMPARE(names.find(""), QString());
}

void RyUniqueNamesTest::numbersAreReplaced_data()
{
    QTest::addColumn<bool>("labels");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("unique");
    // Taken: arm, arm2, arm4, arm9, arm (3), arm 2, 12
    QTest::newRow("name") << false << "arm"
                          << "arm3";
    QTest::newRow("name with a number") << false << "arm9"
                                        << "arm3";
    QTest::newRow("name of digits") << false << "12"
                                    << "122";
    QTest::newRow("label") << true << "arm"
                           << "arm 3";
    QTest::newRow("label with a number") << true << "arm 2"
                                         << "arm 3";
    QTest::newRow("label with parentheses") << true << "arm (3)"
                                            << "arm 3";
}

void RyUniqueNamesTest::numbersAreReplaced()
{
    QFETCH(bool, labels);
    QFETCH(QString, text);
    RyUniqueNames names(labels ? RyUniqueNames::Labels : RyUniqueNames::Names);
    for (const char *taken : {"arm", "arm2", "arm4", "arm9", "arm (3)", "arm 2", "12"})
        names.add(taken);
    QTEST(names.find(text), "unique");
}

void RyUniqueNamesTest::manyInARow()
{
    // Counting from 2 anew each time would take 20,000,000,000 steps.
    const int count = 200000;
    RyUniqueNames names(RyUniqueNames::Names);
    names.add("bone");
    QString last;
    for (int i = 0; i < count; ++i) {
        last = names.find("bone");
        names.add(last);
    }
    QCOMPARE(last, QString("bone%1").arg(count + 1));
}

RY_TEST(RyUniqueNamesTest)

#include "tst_RyUniqueNames.moc"
