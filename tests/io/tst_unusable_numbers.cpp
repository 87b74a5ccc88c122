#include "FigureSketch.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

#include <limits>

/// Numbers that no scene can hold.
class UnusableNumbersTest : public QObject
{
    Q_OBJECT

private slots:
    void refused_data()
    {
        QTest::addColumn<int>("accessor");
        QTest::addColumn<int>("component");
        QTest::addColumn<float>("number");
        QTest::addColumn<double>("unit");
        const float nan = std::numeric_limits<float>::quiet_NaN();
        const float infinite = std::numeric_limits<float>::infinity();
        const int positions = 0;
        const int binds = 4;
        QTest::newRow("nan position") << positions << 22 << nan << 0.0;
        QTest::newRow("infinite position") << positions << 22 << -infinite << 0.0;
        QTest::newRow("far position") << positions << 22 << 1.1e7f << 100.0;
        QTest::newRow("nan matrix") << binds << 28 << nan << 0.0;
        QTest::newRow("nan in the last column") << binds << 19 << nan << 0.0;
        QTest::newRow("far matrix") << binds << 28 << -1.1e7f << 100.0;
        QTest::newRow("not so far position") << -1 << 22 << 0.9e7f << 100.0;
        QTest::newRow("nor in a smaller unit") << -1 << 22 << 1.1e7f << 1.0;
    }
    void refused()
    {
        QFETCH(int, accessor);
        QFETCH(int, component);
        QFETCH(float, number);
        QFETCH(double, unit);
        FigureSketch sketch;
        sketch.set(std::max(accessor, 0), size_t(component), number);
        QTemporaryDir folder;
        RyScene scene;
        RySceneFile::Options options;
        options.unit = unit;
        QString error;
        const QString path = sketch.write(folder.filePath(QStringLiteral("odd.gltf")));
        const bool opened = RySceneFile::open(&scene, path, options, &error);
        QCOMPARE(opened, accessor < 0);
        QVERIFY2(opened || error.contains(QStringLiteral("odd.gltf cannot be opened: accessors[%1]: ").arg(accessor)),
                 qPrintable(error));
    }
};

RY_TEST(UnusableNumbersTest)
#include "tst_unusable_numbers.moc"
