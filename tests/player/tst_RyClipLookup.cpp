#include "ToyClip.h"

#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipLookup.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

/// Clips by what they move and by what a person writes.
class RyClipLookupTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        for (int i = 0; i < 2; ++i) {
            m_figures[i] = new RySkeleton;
            m_figures[i]->setName(i == 0 ? QStringLiteral("fox") : QStringLiteral("man"));
            scene().addNode(m_figures[i]);
        }
        RyNode *fox = m_figures[0], *man = m_figures[1];
        auto first = std::make_shared<ToyOrigin>(), second = std::make_shared<ToyOrigin>();
        const auto make = [](const char *name, std::vector<RyNode *> nodes) {
            return std::make_shared<ToyClip>(QString::fromLatin1(name), 0.0, 1.0, std::move(nodes));
        };
        first->given = {make("walk", {fox}), make("walk", {fox}), make("1", {fox}), make("to/and fro", {man})};
        second->given = {make("fight", {man, fox}), make("gone", {})};
        scene().addOrigin(first);
        scene().addOrigin(second);
    }
    void cleanup()
    {
        scene().clear();
        ryUndoStack()->clearAll();
    }

    void ofTheScene()
    {
        QCOMPARE(names(scene().getClips()), QStringLiteral("walk walk 1 to/and fro fight"));
        QCOMPARE(names(RyClipLookup::clipsOf(scene(), *m_figures[0])), QStringLiteral("walk walk 1 fight"));
        QCOMPARE(names(RyClipLookup::clipsOf(scene(), *m_figures[1])), QStringLiteral("to/and fro fight"));
        scene().removeNode(m_figures[1]);
        QCOMPARE(names(scene().getClips()), QStringLiteral("walk walk 1 fight"));
    }
    void found_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("place");
        QTest::newRow("name") << "man/fight" << 4;
        QTest::newRow("under each that it moves") << "fox/fight" << 4;
        QTest::newRow("slash in the name") << "man/to/and fro" << 3;
        QTest::newRow("number") << "fox/2" << 1;
        QTest::newRow("number of the figure") << "man/2" << 4;
        QTest::newRow("a name goes first") << "fox/1" << 2;
    }
    void found()
    {
        QFETCH(QString, text);
        QFETCH(int, place);
        QString error;
        const auto clip = RyClipLookup::findClip(scene(), text, &error);
        QCOMPARE(error, QString());
        QCOMPARE(clip.get(), scene().getClips()[size_t(place)].get());
    }
    void refused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("message");
        const QString all = QStringLiteral("\"fox/walk\", \"fox/walk\", \"fox/1\", \"man/to/and fro\", \"man/fight\", "
                                           "\"fox/fight\"");
        QTest::newRow("unknown") << "fox/run"
                                 << "no clip is called \"fox/run\"; there are " + all;
        QTest::newRow("number") << "fox/5"
                                << "no clip is called \"fox/5\"; there are " + all;
        QTest::newRow("zero") << "fox/0"
                              << "no clip is called \"fox/0\"; there are " + all;
        QTest::newRow("figure") << "cat/walk"
                                << "no clip is called \"cat/walk\"; there are " + all;
        QTest::newRow("part of a figure's name") << "ox/walk"
                                                 << "no clip is called \"ox/walk\"; there are " + all;
        QTest::newRow("no figure") << "walk"
                                   << "no clip is called \"walk\"; there are " + all;
        QTest::newRow("ambiguous")
            << "fox/walk"
            << "\"fox/walk\" is the name of 2 clips; write one of their numbers: \"fox/1\", \"fox/2\"";
    }
    void refused()
    {
        QFETCH(QString, text);
        QString error;
        QVERIFY(!RyClipLookup::findClip(scene(), text, &error));
        QTEST(error, "message");
    }
    void withoutClips()
    {
        scene().setOrigins({});
        QString error;
        QVERIFY(!RyClipLookup::findClip(scene(), QStringLiteral("fox/walk"), &error));
        QCOMPARE(error, QStringLiteral("there are no clips in the scene"));
    }

private:
    static RyScene &scene() { return *ryScene(); }
    static QString names(const RyClipLookup::Clips &clips)
    {
        QStringList list;
        for (const auto &clip : clips)
            list.append(clip->name());
        return list.join(QLatin1Char(' '));
    }

    RySkeleton *m_figures[2] = {};
};

RY_TEST(RyClipLookupTest)
#include "tst_RyClipLookup.moc"
