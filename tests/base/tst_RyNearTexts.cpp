#include "support/RyTest.h"

#include "rycore/base/RyNearTexts.h"

class RyNearTextsTest : public QObject
{
    Q_OBJECT

private slots:
    void partsAndSlips()
    {
        const QStringList bones{"upperarm.l", "lowerarm.r", "lowerarm.l", "lowerarm_twist.l", "hip"};
        // Equally near ones stay in their order, farther ones come behind.
        QCOMPARE(ryNearTexts("lowerarm", bones), QStringList({"lowerarm.r", "lowerarm.l", "lowerarm_twist.l"}));
        QCOMPARE(ryNearTexts("LOWERARM.L", bones).first(), QString("lowerarm.l"));
        QCOMPARE(ryNearTexts("rig:hip", bones), QStringList("hip"));
        QCOMPARE(ryNearTexts("hop", bones), QStringList("hip"));
        QCOMPARE(ryNearTexts("hats", bones), QStringList());
        QCOMPARE(ryNearTexts("", bones), QStringList());
        QCOMPARE(ryNearTexts("h", bones), QStringList());
        QCOMPARE(ryNearTexts("hip", {"hip", "Hip", "hip"}), QStringList({"hip", "Hip"}));
    }

    void sentences()
    {
        QCOMPARE(ryDidYouMean({}), QString());
        QCOMPARE(ryDidYouMean({"a"}), QString(" (did you mean \"a\"?)"));
        QCOMPARE(ryDidYouMean({"a", "b", "c"}, ""), QString(" (did you mean a, b or c?)"));
        QCOMPARE(ryDidYouMean({"1", "2", "3", "4", "5", "6"}, ""), QString(" (did you mean 1, 2, 3, 4, 5 or 6?)"));
        QCOMPARE(ryDidYouMean({"1", "2", "3", "4", "5", "6", "7"}, ""),
                 QString(" (did you mean 1, 2, 3, 4, 5 or one of 2 more?)"));
    }
};

RY_TEST(RyNearTextsTest)
#include "tst_RyNearTexts.moc"
