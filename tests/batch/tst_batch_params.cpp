#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QJsonArray>

/// What the pane does with joint parameters, without a window.
class BatchParamsTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;

    /// What the program prints on the parametric figure, with `arm`, `joint`, `bend`, `scale` and `near` at hand.
    QStringList printed(const QByteArray &program)
    {
        const QByteArray before = "var arm = Scene.find('lForearm');\n"
                                  "var joint = arm.getSkeleton().getLegacyBinding().findJoint(arm);\n"
                                  "var bend = joint.findParam('jointy'), scale = joint.findParam('lShldr_smoox');\n"
                                  "function near(a, b) { return Math.abs(a - b) < 1e-3; }\n";
        const auto result = m_run.run(
            {QStringLiteral("--batch"), QStringLiteral(RY_SOURCE_DIR "/resources/samples/parametric.glb"),
             QStringLiteral("--script"), m_run.write("test.rsx", before + program), QStringLiteral("--report")});
        if (result.code != 0)
            return {QString::fromLocal8Bit(result.err)};
        QStringList lines;
        for (const QJsonValue &message : result.json().value(QStringLiteral("messages")).toArray())
            lines.append(message.toString());
        return lines;
    }

private slots:
    void theToolTakesAParameter()
    {
        QCOMPARE(printed("Scene.setSelection([arm]);\n"
                         "var tool = Tools.activate('RyJointEditorTool');\n"
                         "print(Tools.names(), tool === Tools.getActive(), tool === Tools.find('RyJointEditorTool'));\n"
                         "print(tool.currentNode === arm, tool.currentParam);\n"
                         "tool.setParam(bend);\n"
                         "print(tool.currentParam === bend);\n"
                         "Scene.setSelection(['rForearm']);\n"
                         "print(tool.currentParam.getName(), tool.currentParam === bend);\n"
                         "tool.currentParam = bend;\n"
                         "print(tool.currentParam);\n"
                         "try { Tools.find('Hammer'); } catch (error) { print(error.message); }\n"),
                 QStringList({"RyJointEditorTool true true", "true null", "true", "jointy false", "null",
                              "There is no tool called \"Hammer\". There are: RyJointEditorTool."}));
    }

    void matricesAreReset()
    {
        QCOMPARE(printed("var before = Scene.dump();\n"
                         "Undo.step('Reset', function () {\n"
                         "    bend.setValue('dynamic_xtran', 500, true);\n"
                         "    bend.resetMatrices();\n"
                         "    bend.setFlag('matrices', true, true);\n"
                         "});\n"
                         "var mesh = arm.getSkeleton().getMesh();\n"
                         "var dynamic = bend.getDynamicMatrix(), fixed = bend.getStaticMatrix();\n"
                         "print(near(fixed[0] / dynamic[0], 1.5), near(fixed[12], dynamic[12]), dynamic[12] < 100);\n"
                         "print(bend.getPartner().getDynamicMatrix().join() === dynamic.join());\n"
                         "print(bend.getFlag('matrices'), bend.getPartner().getFlag('matrices'));\n"
                         "Undo.undo();\n"
                         "print(Scene.dump() === before, bend.getFlag('matrices'));\n"
                         "scale.resetMatrices(false);\n"
                         "print(scale.getPartner().getStaticMatrix().join() === scale.getStaticMatrix().join());\n"),
                 QStringList({"true true true", "true", "true true", "true false", "false"}));
    }

    void anglesWithPushing()
    {
        QCOMPARE(printed("bend.setAngles(100, 40, -30, -80);\n"
                         "bend.setAngle(1, -50);\n"
                         "print(bend.getAngles().map(Math.round));\n"
                         "print(bend.getPartner().getAngles().join() === bend.getAngles().join());\n"
                         // The tool follows the current parameter as it does while it is typed.
                         "Scene.setSelection([arm]);\n"
                         "var tool = Tools.activate('RyJointEditorTool');\n"
                         "tool.setParam(bend);\n"
                         "bend.setValue('staticA', -70, true);\n"
                         "print(bend.getAngles().map(Math.round));\n"
                         "print(bend.getPartner().getAngles().join() === bend.getAngles().join());\n"),
                 QStringList({"100,-50,-50,-80", "true", "-70,-70,-70,-80", "true"}));
    }
};

RY_TEST(BatchParamsTest)

#include "tst_batch_params.moc"
