#include "MergedScene.h"

#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

/// Any two characters in one file: nothing is lost of either.
class PairsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void bothOrders_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        for (const QString &first : characterNames()) {
            for (const QString &second : characterNames())
                QTest::newRow(qPrintable(first + QStringLiteral(" and ") + second)) << first << second;
        }
    }
    void bothOrders()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        if (ryModel(first).isEmpty() || ryModel(second).isEmpty())
            QSKIP("the character is not here");
        MergedScene merged({ryModel(first), ryModel(second)});
        const QString saved = m_folder.filePath(QStringLiteral("pair.glb"));
        QCOMPARE(merged.check(saved), QString());
        QVERIFY(merged.losses.isEmpty());
        QVERIFY2(merged.messages.isEmpty(), qPrintable(merged.messages.join(QLatin1Char('\n'))));
        QVERIFY(ryUndoStack()->isClean());
        std::map<std::string, size_t> sum = contentsOf(GltfEvaluator(ryModel(first).toStdString()));
        for (const auto &[kind, count] : contentsOf(GltfEvaluator(ryModel(second).toStdString())))
            sum[kind] += count;
        QCOMPARE(contentsOf(GltfEvaluator(saved.toStdString())), sum);
    }

private:
    QTemporaryDir m_folder;
};

RY_TEST(PairsTest)
#include "tst_pairs.moc"
