#include "rycore/ui/RyActionRunner.h"

#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyTextDistance.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("RyActionRunner", text);
}

/// "RyJEAlignNodeAction" is called alignnode by who forgets the rest.
QString stem(const QString &className)
{
    QString text = className.toLower();
    for (const char *start : {"ryje", "ry"}) {
        if (text.startsWith(QLatin1String(start))) {
            text.remove(0, int(qstrlen(start)));
            break;
        }
    }
    if (text.endsWith(QLatin1String("action")))
        text.chop(6);
    return text;
}

void judge(const RyDialogDriver &driver, RyActionResult &result)
{
    for (const RyDialogRecord &record : driver.records()) {
        if (!record.tellsOfRefusal() && !record.refused)
            continue;
        result.refused = true;
        result.reason = record.refused ? tr("The dialog \"%1\" was not accepted: %2").arg(record.title, record.reason)
                                       : record.plainText();
        break;
    }
    if (!driver.errors().isEmpty()) {
        result.refused = false;
        result.wrongUse = true;
        result.reason = driver.errors().join(QLatin1Char(' '));
    } else if (!driver.unusedFields().isEmpty() && !result.refused) {
        result.wrongUse = true;
        QStringList titles;
        for (const RyDialogRecord &record : driver.records()) {
            if (record.kind == RyDialogRecord::Dialog)
                titles.append(QLatin1Char('"') + record.title + QLatin1Char('"'));
        }
        result.reason = titles.isEmpty()
            ? tr("No dialog opened that could use %1.").arg(driver.unusedFields().join(QStringLiteral(", ")))
            : tr("No dialog used %1; there was %2.").arg(driver.unusedFields().join(QStringLiteral(", ")),
                                                          titles.join(QStringLiteral(", ")));
    }
    for (const QString &title : driver.unusedAnswers())
        result.notes.append(tr("No message box \"%1\" asked for its answer.").arg(title));
}

} // namespace

QVariantMap RyActionResult::toMap() const
{
    QVariantList boxes;
    for (const RyDialogRecord &record : dialogs)
        boxes.append(record.toMap());
    return {{QStringLiteral("ran"), ran},
            {QStringLiteral("refused"), refused},
            {QStringLiteral("reason"), reason},
            {QStringLiteral("boxes"), boxes}};
}

RyActionRunner::RyActionRunner(const RyActionMgr *manager) : m_manager(manager) {}

void RyActionRunner::setField(const QString &name, const QString &value)
{
    m_fields.emplace_back(name, value);
}

void RyActionRunner::setAnswer(const QString &title, const QString &button)
{
    m_answers.emplace_back(title, button);
}

RyActionResult RyActionRunner::run(const QString &className)
{
    const auto fields = std::move(m_fields);
    const auto answers = std::move(m_answers);
    m_fields.clear();
    m_answers.clear();
    RyActionResult result;
    // Tools take a new selection by an event, which no loop may have delivered yet.
    QCoreApplication::sendPostedEvents();
    RyAction *action = m_manager ? m_manager->findAction(className) : nullptr;
    if (!action) {
        result.wrongUse = true;
        result.reason = unknownReason(className);
        return result;
    }
    if (!action->isEnabled()) {
        result.refused = true;
        result.reason = action->unavailableReason();
        if (result.reason.isEmpty())
            result.reason = tr("The action \"%1\" is disabled for what is selected.").arg(action->text());
        return result;
    }
    RyDialogDriver driver;
    for (const auto &[name, value] : fields)
        driver.setField(name, value);
    for (const auto &[title, button] : answers)
        driver.setAnswer(title, button);
    action->trigger();
    judge(driver, result);
    result.ran = !result.refused && !result.wrongUse;
    result.dialogs = driver.records();
    return result;
}

QStringList RyActionRunner::names() const
{
    QStringList names;
    if (m_manager) {
        for (const RyAction *action : m_manager->getActions())
            names.append(QString::fromLatin1(action->metaObject()->className()));
    }
    names.sort();
    return names;
}

QString RyActionRunner::unknownReason(const QString &className) const
{
    const QStringList near = nearNames(className);
    return near.isEmpty()
        ? tr("There is no action %1; there is %2.").arg(className, names().join(QStringLiteral(", ")))
        : tr("There is no action %1 (did you mean %2?).").arg(className, near.join(tr(" or ")));
}

QStringList RyActionRunner::nearNames(const QString &name) const
{
    constexpr int MostNear = 4;
    const QString wanted = stem(name);
    std::vector<std::pair<int, QString>> near;
    for (const QString &className : names()) {
        const QString known = stem(className);
        const int distance = ryTextDistance(wanted, known);
        const bool contained = wanted.size() > 2 && (known.contains(wanted) || wanted.contains(known));
        if (contained || distance <= std::max(2, int(known.size()) / 4))
            near.emplace_back(distance, className);
    }
    std::sort(near.begin(), near.end());
    QStringList found;
    for (size_t i = 0; i < near.size() && i < MostNear; ++i)
        found.append(near[i].second);
    return found;
}
