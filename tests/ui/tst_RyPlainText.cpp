#include "support/RyTest.h"

#include "rycore/ui/RyPlainText.h"

class RyPlainTextTest : public QObject
{
    Q_OBJECT

private slots:
    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("plain");
        QTest::newRow("nothing") << QString() << QString();
        QTest::newRow("no mark") << QStringLiteral("Align Node...") << QStringLiteral("Align Node...");
        QTest::newRow("a mark") << QStringLiteral("Save && &Quit\tCtrl+Q") << QStringLiteral("Save & Quit");
        QTest::newRow("no mark but two") << QStringLiteral("a&&&&b") << QStringLiteral("a&&b");
        QTest::newRow("a mark at the end") << QStringLiteral("odd&") << QStringLiteral("odd");
        QTest::newRow("a mark behind") << QString::fromUtf8("ファイル(&F)") << QString::fromUtf8("ファイル");
        QTest::newRow("a mark behind, dots") << QStringLiteral("Open (&O)...") << QStringLiteral("Open...");
        QTest::newRow("a mark within brackets") << QStringLiteral("Move (&up)") << QStringLiteral("Move (up)");
        QTest::newRow("an ampersand in brackets") << QStringLiteral("And (&&)") << QStringLiteral("And (&)");
        QTest::newRow("an open bracket") << QStringLiteral("(&F") << QStringLiteral("(F");
        QTest::newRow("brackets without a mark") << QStringLiteral("Bone(s)") << QStringLiteral("Bone(s)");
    }

    void texts()
    {
        QFETCH(QString, text);
        QFETCH(QString, plain);
        QCOMPARE(ryPlainText(text), plain);
    }
};

RY_TEST(RyPlainTextTest)
#include "tst_RyPlainText.moc"
