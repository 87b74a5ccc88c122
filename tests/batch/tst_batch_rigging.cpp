#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QJsonArray>

#include <cmath>

namespace {

constexpr const char *donorForearm = "Donor_mannequin/hip/abdomen/chest/lCollar/lShldr/lForearm";

QStringList words(const QByteArray &line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '));
}

/// The script that prints where the forearm of the mannequin is.
const QByteArray printForearm = "var figure = Scene.findNode('mannequin');\n"
                                "print(figure.findBone('lForearm').getValue('originX').toFixed(3));\n";

} // namespace

/// Memorizing, donors and transfers by verbs and by scripts.
class BatchRiggingTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;
    RyBatchRun::Result batch(const QByteArray &verbs) { return m_run.batch(words(verbs)); }

private slots:
    void restoresAndMemorizes()
    {
        const QByteArray same = batch("--select lForearm --dump").out;
        const QByteArray moved = "--property lForearm:originX=60 --select lForearm ";
        QVERIFY(batch(moved + "--dump").out != same);
        for (const QByteArray action :
             {"RyJERestoreNodeRiggingPropertiesAction", "RyJERestoreFigureRiggingPropertiesAction"}) {
            const auto restored = batch(moved + "--run " + action + " --dump");
            QVERIFY2(restored.code == 0, restored.err.constData());
            QCOMPARE(restored.out, same);
        }
        const auto memorized = batch(moved + "--run RyJEMemorizeFigureRiggingPropertiesAction --property "
                                             "lForearm:originX=50 --run RyJERestoreFigureRiggingPropertiesAction "
                                             "--report");
        QVERIFY2(memorized.code == 0, memorized.err.constData());
        const QJsonArray steps = memorized.json().value(QStringLiteral("undoSteps")).toArray();
        QCOMPARE(steps.size(), 4);
        QCOMPARE(steps.at(1).toString(), QStringLiteral("Memorize Figure Rigging"));
        QCOMPARE(batch(moved + "--run RyJEMemorizeNodeRiggingPropertiesAction --property lForearm:originX=50 --run "
                               "RyJERestoreNodeRiggingPropertiesAction --undo --redo --dump")
                     .out.contains("\"originX\" 60 default 60 "),
                 true);
    }

    void transfersFromADonor()
    {
        const QByteArray transfer = QByteArray("--select lHand --run RyJECreateDonorFigureAction --property ") +
                                    donorForearm +
                                    ":originX=60 --select Donor_mannequin,mannequin --run "
                                    "RyJETransferWSRiggingAction ";
        const auto result = batch(transfer + "--save " + m_run.file(QStringLiteral("donor.glb")).toUtf8() + " --dump");
        QVERIFY2(result.code == 0, result.err.constData());
        QVERIFY2(result.says("mannequin: Bones placed as in Donor mannequin: 51. In Donor mannequin alone: 0."),
                 result.err.constData());
        QVERIFY(result.out.contains("\"originX\" 60 default 43.5 "));
        const auto again =
            m_run.run({QStringLiteral("--batch"), m_run.file(QStringLiteral("donor.glb")), QStringLiteral("--select"),
                       QStringLiteral("Donor_mannequin,mannequin"), QStringLiteral("--dump")});
        QVERIFY2(again.code == 0, again.err.constData());
        QCOMPARE(again.out, result.out);
        QCOMPARE(batch(transfer + "--undo --undo --undo --select lHand --dump").out,
                 batch("--select lHand --dump").out);
    }

    void refusals()
    {
        for (const QByteArray action : {"RyJETransferWSRiggingAction", "RyJECreateDonorFigureAction"}) {
            const auto result = batch("--run " + action + " --report");
            QCOMPARE(result.code, 3);
            const QJsonArray boxes = result.json().value(QStringLiteral("boxes")).toArray();
            QCOMPARE(boxes.size(), 1);
            QCOMPARE(boxes.at(0).toObject().value(QStringLiteral("title")).toString(),
                     QStringLiteral("Selection Error"));
        }
        QCOMPARE(batch("--run RyJERestoreNodeRiggingPropertiesAction").code, 3);
    }

    void byScript_data()
    {
        QTest::addColumn<bool>("modes");
        QTest::newRow("modes off") << false;
        QTest::newRow("modes on") << true;
    }
    void byScript()
    {
        QFETCH(bool, modes);
        QByteArray program;
        if (modes) {
            for (const char *mode : {"RyJETogglePropagateTranslationAction", "RyJEToggleAutoSnapEndPointsAction",
                                     "RyJEToggleAutoAlignNodeAction"})
                program += QByteArray("Actions.run('") + mode + "');\n";
        }
        program += "var figure = Scene.findNode('mannequin');\n"
                   "Scene.setSelection([figure]);\n"
                   "print(Actions.run('RyJECreateDonorFigureAction').ran);\n"
                   "var donor = Scene.findNode('Donor_mannequin');\n"
                   "donor.findBone('lForearm').setValue('originX', 60);\n"
                   "donor.findBone('hip').setValue('yrot', 30);\n"
                   "donor.setValue('xtran', 90);\n"
                   "Scene.setSelection([donor, figure.findBone('lHand')]);\n"
                   "print(Actions.run('RyJETransferWSRiggingAction').ran);\n" +
                   printForearm + "print(Actions.run('RyJERestoreFigureRiggingPropertiesAction').ran);\n" +
                   printForearm +
                   "Scene.setSelection([]);\n"
                   "print(Actions.run('RyJETransferWSRiggingAction').reason.substr(0, 22));\n";
        const auto result = m_run.batch(
            {QStringLiteral("--script"), m_run.write(QStringLiteral("rig.rsx"), program), QStringLiteral("--report")});
        QVERIFY2(result.code == 0, result.err.constData());
        QStringList printed;
        for (const QJsonValue &message : result.json().value(QStringLiteral("messages")).toArray())
            printed.append(message.toString());
        // 60 cm to the left and 1.5 in front of the hip's axis, turned by 30 degrees.
        const double turned = 60.0 * std::cos(M_PI / 6) - 1.5 * std::sin(M_PI / 6);
        QCOMPARE(printed.removeAll(QStringLiteral("mannequin: Bones placed as in Donor mannequin: 51. In Donor "
                                                  "mannequin alone: 0. Without a namesake there: 0.")),
                 1);
        QCOMPARE(printed.join('|'),
                 QStringLiteral("true|true|%1|true|43.500|Select a source figure").arg(turned, 0, 'f', 3));
    }
};

RY_TEST(BatchRiggingTest)

#include "tst_batch_rigging.moc"
