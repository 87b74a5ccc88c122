#include "support/RyTest.h"

#include "FigureSketch.h"
#include "RyBatchRun.h"

/// The rig follows a morph in runs without a window, by the action and by a script.
class BatchRigToShapeTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // All of the strip goes half a metre to the side and 20 cm ahead.
        FigureSketch sketch;
        std::vector<float> deltas;
        for (int point = 0; point < 18; ++point)
            deltas.insert(deltas.end(), {0.5f, 0.0f, 0.2f});
        const int target = sketch.add<float>(deltas, 5126, "VEC3");
        sketch.tree["accessors"].back()["min"] = {0.5f, 0.0f, 0.2f};
        sketch.tree["accessors"].back()["max"] = {0.5f, 0.0f, 0.2f};
        nlohmann::json &mesh = sketch.tree["meshes"][0];
        mesh["primitives"][0]["targets"] = {{{"POSITION", target}}};
        mesh["weights"] = {0.0};
        mesh["extras"]["targetNames"] = {"aside"};
        m_file = sketch.write(m_run.file(QStringLiteral("sketch.gltf")));
        m_script = m_run.write(QStringLiteral("adjust.rsx"),
                               "var figure = Scene.getSkeletons()[0], high = Scene.find('high');\n"
                               "var adjuster = new RyShapeRiggingAdjuster();\n"
                               "print(adjuster.adjustRiggingToShape(figure), '[' + adjuster.getLastError() + ']');\n"
                               "print(high.getOrigin().x, high.getOrigin().z);\n");
    }

    void byTheAction()
    {
        const RyBatchRun::Result plain = run({"--property", figure() + ":aside=1", "--select", "high", "--dump"});
        QVERIFY2(plain.code == 0, plain.err.constData());
        const QStringList adjust{
            "--property", figure() + ":aside=1", "--select", "high", "--run", "RyMVCCageAdjustRigToShapeAction"};
        const RyBatchRun::Result adjusted = run(adjust + QStringList{"--dump"});
        QVERIFY2(adjusted.code == 0, adjusted.err.constData());
        QCOMPARE(valueOf(adjusted.out, "originX"), 50.0);
        QCOMPARE(valueOf(adjusted.out, "originY"), 100.0);
        QCOMPARE(valueOf(adjusted.out, "originZ"), 20.0);
        QCOMPARE(run(adjust + QStringList{"--undo", "--dump"}).out, plain.out);
    }

    void byAScript()
    {
        const RyBatchRun::Result adjusted = run({"--property", figure() + ":aside=0.5", "--script", m_script});
        QVERIFY2(adjusted.code == 0, adjusted.err.constData());
        QVERIFY2(adjusted.says("0 []") && adjusted.says("25 10"), adjusted.err.constData());
    }

    void refused()
    {
        const RyBatchRun::Result refused = run({"--select", "high", "--run", "RyMVCCageAdjustRigToShapeAction"});
        QVERIFY(refused.code != 0);
        QVERIFY2(refused.says("The figure has no shape that differs from its base."), refused.err.constData());
    }

private:
    RyBatchRun::Result run(const QStringList &verbs) const
    {
        return m_run.run(QStringList{QStringLiteral("--batch"), m_file} + verbs);
    }
    static QString figure() { return QStringLiteral("root"); }
    /// Of the node "high" in a dump.
    static double valueOf(const QByteArray &dump, const char *value)
    {
        const int node = dump.indexOf(" \"high\" below");
        const int line = dump.indexOf(QByteArray("\n  \"") + value + "\" ", node);
        return node < 0 || line < 0 ? -1e9 : dump.mid(line + 1, 60).trimmed().split(' ').value(1).toDouble();
    }

    RyBatchRun m_run;
    QString m_file, m_script;
};

RY_TEST(BatchRigToShapeTest)
#include "tst_batch_rig_to_shape.moc"
