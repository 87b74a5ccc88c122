#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QJsonArray>

namespace {

/// The text of a value in a dump, of the node of that name.
QByteArray valueOf(const QByteArray &dump, const char *node, const char *value)
{
    const int at = dump.indexOf(QByteArray(" \"") + node + "\" below");
    const int line = at < 0 ? -1 : dump.indexOf(QByteArray("\n  \"") + value + "\" ", at);
    return line < 0 ? QByteArray()
                    : dump.mid(line + 1, dump.indexOf('\n', line + 1) - line - 1).trimmed().split(' ').value(1);
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

/// `--run`, `--set` and `--answer`.
class BatchActionsTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;
    RyBatchRun m_dialogs;
    RyBatchRun::Result batch(const char *verbs) { return m_run.batch(words(verbs)); }
    RyBatchRun::Result dialogs(const QStringList &verbs) { return m_dialogs.batch(verbs); }

private slots:
    void initTestCase() { m_dialogs.setPlugins(QStringLiteral(RY_BINARY_DIR "/testplugins_batch")); }

    void actionsChangeTheScene()
    {
        const QByteArray before = batch("--dump").out;
        const auto order = batch("--select lForearm --run RyJERotationOrderZYXAction --dump");
        QVERIFY2(order.code == 0, order.err.constData());
        QVERIFY(before.contains("\"lForearm\" below"));
        const auto orderOf = [](const QByteArray &dump) {
            const int at = dump.indexOf("\"lForearm\" below");
            const QByteArray line = dump.mid(at, dump.indexOf('\n', at) - at);
            return line.mid(line.indexOf("order ") + 6, 3);
        };
        QVERIFY(orderOf(before) != "ZYX");
        QCOMPARE(orderOf(order.out), QByteArray("ZYX"));
        QCOMPARE(batch("--select lForearm --run RyJERotationOrderZYXAction --undo --dump").out,
                 batch("--select lForearm --dump").out);

        // The end point of the upper arm goes to the origin of its child.
        const auto snapped = batch("--property lShldr:endY=0 --select lShldr --run RyJESnapEndPointAction --dump");
        QVERIFY2(snapped.code == 0, snapped.err.constData());
        QVERIFY(!valueOf(before, "lForearm", "originY").isEmpty());
        QCOMPARE(valueOf(snapped.out, "lShldr", "endY").toDouble(), valueOf(before, "lForearm", "originY").toDouble());
    }

    void nodesArePickedByName()
    {
        const QStringList reparent =
            words("--select lForearm --run RyJEReparentBoneAction --set NodeDlgTree=chest --answer") +
            QStringList{QStringLiteral("Reparenting Warning=Ok"), QStringLiteral("--report")};
        const auto moved = m_run.batch(reparent);
        QVERIFY2(moved.code == 0, moved.err.constData());
        QCOMPARE(moved.json().value(QStringLiteral("selection")).toArray(),
                 QJsonArray{QStringLiteral("mannequin/hip/abdomen/chest/lForearm")});
        QCOMPARE(moved.json().value(QStringLiteral("boxes")).toArray().size(), 2);
    }

    void everyRunIsInTheReport()
    {
        const auto result =
            batch("--select lForearm --run RyJERotationOrderZYXAction --run RyJEAlignNodeAction --report");
        QVERIFY2(result.code == 0, result.err.constData());
        const QJsonArray runs = result.json().value(QStringLiteral("runs")).toArray();
        QCOMPARE(runs.size(), 2);
        QCOMPARE(runs.at(1).toObject().value(QStringLiteral("action")).toString(),
                 QStringLiteral("RyJEAlignNodeAction"));
        QCOMPARE(runs.at(1).toObject().value(QStringLiteral("ran")).toBool(), true);
        QCOMPARE(result.json().value(QStringLiteral("undoSteps")).toArray().size(), 2);
        QVERIFY(result.json().value(QStringLiteral("boxes")).toArray().isEmpty());
    }

    void disabledActionsGiveThree()
    {
        // Nothing is selected.
        const auto result = batch("--run RyJEAlignNodeAction --report");
        QCOMPARE(result.code, 3);
        QVERIFY2(result.says("--run RyJEAlignNodeAction: "), result.err.constData());
        const QJsonObject run = result.firstRun();
        QCOMPARE(run.value(QStringLiteral("refused")).toBool(), true);
        QVERIFY(!run.value(QStringLiteral("reason")).toString().isEmpty());
        QCOMPARE(dialogs(words("--run RyTestDisabledAction")).code, 3);
    }

    void fieldsThatNothingUsedDoNotHideTheRun()
    {
        const auto result = batch("--select lForearm --run RyJERotationOrderZYXAction --set A=1 --report");
        QCOMPARE(result.code, 2);
        QVERIFY2(result.says("It ran, but: No dialog opened that could use A."), result.err.constData());
        QCOMPARE(result.firstRun().value(QStringLiteral("ran")).toBool(), true);
        QCOMPARE(result.json().value(QStringLiteral("undoSteps")).toArray().size(), 1);
    }

    void unknownActionsGiveTwo()
    {
        const auto result = batch("--run RyJEAlignNodesAction");
        QCOMPARE(result.code, 2);
        QVERIFY2(result.says("RyJEAlignNodesAction") && result.says("RyJEAlignNodeAction"), result.err.constData());
    }

    void dialogsAreFilled()
    {
        const QByteArray before = m_run.batch(words("--dump")).out;
        const double height = valueOf(before, "hip", "originY").toDouble();
        const auto raised =
            dialogs(words("--select hip --run RyTestRaiseAction --set HeightSpn=2 --set UnitCmb=Metres --dump"));
        QVERIFY2(raised.code == 0, raised.err.constData());
        QVERIFY(std::abs(valueOf(raised.out, "hip", "originY").toDouble() - height - 200.0) < 1e-3);
        // What was printed tells of the dialog, and of nothing else.
        QVERIFY2(raised.says("Raise Node [") && !raised.says("plugin does not support"), raised.err.constData());
        const auto byItself = dialogs(words("--select hip --run RyTestRaiseAction --dump"));
        QCOMPARE(byItself.code, 0);
        QCOMPARE(valueOf(byItself.out, "hip", "originY").toDouble(), height);
    }

    void fieldsThatDoNotFitGiveTwo_data()
    {
        QTest::addColumn<QString>("set");
        QTest::addColumn<QByteArray>("says");
        QTest::newRow("no such widget") << QStringLiteral("HightSpn=2")
                                        << QByteArray("HeightSpn (0 to 99), UnitCmb (Centimetres | Metres)");
        QTest::newRow("no such item") << QStringLiteral("UnitCmb=Feet") << QByteArray("Centimetres, Metres");
        QTest::newRow("no number") << QStringLiteral("HeightSpn=two") << QByteArray("\"two\"");
        QTest::newRow("out of range") << QStringLiteral("HeightSpn=200") << QByteArray("0 to 99");
        QTest::newRow("another dialog") << QStringLiteral("OtherDlg/HeightSpn=2") << QByteArray("Raise Node");
    }

    void fieldsThatDoNotFitGiveTwo()
    {
        QFETCH(QString, set);
        QFETCH(QByteArray, says);
        const QString out = m_dialogs.file(QStringLiteral("never.glb"));
        const auto result =
            dialogs({QStringLiteral("--select"), QStringLiteral("hip"), QStringLiteral("--run"),
                     QStringLiteral("RyTestRaiseAction"), QStringLiteral("--set"), set, QStringLiteral("--save"), out});
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(says), result.err.constData());
        QVERIFY(!QFile::exists(out));
    }

    void boxesAreAnsweredAndReported()
    {
        const QStringList raise = words("--select hip --run RyTestRaiseAction --set HeightSpn=60");
        const auto refused = dialogs(raise + words("--report"));
        QCOMPARE(refused.code, 3);
        QVERIFY2(refused.says("That High?") && refused.says("Really?"), refused.err.constData());
        const QJsonArray boxes = refused.json().value(QStringLiteral("boxes")).toArray();
        QCOMPARE(boxes.size(), 4);
        QCOMPARE(boxes.at(0).toObject().value(QStringLiteral("kind")).toString(), QStringLiteral("dialog"));
        const QJsonObject box = boxes.at(1).toObject();
        QCOMPARE(box.value(QStringLiteral("title")).toString(), QStringLiteral("That High?"));
        QCOMPARE(box.value(QStringLiteral("answered")).toString(), QStringLiteral("No"));
        QCOMPARE(box.value(QStringLiteral("default")).toString(), QStringLiteral("No"));
        QCOMPARE(box.value(QStringLiteral("parent")).toString(), QStringLiteral("RaiseDlg"));
        QCOMPARE(box.value(QStringLiteral("during")).toString(), QStringLiteral("RyTestRaiseAction"));

        const auto done = dialogs(raise + QStringList{QStringLiteral("--answer"), QStringLiteral("That High?=Yes"),
                                                      QStringLiteral("--report")});
        QVERIFY2(done.code == 0, done.err.constData());
        QCOMPARE(done.json().value(QStringLiteral("undoSteps")).toArray(), QJsonArray{QStringLiteral("Raise Node")});
        const auto wrong =
            dialogs(raise + QStringList{QStringLiteral("--answer"), QStringLiteral("That High?=Perhaps")});
        QCOMPARE(wrong.code, 2);
        QVERIFY2(wrong.says("Yes, No"), wrong.err.constData());
        const auto unused = dialogs(words("--select hip --run RyTestRaiseAction --answer Other=Yes"));
        QCOMPARE(unused.code, 0);
        QVERIFY2(unused.says("\"Other\""), unused.err.constData());
        const auto cancelled =
            dialogs(raise + QStringList{QStringLiteral("--answer"), QStringLiteral("Raise Node=Cancel"),
                                        QStringLiteral("--report")});
        QCOMPARE(cancelled.code, 0);
        QVERIFY2(cancelled.says("--run RyTestRaiseAction: cancelled. \"Raise Node\""), cancelled.err.constData());
        const QJsonObject run = cancelled.firstRun();
        QCOMPARE(run.value(QStringLiteral("ran")).toBool(), false);
        QCOMPARE(run.value(QStringLiteral("refused")).toBool(), false);
        QCOMPARE(run.value(QStringLiteral("cancelled")).toBool(), true);
        const QJsonArray opened = run.value(QStringLiteral("boxes")).toArray();
        QCOMPARE(opened.at(0).toObject().value(QStringLiteral("answered")).toString(), QStringLiteral("Cancel"));
        QVERIFY(cancelled.json().value(QStringLiteral("undoSteps")).toArray().isEmpty());
    }

    void refusalsStopTheRun()
    {
        const QString out = m_dialogs.file(QStringLiteral("never.glb"));
        const auto result = dialogs({QStringLiteral("--run"), QStringLiteral("RyTestRaiseAction"),
                                     QStringLiteral("--save"), out, QStringLiteral("--report")});
        QCOMPARE(result.code, 3);
        QVERIFY2(result.says("A node must be selected."), result.err.constData());
        QVERIFY(!QFile::exists(out));
        const QJsonObject box = result.json().value(QStringLiteral("boxes")).toArray().at(0).toObject();
        QCOMPARE(box.value(QStringLiteral("title")).toString(), QStringLiteral("Selection Error"));
        QCOMPARE(box.value(QStringLiteral("icon")).toString(), QStringLiteral("warning"));
    }

    void whoAsksForeverIsLeft()
    {
        const auto result = dialogs(words("--run RyTestInsistAction"));
        QVERIFY2(result.says("It insists: yes is the only answer."), result.err.constData());
        QCOMPARE(result.code, 3);
        QVERIFY2(result.says("Yes?"), result.err.constData());
    }

    void optionsBelongToAVerb_data()
    {
        QTest::addColumn<QString>("verbs");
        QTest::addColumn<QByteArray>("says");
        QTest::newRow("set alone") << QStringLiteral("--set A=1") << QByteArray("--set belongs after");
        QTest::newRow("set after another verb")
            << QStringLiteral("--select hip --set A=1") << QByteArray("--set belongs after");
        QTest::newRow("answer alone") << QStringLiteral("--answer A=Yes") << QByteArray("--answer belongs after");
        QTest::newRow("set without value")
            << QStringLiteral("--run RyJEAlignNodeAction --set A") << QByteArray("OBJECTNAME=VALUE");
        QTest::newRow("answer without button")
            << QStringLiteral("--run RyJEAlignNodeAction --answer A") << QByteArray("TITLE=BUTTON");
        QTest::newRow("run without class") << QStringLiteral("--run") << QByteArray("--run needs a value");
        QTest::newRow("set that nothing uses")
            << QStringLiteral("--select hip --run RyJEAlignNodeAction --set A=1") << QByteArray("could use A");
    }

    void optionsBelongToAVerb()
    {
        QFETCH(QString, verbs);
        QFETCH(QByteArray, says);
        const auto result = m_run.batch(verbs.split(QLatin1Char(' ')));
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(says), result.err.constData());
    }
};

RY_TEST(BatchActionsTest)
#include "tst_batch_actions.moc"
