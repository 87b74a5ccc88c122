#include "support/RyTest.h"

#include "RyBatchRun.h"

/// Objects that scripts make of a plug-in's classes: the program must end well with them.
class BatchObjectsTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;

    static QStringList globalsOf(const RyBatchRun &run)
    {
        const auto result =
            run.batch({QStringLiteral("--script"),
                       run.write(QStringLiteral("names.rsx"),
                                 "var names = [];\n"
                                 "for (var name in this) { if (name.indexOf('Ry') == 0) names.push(name); }\n"
                                 "print('names: ' + names.join(' '));\n")});
        const QString line =
            QString::fromUtf8(result.err.mid(result.err.indexOf("names: ") + 7)).section(QLatin1Char('\n'), 0, 0);
        return result.code == 0 ? line.split(QLatin1Char(' '), Qt::SkipEmptyParts) : QStringList();
    }

    /// Those that scripts know because the plug-in is loaded.
    static QStringList pluginClasses()
    {
        RyBatchRun with, without;
        without.setPlugins(without.file(QStringLiteral("none")));
        QStringList classes = globalsOf(with);
        for (const QString &name : globalsOf(without))
            classes.removeAll(name);
        return classes;
    }

    void check(const QByteArray &program)
    {
        const auto result = m_run.batch({QStringLiteral("--script"), m_run.write(QStringLiteral("test.rsx"), program)});
        QVERIFY2(result.code == 0, (QByteArray::number(result.code) + ": " + result.err).constData());
        QVERIFY2(result.says("made all"), result.err.constData());
    }

private slots:
    void objectsOfOneClass_data()
    {
        QTest::addColumn<QString>("name");
        const QStringList classes = pluginClasses();
        QCOMPARE(classes.size(), 40);
        for (const QString &name : classes)
            QTest::newRow(qPrintable(name)) << name;
    }

    void objectsOfOneClass()
    {
        QFETCH(QString, name);
        const QByteArray type = name.toLatin1();
        check("new " + type +
              "();\ngc();\n"
              "var kept = new " +
              type + "(), again = new " + type +
              "();\n"
              "if (!kept || kept === again || kept.destroyed === undefined) throw new Error('made nothing');\n"
              "print('made all');");
    }

    void objectsOfAllClasses_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::newRow("kept") << QByteArray("kept.push(new this[name]());");
        QTest::newRow("thrown away") << QByteArray("new this[name](); gc();");
        QTest::newRow("made twice") << QByteArray("kept[name] = new this[name](); kept[name] = new this[name]();");
        QTest::newRow("known to each other")
            << QByteArray("var made = new this[name](); made.other = kept[kept.length - 1]; kept.push(made);");
    }

    void objectsOfAllClasses()
    {
        QFETCH(QByteArray, program);
        QByteArray names;
        for (const QString &name : pluginClasses())
            names += '\'' + name.toLatin1() + "', ";
        check("var kept = [];\nvar names = [" + names +
              "''];\n"
              "for (var i = 0; names[i] != ''; ++i) {\n    var name = names[i];\n    " +
              program +
              "\n}\n"
              "if (i < 40) throw new Error(i);\nprint('made all');");
    }

    /// Beside the program's own tool, which is active.
    void aToolOfTheScriptWhileTheSceneChanges()
    {
        check("var tool = new RyJointEditorTool();\nScene.setSelection(['head']);\n"
              "var result = Actions.run('RyJECreateBoneAction', {JointEditorCreateBoneNameLEdit: 'horn',\n"
              "    JointEditorCreateBoneLabelLEdit: 'Horn'});\n"
              "if (!result.ran) throw new Error(result.reason);\nprint('made all');");
    }
};

RY_TEST(BatchObjectsTest)
#include "tst_batch_objects.moc"
