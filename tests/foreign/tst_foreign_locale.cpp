#include "foreign/ForeignStage.h"
#include "support/RyTest.h"

#include <QFileInfo>
#include <QProcess>

#include <clocale>
#include <cstdio>

/// People whose numbers have a comma read files whose numbers have a point. The locale is made here, since machines
/// have none that nobody asked for.
class ForeignLocaleTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QByteArray source =
            "comment_char %\nescape_char /\nLC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\n"
            "grouping 3;3\nEND LC_NUMERIC\n";
        const QByteArray characters = "<code_set_name> ANSI_X3.4-1968\n<comment_char> %\n<escape_char> /\nCHARMAP\n"
                                      "<U0000>..<U007F> /x00 any\nEND CHARMAP\n";
        const QString place = m_stage.path(QStringLiteral("comma"));
        // It says that the other categories are missing, which count for nothing here, and ends with 1 for that.
        QProcess::execute(QStringLiteral("localedef"),
                          {QStringLiteral("--quiet"), QStringLiteral("--force"), QStringLiteral("--no-archive"),
                           QStringLiteral("-f"), m_stage.write(QStringLiteral("characters"), characters),
                           QStringLiteral("-i"), m_stage.write(QStringLiteral("numbers"), source), place});
        QVERIFY(QFileInfo::exists(place + QStringLiteral("/LC_NUMERIC")));
        for (const char *name : {"LOCPATH", "LC_ALL", "LC_NUMERIC"})
            m_before.emplace_back(name, qgetenv(name));
        qputenv("LOCPATH", QFileInfo(place).absolutePath().toLocal8Bit());
        qputenv("LC_NUMERIC", "comma");
        qunsetenv("LC_ALL");
        // A process that takes the user's locale has it.
        QVERIFY(std::setlocale(LC_NUMERIC, ""));
        char number[8];
        std::snprintf(number, sizeof number, "%.1f", 1.5);
        std::setlocale(LC_NUMERIC, "C");
        QCOMPARE(QByteArray(number), QByteArray("1,5"));
    }

    void cleanupTestCase()
    {
        for (const auto &[name, value] : m_before)
            value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }

    void theReaderHasAPoint()
    {
        const QString file = m_stage.write(QStringLiteral("locale.fbx"), "locale " + ForeignStage::sample().toUtf8());
        const ForeignStage::Run run = ForeignStage::runProgram(
            ForeignStage::readerPath(), {file, m_stage.path(QStringLiteral("out.glb")), QStringLiteral("0")});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, QByteArray("note 1.5\n"));
    }

private:
    const ForeignStage m_stage;
    std::vector<std::pair<const char *, QByteArray>> m_before; // variables, null where there was none
};

RY_TEST(ForeignLocaleTest)
#include "tst_foreign_locale.moc"
