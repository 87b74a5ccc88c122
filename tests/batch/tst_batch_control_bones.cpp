#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QJsonArray>

namespace {

QStringList words(const QByteArray &line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '));
}

/// What a dump says of a value of the node of that name.
QByteArray lineOf(const QByteArray &dump, const QByteArray &node, const QByteArray &value)
{
    const int at = dump.indexOf(" \"" + node + "\" below");
    const int line = at < 0 ? -1 : dump.indexOf("\n  \"" + value + "\" ", at);
    return line < 0 ? QByteArray() : dump.mid(line + 1, dump.indexOf('\n', line + 1) - line - 1).trimmed();
}

} // namespace

/// Control bones by verbs and by scripts.
class BatchControlBonesTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;
    RyBatchRun::Result batch(const QByteArray &verbs) { return m_run.batch(words(verbs)); }

private slots:
    void posesABoneBeforeAndAfterSaving()
    {
        const QByteArray saved = m_run.file(QStringLiteral("controls.glb")).toUtf8();
        const auto made = m_run.batch(
            words("--pose lHand:xrot=7 --select lForearm --run RyJECreateControlBonesAction") +
            QStringList{QStringLiteral("--set"), QStringLiteral("JointEditorControlBoneModeCmb=Children of Selected")} +
            words("--pose cb_lHand:xrot=20 --save " + saved + " --report"));
        QVERIFY2(made.code == 0, made.err.constData());
        QVERIFY2(made.says("Control bones made: 16."), made.err.constData());
        const QJsonArray steps = made.json().value(QStringLiteral("undoSteps")).toArray();
        QVERIFY(steps.contains(QStringLiteral("Create Control Bone(s)...")));

        const auto again = m_run.run(words("--batch " + saved + " --pose cb_lHand:xrot=25 --dump"));
        QVERIFY2(again.code == 0, again.err.constData());
        QCOMPARE(lineOf(again.out, "cb_lHand", "xrot").split(' ').value(1), QByteArray("25"));
        QCOMPARE(lineOf(again.out, "lHand", "xrot").split(' ').value(1), QByteArray("7")); // its own share
        QVERIFY(lineOf(again.out, "lHand", "xrot").contains("\"cb_lHand\":\"xrot\""));
        QVERIFY(!again.out.contains("\"cb_lForearm\""));
    }

    void refusal()
    {
        const auto result = batch("--run RyJECreateControlBonesAction --report");
        QCOMPARE(result.code, 3);
        const QJsonArray boxes = result.json().value(QStringLiteral("boxes")).toArray();
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes.at(0).toObject().value(QStringLiteral("title")).toString(), QStringLiteral("Selection Error"));
    }

    void byScript()
    {
        const QByteArray program = "var figure = Scene.findNode('mannequin');\n"
                                   "figure.findBone('lHand').setValue('xrot', 7);\n"
                                   "Scene.setSelection([figure.findBone('lHand')]);\n"
                                   "print(Actions.run('RyJECreateControlBonesAction',\n"
                                   "                  {JointEditorPrefixLEdit: 'steer '}).ran);\n"
                                   "figure.findBone('steer lHand').setValue('xrot', 20);\n"
                                   "print(figure.findBone('lHand').getValue('xrot'));\n"
                                   "Actions.run('RyJECreateControlBonesAction', {JointEditorPrefixLEdit: 'steer '});\n"
                                   "print(figure.findBone('lHand').getLinks('xrot').length);\n";
        const auto result =
            m_run.batch({QStringLiteral("--script"), m_run.write(QStringLiteral("control.rsx"), program),
                         QStringLiteral("--report")});
        QVERIFY2(result.code == 0, result.err.constData());
        QStringList printed;
        for (const QJsonValue &message : result.json().value(QStringLiteral("messages")).toArray())
            printed.append(message.toString());
        const QString said =
            QStringLiteral("Control bones made: %1. Bones skipped, as they have or are control bones of "
                           "that prefix: %2.");
        QCOMPARE(printed.join('|'),
                 QStringList({said.arg(16).arg(0), "true", "27", said.arg(0).arg(16), "1"}).join('|'));
    }
};

RY_TEST(BatchControlBonesTest)

#include "tst_batch_control_bones.moc"
