#include "support/RyTest.h"

#include "rycore/ui/RyPlainText.h"
#include "ryhost/commands/CommandList.h"
#include "ryhost/commands/menuText.h"

#include <QAction>
#include <QMenu>

/// Finding commands by what people call them.
class CommandListTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_menu = std::make_unique<QMenu>(QStringLiteral("&Rig"));
        QMenu *sub = m_menu->addMenu(QStringLiteral("&Edit"));
        add(sub, "Align Node", "roll straighten", "Turns the first axis along the bone.");
        add(sub, "Auto &Align\tQ", "roll", "Aligns while points move.");
        m_menu->addSeparator();
        add(m_menu.get(), "Snap", "align connect", "Moves the point to the parent.");
        add(m_menu.get(), "Remove", "delete align", "Takes it away.");
        add(m_menu.get(), "Ask", "", "Says how to align a bone.");
        m_menu->addAction(QStringLiteral("hidden align"))->setVisible(false);
        m_list = std::make_unique<CommandList>();
        m_list->addMenu({m_menu->menuAction()});
    }

    void namesAndPlaces()
    {
        QStringList lines;
        for (const CommandList::Command &command : m_list->commands())
            lines.append(command.path + QLatin1Char('|') + command.name);
        QCOMPARE(lines,
                 QStringList({"Rig > Edit|Align Node", "Rig > Edit|Auto Align", "Rig|Snap", "Rig|Remove", "Rig|Ask"}));
    }

    void ranking()
    {
        // Name, word of the name, first further word, second further word, description.
        QCOMPARE(names("align"), QStringList({"Align Node", "Auto Align", "Snap", "Remove", "Ask"}));
        QCOMPARE(names("ALIGN no"), QStringList("Align Node"));
        QCOMPARE(names("a"), QStringList({"Align Node", "Auto Align", "Ask", "Snap", "Remove"}));
    }

    void whatCannotRunComesLastOfItsKind()
    {
        m_list->commands().at(2).action->setEnabled(false);
        QCOMPARE(names("align"), QStringList({"Align Node", "Auto Align", "Remove", "Snap", "Ask"}));
        m_list->commands().at(0).action->setEnabled(false);
        QCOMPARE(names("align").first(), QStringLiteral("Align Node"));
        QCOMPARE(names("roll"), QStringList({"Auto Align", "Align Node"}));
    }

    void severalWordsMustAllBeFound()
    {
        QCOMPARE(names("roll auto"), QStringList("Auto Align"));
        QCOMPARE(names("straighten node"), QStringList("Align Node"));
        QCOMPARE(names("straighten parent"), QStringList());
        QCOMPARE(names("  rig   edit roll "), QStringList({"Align Node", "Auto Align"}));
        QCOMPARE(names("xyzzy"), QStringList());
        QCOMPARE(names("?!"), QStringList());
        QCOMPARE(names("..."), QStringList());
    }

    void emptyFindsAllInOrder()
    {
        m_list->commands().at(0).action->setEnabled(false);
        QCOMPARE(names(" "), QStringList({"Align Node", "Auto Align", "Snap", "Remove", "Ask"}));
    }

    void theShortestPathIsKept()
    {
        QAction *action = m_list->commands().at(0).action;
        m_list->add(action, QStringLiteral("A > B > C"));
        QCOMPARE(m_list->commands().at(0).path, QStringLiteral("Rig > Edit"));
        m_list->add(action, QStringLiteral("Bar"));
        QCOMPARE(m_list->commands().at(0).path, QStringLiteral("Bar"));
        QCOMPARE(int(m_list->commands().size()), 5);
    }

    void deletedCommandsAreNotFound()
    {
        delete m_list->commands().at(0).action;
        QCOMPARE(names("align").first(), QStringLiteral("Auto Align"));
    }

    void reasons()
    {
        QAction *action = m_list->commands().at(0).action;
        action->setProperty("unavailableReason", QStringLiteral("Select a bone first."));
        QCOMPARE(CommandList::reasonOf(action), QString());
        action->setEnabled(false);
        QCOMPARE(CommandList::reasonOf(action), QStringLiteral("Select a bone first."));
    }

    void textsOfMenus()
    {
        QCOMPARE(menuTextOf(QStringLiteral("a&b")), QStringLiteral("a&&b"));
        QCOMPARE(ryPlainText(menuTextOf(QStringLiteral("a&b"))), QStringLiteral("a&b"));
        QCOMPARE(mnemonicOf(QStringLiteral("Save && &Quit")), QChar('q'));
        QCOMPARE(mnemonicOf(QStringLiteral("a&&b")), QChar());
        QAction edit(QStringLiteral("&Edit")), join(QStringLiteral("&Join"));
        QCOMPARE(menuTextOf(QStringLiteral("Joint Editor"), {&edit}), QStringLiteral("&Joint Editor"));
        QCOMPARE(menuTextOf(QStringLiteral("Joint Editor"), {&edit, &join}), QStringLiteral("J&oint Editor"));
        QCOMPARE(menuTextOf(QStringLiteral("Ee"), {&edit}), QStringLiteral("Ee"));
    }

private:
    static void add(QMenu *menu, const char *text, const char *words, const char *tip)
    {
        QAction *action = menu->addAction(QString::fromLatin1(text));
        action->setProperty("searchWords", QString::fromLatin1(words));
        action->setStatusTip(QString::fromLatin1(tip));
    }
    QStringList names(const char *query) const
    {
        QStringList names;
        for (const CommandList::Command &command : m_list->find(QString::fromLatin1(query)))
            names.append(command.name);
        return names;
    }

    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<CommandList> m_list;
};

RY_TEST(CommandListTest)
#include "tst_CommandList.moc"
