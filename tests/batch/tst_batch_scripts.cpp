#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QRegularExpression>
#include <QTemporaryDir>

/// Scripts in batch runs, and the examples of the documentation.
class BatchScriptsTest : public QObject
{
    Q_OBJECT

    RyBatchRun m_run;

    RyBatchRun::Result script(const QByteArray &program, const QStringList &more = {})
    {
        return m_run.batch(QStringList{QStringLiteral("--script"), m_run.write(QStringLiteral("test.rsx"), program)} +
                           more);
    }

private slots:
    void examplesDoWhatTheySay_data()
    {
        QTest::addColumn<QByteArray>("program");
        QFile document(QStringLiteral(RY_SOURCE_DIR "/docs/scripting.md"));
        QVERIFY(document.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(document.readAll());
        auto blocks =
            QRegularExpression(QStringLiteral("^```js\\n(.*?)^```$"),
                               QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption)
                .globalMatch(text);
        int number = 0;
        while (blocks.hasNext()) {
            const QRegularExpressionMatch block = blocks.next();
            const int line = text.left(block.capturedStart(1)).count(QLatin1Char('\n')) + 1;
            QTest::newRow(qPrintable(QStringLiteral("line %1").arg(line))) << block.captured(1).toUtf8();
            ++number;
        }
        QVERIFY2(number >= 7, "the examples of the documentation were not found");
    }

    void examplesDoWhatTheySay()
    {
        QFETCH(QByteArray, program);
        QStringList expected;
        auto comments = QRegularExpression(QStringLiteral("//->(.*)$"), QRegularExpression::MultilineOption)
                            .globalMatch(QString::fromUtf8(program));
        while (comments.hasNext())
            expected.append(comments.next().captured(1).trimmed());
        QVERIFY2(!expected.isEmpty(), "an example that shows nothing");
        const auto result = script(program, {QStringLiteral("--report")});
        QVERIFY2(result.code == 0, result.err.constData());
        QStringList printed;
        for (const QJsonValue &message : result.json().value(QStringLiteral("messages")).toArray())
            printed.append(message.toString());
        // The file's own messages come first.
        QCOMPARE(printed.mid(std::max(0, printed.size() - expected.size())), expected);
    }

    /// The tool is active, and takes what a script selects by an event that no loop delivers.
    void actionsKnowWhatTheScriptSelected()
    {
        const auto result =
            script("Scene.setSelection(['head']);\n"
                   "var result = Actions.run('RyJECreateBoneAction', {JointEditorCreateBoneNameLEdit: 'horn',\n"
                   "    JointEditorCreateBoneLabelLEdit: 'Horn'});\n"
                   "if (!result.ran)\n    throw new Error(result.reason);\n",
                   {QStringLiteral("--report")});
        QVERIFY2(result.code == 0, result.err.constData());
        QCOMPARE(result.json().value(QStringLiteral("selection")).toArray(),
                 QJsonArray{QStringLiteral("mannequin/hip/abdomen/chest/neck/head/horn")});
    }

    void errorsGiveFive()
    {
        const auto result = script("var a = 1;\n\nmissing();\n", {QStringLiteral("--report")});
        QCOMPARE(result.code, 5);
        QVERIFY2(result.says("test.rsx(3): "), result.err.constData());
        const auto syntax = script("var = 1;");
        QCOMPARE(syntax.code, 5);
        QVERIFY2(syntax.says("test.rsx(1): "), syntax.err.constData());
        // Caught errors are the script's own matter.
        QCOMPARE(script("try { Scene.find('nobody'); } catch (e) {}").code, 0);
    }

    void boxesOfActionsAreTheScripts()
    {
        const auto result = script("Scene.setSelection(['hip']);"
                                   "var r = Actions.run('RyJERenameNodeAction', {}, {'Rename Node': 'Cancel'});"
                                   "if (r.ran || r.refused || !r.cancelled || r.boxes[0].answered != 'Cancel') throw "
                                   "new Error(JSON.stringify(r));");
        QVERIFY2(result.code == 0, result.err.constData());
    }

    void formsTakeFieldsAndAnswers()
    {
        const QByteArray program =
            "var f = new RyScriptForm('Ask'); f.addText('word', 'Word:', 'none');\n"
            "f.accepting.connect(function() { if (f.value('word') == 'bad') f.setMessage('Not that word.'); });\n"
            "print(f.exec() ? 'took ' + f.value('word') : 'cancelled');";
        QVERIFY(script(program).says("took none"));
        QVERIFY(script(program, {QStringLiteral("--set"), QStringLiteral("word=hello")}).says("took hello"));
        QVERIFY(script(program, {QStringLiteral("--answer"), QStringLiteral("Ask=Cancel")}).says("cancelled"));
        const auto refused =
            script(program, {QStringLiteral("--set"), QStringLiteral("word=bad"), QStringLiteral("--report")});
        QCOMPARE(refused.code, 3);
        QVERIFY2(refused.says("Not that word.") && refused.says("cancelled"), refused.err.constData());
        const QJsonObject box = refused.json().value(QStringLiteral("boxes")).toArray().at(0).toObject();
        QCOMPARE(box.value(QStringLiteral("title")).toString(), QStringLiteral("Ask"));
        QCOMPARE(box.value(QStringLiteral("reason")).toString(), QStringLiteral("Not that word."));
        const auto wrong = script(program, {QStringLiteral("--set"), QStringLiteral("wrod=hello")});
        QCOMPARE(wrong.code, 2);
        QVERIFY2(wrong.says("word (text)"), wrong.err.constData());
        QCOMPARE(script("1;", {QStringLiteral("--set"), QStringLiteral("word=hello")}).code, 2);
    }

    void renamingByTheAction()
    {
        const auto renamed =
            m_run.batch({QStringLiteral("--select"), QStringLiteral("hip"), QStringLiteral("--run"),
                         QStringLiteral("RyJERenameNodeAction"), QStringLiteral("--set"), QStringLiteral("name=pelvis"),
                         QStringLiteral("--set"), QStringLiteral("label=The Pelvis"), QStringLiteral("--report")});
        QVERIFY2(renamed.code == 0, renamed.err.constData());
        QCOMPARE(renamed.json().value(QStringLiteral("undoSteps")).toArray(),
                 QJsonArray{QStringLiteral("Rename Node")});
        QCOMPARE(renamed.json().value(QStringLiteral("selection")).toArray(),
                 QJsonArray{QStringLiteral("mannequin/pelvis")});
        const auto taken =
            m_run.batch({QStringLiteral("--select"), QStringLiteral("hip"), QStringLiteral("--run"),
                         QStringLiteral("RyJERenameNodeAction"), QStringLiteral("--set"), QStringLiteral("name=head")});
        QCOMPARE(taken.code, 3);
        QVERIFY2(taken.says("\"head\" is taken"), taken.err.constData());
    }

    void bonesByTheirDialog()
    {
        const QStringList create{QStringLiteral("--select"), QStringLiteral("lHand"), QStringLiteral("--run"),
                                 QStringLiteral("RyJECreateBoneAction")};
        const auto made = m_run.batch(
            create + QStringList{QStringLiteral("--set"), QStringLiteral("JointEditorCreateBoneNameLEdit=lTip"),
                                 QStringLiteral("--set"), QStringLiteral("JointEditorCreateBoneLabelLEdit=Left Tip"),
                                 QStringLiteral("--report")});
        QVERIFY2(made.code == 0, made.err.constData());
        bool found = false;
        for (const QJsonValue &bone : made.json()
                                          .value(QStringLiteral("figures"))
                                          .toArray()
                                          .at(0)
                                          .toObject()
                                          .value(QStringLiteral("bones"))
                                          .toArray())
            found = found || (bone[QStringLiteral("name")] == QStringLiteral("lTip") &&
                              bone[QStringLiteral("parent")] == QStringLiteral("lHand"));
        QVERIFY(found);
        // Without a name it cannot be accepted.
        QCOMPARE(m_run.batch(create).code, 3);
    }

    void stepsComeBackWhole()
    {
        const auto result =
            script("var arm = Scene.find('lForearm'), before = Scene.dump(), thrown = '';\n"
                   "Undo.step('Bend', function() { arm.setValue('yrot', 30); });\n"
                   "var bent = Scene.dump();\n"
                   "try {\n"
                   "    Undo.step('Fails', function() {\n"
                   "        arm.setValue('yrot', 40); Scene.setSelection(['rHand']);\n"
                   "        if (!Actions.run('RyJEDeleteBoneAction').ran) throw new Error('not deleted');\n"
                   "        arm.setValue('yrot', 50); throw new Error('on purpose');\n"
                   "    });\n"
                   "} catch (error) { thrown = error.message; }\n"
                   "print(thrown, Scene.dump() === bent, Undo.captions());\n"
                   "Undo.undo();\n"
                   "print(Scene.dump() === before);\n");
        QVERIFY2(result.code == 0, result.err.constData());
        QVERIFY2(result.says("on purpose true Bend\n") && result.err.trimmed().endsWith("true"),
                 result.err.constData());
    }

    void pointsOfActionsCanBeGoneBackTo()
    {
        const auto result = script("var before = Scene.dump(); Scene.setSelection(['rHand']);\n"
                                   "var selected = Scene.dump(); Actions.run('RyJEDeleteBoneAction');\n"
                                   "print(RestorePoints.count(), Scene.dump() !== selected, RestorePoints.restore(0), "
                                   "Scene.dump() === selected);");
        QVERIFY2(result.code == 0, result.err.constData());
        QVERIFY2(result.says("1 true true true"), result.err.constData());
    }

    void whoAsksForeverIsStopped()
    {
        const auto result =
            script("var f = new RyScriptForm('Name It'); f.addText('name', 'Name:', '', 'name'); var tries = 0;\n"
                   "while (!f.exec()) { ++tries; }\nprint('went on');");
        QCOMPARE(result.code, 5);
        QVERIFY2(result.says("Name It") && result.says("again and again") && !result.says("went on"),
                 result.err.constData());
        const auto caught =
            script("for (;;) { try { var f = new RyScriptForm('Name It'); f.addText('name', 'Name:', '', 'name');\n"
                   "    if (f.exec()) break; throw new Error('no'); } catch (e) {} }");
        QCOMPARE(caught.code, 5);
    }

    void whatCannotBeReadSaysWhy()
    {
        const auto missing = m_run.batch({QStringLiteral("--script"), m_run.file(QStringLiteral("none.rsx"))});
        QCOMPARE(missing.code, 5);
        QVERIFY2(missing.says("none.rsx: the script cannot be read: there is no such file"), missing.err.constData());
        const auto folder = m_run.batch({QStringLiteral("--script"), m_run.file(QString())});
        QCOMPARE(folder.code, 5);
        QVERIFY2(folder.says("this is a folder"), folder.err.constData());
        const QString locked = m_run.write(QStringLiteral("locked.rsx"), "1;");
        QVERIFY(QFile::setPermissions(locked, QFileDevice::WriteOwner));
        if (QFileInfo(locked).isReadable())
            QSKIP("This user may read every file.");
        const auto forbidden = m_run.batch({QStringLiteral("--script"), locked});
        QCOMPARE(forbidden.code, 5);
        QVERIFY2(forbidden.says("ermission denied"), forbidden.err.constData());
    }

    void aBrokenLibraryIsNoSuccess()
    {
        QTemporaryDir home;
        const QString folder = home.path() + QStringLiteral("/scripts/support/Velmor/OstraToolkit");
        QVERIFY(QDir().mkpath(folder));
        RyBatchRun own;
        own.setHome(home.path());
        const QStringList rename{QStringLiteral("--select"), QStringLiteral("hip"), QStringLiteral("--run"),
                                 QStringLiteral("RyJERenameNodeAction"), QStringLiteral("--report")};
        const auto missing = own.batch(rename);
        QCOMPARE(missing.code, 3);
        QVERIFY2(missing.err.count("The script library ") == 1 &&
                     missing.says("ryRenameNode.rsx cannot be read: there is no such file"),
                 missing.err.constData());
        QFile broken(folder + QStringLiteral("/ryRenameNode.rsx"));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("\n\nmissing();");
        broken.close();
        const auto failed = own.batch(rename);
        QCOMPARE(failed.code, 3);
        QVERIFY2(!failed.says("The script library ") && failed.says("ryRenameNode.rsx(3): "), failed.err.constData());
        QCOMPARE(failed.firstRun().value(QStringLiteral("ran")).toBool(), false);
    }
};

RY_TEST(BatchScriptsTest)
#include "tst_batch_scripts.moc"
