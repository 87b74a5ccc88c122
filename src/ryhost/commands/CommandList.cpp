#include "ryhost/commands/CommandList.h"

#include "rycore/ui/RyPlainText.h"

#include <QAction>
#include <QMenu>
#include <QRegularExpression>
#include <QVariant>

#include <algorithm>
#include <tuple>

namespace {

enum Rank { NamePrefix, NameWord, OtherWord, Anywhere, NotFound };

QString propertyText(const QAction *action, const char *name)
{
    return action->property(name).toString();
}

QStringList wordsOf(const QString &text)
{
    static const QRegularExpression between(QStringLiteral("[^\\w]+"), QRegularExpression::UseUnicodePropertiesOption);
    return text.split(between, Qt::SkipEmptyParts);
}

/// Place of the first word that begins so, -1 for none.
int placeOfWord(const QStringList &words, const QString &beginning)
{
    const auto found = std::find_if(words.begin(), words.end(), [&](const QString &word) {
        return word.startsWith(beginning, Qt::CaseInsensitive);
    });
    return found == words.end() ? -1 : int(found - words.begin());
}

struct Match
{
    Rank rank;
    bool isDisabled;
    int wordPlace; // among the further words

    auto order() const { return std::make_tuple(rank, isDisabled, wordPlace); }
};

Match matchOf(const CommandList::Command &command, const QString &query)
{
    Match match = {NameWord, !command.action->isEnabled(), 0};
    if (command.name.startsWith(query, Qt::CaseInsensitive)) {
        match.rank = NamePrefix;
        return match;
    }
    const QAction *action = command.action;
    const QStringList nameWords = wordsOf(command.name);
    const QStringList otherWords = wordsOf(propertyText(action, "searchWords"));
    const QString description = propertyText(action, "description");
    const QString everything = command.name + QLatin1Char('\n') + command.path + QLatin1Char('\n') +
                               (description.isEmpty() ? action->statusTip() : description);
    const QStringList words = wordsOf(query);
    if (words.isEmpty())
        match.rank = NotFound; // signs alone
    for (const QString &word : words) {
        if (placeOfWord(nameWords, word) >= 0)
            continue;
        const int place = placeOfWord(otherWords, word);
        match.wordPlace = std::max(match.wordPlace, place);
        const Rank found = place >= 0                                       ? OtherWord
                           : everything.contains(word, Qt::CaseInsensitive) ? Anywhere
                                                                            : NotFound;
        match.rank = std::max(match.rank, found);
    }
    return match;
}

} // namespace

void CommandList::addMenu(const QList<QAction *> &entries, const QString &path)
{
    for (QAction *entry : entries) {
        if (entry->isSeparator() || !entry->isVisible())
            continue;
        if (!entry->menu()) {
            add(entry, path);
            continue;
        }
        const QString title = ryPlainText(entry->text());
        addMenu(entry->menu()->actions(), path.isEmpty() ? title : path + QStringLiteral(" > ") + title);
    }
}

void CommandList::add(QAction *action, const QString &path)
{
    const auto known = std::find_if(m_commands.begin(), m_commands.end(),
                                    [action](const Command &command) { return command.action == action; });
    if (known == m_commands.end())
        m_commands.push_back({action, ryPlainText(action->text()), path});
    else if (path.count(QLatin1Char('>')) < known->path.count(QLatin1Char('>')))
        known->path = path;
}

std::vector<CommandList::Command> CommandList::find(const QString &query) const
{
    const QString wanted = query.simplified();
    std::vector<std::pair<Match, Command>> found;
    for (const Command &command : m_commands) {
        if (!command.action)
            continue;
        const Match match = wanted.isEmpty() ? Match{NamePrefix, false, 0} : matchOf(command, wanted);
        if (match.rank != NotFound)
            found.emplace_back(match, command);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &a, const auto &b) { return a.first.order() < b.first.order(); });
    std::vector<Command> commands;
    for (auto &[match, command] : found)
        commands.push_back(std::move(command));
    return commands;
}

QString CommandList::reasonOf(const QAction *action)
{
    return action->isEnabled() ? QString() : propertyText(action, "unavailableReason");
}
