#include "rycore/io/obj/RyMtlFile.h"
#include "support/RyTest.h"

/// Material libraries in all their spellings.
class RyMtlFileTest : public QObject
{
    Q_OBJECT

private slots:
    void spellings()
    {
        const RyMtlFile file("Kd 1 0 0\n"
                             "newmtl  two words \r\n\tKd\t0.5  0.25 2 # more than all of it\n"
                             "newmtl grey\nKd 0.5\nd -halo 0.25\n"
                             "newmtl spectral\nKd spectral file.rfl 1\nd factor\n"
                             "newmtl m\xe4t\nTr 0.25\nmap_Kd a.png\nmap_Kd b.png");
        QCOMPARE(file.materials.size(), size_t(4));
        QCOMPARE(file.materials[0].name, QStringLiteral("two words"));
        QCOMPARE(file.materials[0].diffuse, (std::array<float, 3>{0.5f, 0.25f, 1.0f}));
        QCOMPARE(file.materials[0].opacity, 1.0f);
        QCOMPARE(file.materials[1].diffuse, (std::array<float, 3>{0.5f, 0.5f, 0.5f}));
        QCOMPARE(file.materials[1].opacity, 0.25f);
        QCOMPARE(file.materials[2].diffuse, (std::array<float, 3>{1, 1, 1}));
        QCOMPARE(file.materials[2].opacity, 1.0f);
        QCOMPARE(file.materials[3].name, QString::fromUtf8("m\xc3\xa4t")); // Latin-1 where it is no UTF-8
        QCOMPARE(file.materials[3].opacity, 0.75f);
        QCOMPARE(file.materials[3].picture, QStringLiteral("b.png"));
    }

    /// Some programs write a Tr that is the wrong way round beside a right d.
    void opacityHasPrecedence()
    {
        for (const char *text : {"newmtl a\nd 0.75\nTr 0.75\n", "newmtl a\nTr 0.75\nd 0.75\n"})
            QCOMPARE(RyMtlFile(text).materials.at(0).opacity, 0.75f);
        QCOMPARE(RyMtlFile("newmtl a\nd 0.75\nnewmtl b\nTr 0.25\n").materials.at(1).opacity, 0.75f);
        QCOMPARE(RyMtlFile("newmtl a\nd x\nTr 0.25\n").materials.at(0).opacity, 0.75f);
    }

    void pictures_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << QByteArray("skin.png") << QStringLiteral("skin.png");
        QTest::newRow("blanks") << QByteArray("  my skin.png \r") << QStringLiteral("my skin.png");
        QTest::newRow("options") << QByteArray("-blendu on -mm 0 1 -clamp on the skin.png")
                                 << QStringLiteral("the skin.png");
        QTest::newRow("up to three numbers")
            << QByteArray("-o 0.5 -s 1 2 3 -t 1 2 4 5 skins.png") << QStringLiteral("5 skins.png");
        QTest::newRow("nothing") << QByteArray("") << QString();
        QTest::newRow("only options") << QByteArray("-mm 0 1") << QString();
        QTest::newRow("a name like an option") << QByteArray("-skin.png") << QStringLiteral("-skin.png");
    }
    void pictures()
    {
        QFETCH(QByteArray, line);
        const RyMtlFile file("newmtl a\nmap_Kd " + line + "\n");
        QTEST(file.materials.at(0).picture, "name");
    }

    /// A line as long as a file takes no longer than its words.
    void longLine()
    {
        QByteArray line = "newmtl a\nmap_Kd";
        for (int i = 0; i < 200000; ++i)
            line += " -cc on -o 1";
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(RyMtlFile(line + " end.png").materials.at(0).picture, QStringLiteral("end.png"));
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }
};

RY_TEST(RyMtlFileTest)
#include "tst_mtl_file.moc"
