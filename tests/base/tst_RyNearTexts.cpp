#include "support/RyTest.h"

#include "rycore/base/RyNearTexts.h"
#include "rycore/base/RyTextDistance.h"

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
        // Dashes are no letters.
        QCOMPARE(ryNearTexts("--verison", {"--verbose", "--version"}), QStringList("--version"));
        QCOMPARE(ryNearTexts("", bones), QStringList());
        QCOMPARE(ryNearTexts("h", bones), QStringList());
        QCOMPARE(ryNearTexts("hip", {"hip", "Hip", "hip"}), QStringList({"hip", "Hip"}));
    }

    void distances()
    {
        const auto distance = [](const char *a, const char *b) {
            return ryTextDistance(QLatin1String(a), QLatin1String(b));
        };
        QCOMPARE(distance("", ""), 0);
        QCOMPARE(distance("", "abc"), 3);
        QCOMPARE(distance("abc", ""), 3);
        QCOMPARE(distance("abc", "abc"), 0);
        QCOMPARE(distance("bone", "bones"), 1);
        QCOMPARE(distance("bone", "bnoe"), 1);
        QCOMPARE(distance("ab", "ba"), 1);
        QCOMPARE(distance("ca", "abc"), 3); // a swapped letter is not moved on
        QCOMPARE(distance("upperarm", "puperamr"), 2);
        QCOMPARE(distance("kitten", "sitting"), 3);
        QCOMPARE(distance("align", "snap"), distance("snap", "align"));
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
