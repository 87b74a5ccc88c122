#include "support/RyTest.h"

#include "rycore/io/gltf/open/RyGltfNames.h"

class RyGltfNamesTest : public QObject
{
    Q_OBJECT

private slots:
    void theFirstFreeNumberBehindTheName()
    {
        RyGltfNames names;
        QCOMPARE(names.take(QStringLiteral("hand")), QStringLiteral("hand"));
        QCOMPARE(names.take(QStringLiteral("hand3")), QStringLiteral("hand3"));
        QCOMPARE(names.take(QStringLiteral("hand")), QStringLiteral("hand2"));
        QCOMPARE(names.take(QStringLiteral("hand")), QStringLiteral("hand4"));
        QCOMPARE(names.take(QStringLiteral("hand2")), QStringLiteral("hand22"));
        QCOMPARE(names.take(QStringLiteral("hand5")), QStringLiteral("hand5"));
        QCOMPARE(names.take(QStringLiteral("hand")), QStringLiteral("hand6"));
    }

    /// To begin from 2 for every name would not end before the test is given up.
    void manyOfOneName()
    {
        constexpr int Count = 200000;
        RyGltfNames names;
        for (int i = 1; i < Count; ++i)
            names.take(QStringLiteral("bone"));
        QCOMPARE(names.take(QStringLiteral("bone")), QStringLiteral("bone") + QString::number(Count));
    }
};

RY_TEST(RyGltfNamesTest)
#include "tst_gltf_names.moc"
