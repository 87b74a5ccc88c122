#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <algorithm>

namespace {

const QStringList switches = {QStringLiteral("RyJETogglePropagateTranslationAction"),
                              QStringLiteral("RyJEToggleAutoAlignNodeAction"),
                              QStringLiteral("RyJEToggleAutoSnapEndPointsAction")};

/// The current value of a property of a node, by the node's line and those below it.
QByteArray valueOf(const QByteArray &dump, const char *node, const char *property)
{
    const QByteArray name = QByteArray("\n  \"") + property + "\" ";
    const int at = dump.indexOf(QByteArray("\"") + node + "\" below");
    const int value = dump.indexOf(name, at) + name.size();
    return at < 0 ? QByteArray() : dump.mid(value, dump.indexOf(' ', value) - value);
}

} // namespace

/// Selection and switches of the joint editor before an edit, in any order, without an event loop.
class SwitchOrdersTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;

    /// The verbs of each order in which the selection and the switches can come, after another bone was selected.
    static std::vector<QStringList> orders()
    {
        std::vector<int> order = {0, 1, 2, 3};
        std::vector<QStringList> all;
        do {
            QStringList verbs{QStringLiteral("--select"), QStringLiteral("rHand")};
            for (const int step : order) {
                if (step == 0)
                    verbs += {QStringLiteral("--select"), QStringLiteral("lForearm")};
                else
                    verbs += {QStringLiteral("--run"), switches.at(step - 1)};
            }
            all.push_back(verbs);
        } while (std::next_permutation(order.begin(), order.end()));
        return all;
    }

private slots:
    void verbs_data()
    {
        QTest::addColumn<QStringList>("edit");
        QTest::newRow("property") << QStringList{QStringLiteral("--property"), QStringLiteral("lForearm:originY=130")};
        QTest::newRow("property and pose")
            << QStringList{QStringLiteral("--pose"),     QStringLiteral("lForearm:yrot=25"),
                           QStringLiteral("--property"), QStringLiteral("lForearm:originY=130"),
                           QStringLiteral("--property"), QStringLiteral("lForearm:originZ=7")};
    }

    void verbs()
    {
        QFETCH(QStringList, edit);
        const QStringList dump{QStringLiteral("--dump")};
        const auto plain =
            m_run.batch(QStringList{QStringLiteral("--select"), QStringLiteral("lForearm")} + edit + dump);
        QVERIFY2(plain.code == 0, plain.err.constData());
        QByteArray first;
        for (const QStringList &order : orders()) {
            const auto result = m_run.batch(order + edit + dump);
            QVERIFY2(result.code == 0, result.err.constData());
            if (first.isEmpty())
                first = result.out;
            QVERIFY2(result.out == first, qPrintable(order.join(QLatin1Char(' '))));
        }
        // Each of the switches had its part in it.
        QVERIFY(valueOf(first, "lHand", "originY") != valueOf(plain.out, "lHand", "originY"));
        QVERIFY(valueOf(first, "lShldr", "endY") != valueOf(plain.out, "lShldr", "endY"));
        QVERIFY(valueOf(first, "lShldr", "orientZ") != valueOf(plain.out, "lShldr", "orientZ"));
        // The bone that was selected when the switches were thrown has none.
        for (const char *property : {"originX", "endX", "endY", "orientX"})
            QCOMPARE(valueOf(first, "rHand", property), valueOf(plain.out, "rHand", property));
    }

    void stepsOfScripts_data()
    {
        QTest::addColumn<QByteArray>("select");
        QTest::newRow("set") << QByteArray("Scene.setSelection(['lForearm']);");
        QTest::newRow("one by one") << QByteArray(
            "Scene.selectAllNodes(false); Scene.find('rFoot').select(true); arm.select(true);");
        QTest::newRow("added") << QByteArray("arm.select(true);");
        QTest::newRow("within a function that a program runs") << QByteArray("(function() { arm.select(true); })();");
    }

    void stepsOfScripts()
    {
        QFETCH(QByteArray, select);
        const QByteArray program =
            "var arm = Scene.find('lForearm'), hand = Scene.find('lHand'), upper = Scene.find('lShldr');\n"
            "var switches = ['" +
            switches.join(QStringLiteral("', '")).toUtf8() +
            "'];\n"
            "function throwSwitch(name) { var r = Actions.run(name); if (!r.ran) throw new Error(r.reason); }\n"
            "function orders(list) {\n"
            "    if (list.length < 2) return [list];\n"
            "    var all = [];\n"
            "    for (var i = 0; i < list.length; ++i) {\n"
            "        var rest = orders(list.slice(0, i).concat(list.slice(i + 1)));\n"
            "        for (var k = 0; k < rest.length; ++k) all.push([list[i]].concat(rest[k]));\n"
            "    }\n"
            "    return all;\n"
            "}\n"
            "function text(v) { return [v.x, v.y, v.z].join(' '); }\n"
            "var seen = {}, count = 0, before = text(hand.getOrigin()) + '; ' + text(upper.getEndPoint());\n"
            "var all = orders([-1, 0, 1, 2]);\n"
            "for (var i = 0; i < all.length; ++i) {\n"
            "    Scene.setSelection(['rHand']);\n"
            "    for (var k = 0; k < 4; ++k) {\n"
            "        if (all[i][k] >= 0) throwSwitch(switches[all[i][k]]);\n"
            "        else {" +
            select +
            "}\n"
            "    }\n"
            "    var o = arm.getOrigin();\n"
            "    Undo.step('Edit', function() { arm.setOrigin({x: o.x + 1, y: o.y - 7, z: o.z + 3}); });\n"
            "    var now = text(hand.getOrigin()) + '; ' + text(upper.getEndPoint());\n"
            "    if (!seen[now]) { seen[now] = true; ++count; }\n"
            "    Undo.undo();\n"
            "    if (text(hand.getOrigin()) + '; ' + text(upper.getEndPoint()) != before) print('not undone');\n"
            "    for (var s = 0; s < 3; ++s) throwSwitch(switches[s]);\n"
            "}\n"
            "print('orders', all.length, 'results', count, 'plain', !!seen[before]);\n";
        const auto result =
            m_run.batch({QStringLiteral("--script"), m_run.write(QStringLiteral("orders.rsx"), program)});
        QVERIFY2(result.code == 0, result.err.constData());
        QVERIFY2(result.says("orders 24 results 1 plain false"), result.err.constData());
        QVERIFY2(!result.says("not undone"), result.err.constData());
    }
};

RY_TEST(SwitchOrdersTest)
#include "tst_switch_orders.moc"
