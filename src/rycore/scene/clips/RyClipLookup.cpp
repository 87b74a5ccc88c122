#include "rycore/scene/clips/RyClipLookup.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/node/RyNodeLookup.h"

#include <QStringList>

#include <algorithm>

namespace {

/// A clip below one of its subjects, with the number that it has there.
struct Entry
{
    std::shared_ptr<const RyClip> clip;
    const RyNode *subject;
    int number;

    QString text(const QString &name) const { return RyNodeLookup::pathOf(subject) + QLatin1Char('/') + name; }
};

std::vector<Entry> entriesOf(const RyScene &scene)
{
    std::vector<Entry> entries;
    for (const auto &clip : scene.getClips()) {
        for (const RyNode *subject : clip->subjects(scene)) {
            const auto number = 1 + std::count_if(entries.begin(), entries.end(),
                                                  [subject](const Entry &entry) { return entry.subject == subject; });
            entries.push_back({clip, subject, int(number)});
        }
    }
    return entries;
}

/// Whether the text says the subject, by its name or the end of its path, and then `name`.
bool isMeant(const Entry &entry, const QString &text, const QString &name)
{
    if (!text.endsWith(QLatin1Char('/') + name))
        return false;
    const QString subject = text.left(text.size() - name.size() - 1);
    const QString path = RyNodeLookup::pathOf(entry.subject);
    return path == subject || path.endsWith(QLatin1Char('/') + subject);
}

QString listed(const std::vector<Entry> &entries, bool byNumber)
{
    QStringList texts;
    for (const Entry &entry : entries) {
        const QString text = byNumber ? entry.text(QString::number(entry.number)) : entry.text(entry.clip->name());
        texts.append(QLatin1Char('"') + text + QLatin1Char('"'));
    }
    return texts.join(QStringLiteral(", "));
}

} // namespace

RyClipLookup::Clips RyClipLookup::clipsOf(const RyScene &scene, const RyNode &subject)
{
    Clips clips = scene.getClips();
    std::erase_if(clips, [&](const auto &clip) {
        const std::vector<RyNode *> subjects = clip->subjects(scene);
        return std::find(subjects.begin(), subjects.end(), &subject) == subjects.end();
    });
    return clips;
}

std::shared_ptr<const RyClip> RyClipLookup::findClip(const RyScene &scene, const QString &text, QString *error)
{
    const std::vector<Entry> entries = entriesOf(scene);
    std::vector<Entry> found;
    const auto pick = [&](auto nameOf) {
        std::copy_if(entries.begin(), entries.end(), std::back_inserter(found),
                     [&](const Entry &entry) { return isMeant(entry, text, nameOf(entry)); });
    };
    pick([](const Entry &entry) { return entry.clip->name(); });
    if (found.empty())
        pick([](const Entry &entry) { return QString::number(entry.number); });
    if (found.size() == 1)
        return found.front().clip;
    if (entries.empty())
        *error = QStringLiteral("there are no clips in the scene");
    else if (found.empty())
        *error = QStringLiteral("no clip is called \"%1\"; there are %2").arg(text, listed(entries, false));
    else
        *error = QStringLiteral("\"%1\" is the name of %2 clips; write one of their numbers: %3")
                     .arg(text)
                     .arg(found.size())
                     .arg(listed(found, true));
    return nullptr;
}
