#include "ryhost/batch/BatchVerbs.h"

#include "rycore/base/RyNearTexts.h"

namespace {

using BatchVerbs::Value;

constexpr BatchVerbs::Row Verbs[] = {
    {"--unit", BatchStep::Unit, Value::Required},
    {"--merge", BatchStep::Merge, Value::Required},
    {"--select", BatchStep::Select, Value::Required},
    {"--property", BatchStep::Property, Value::Required},
    {"--pose", BatchStep::Pose, Value::Required},
    {"--clip", BatchStep::Clip, Value::Required},
    {"--undo", BatchStep::Undo, Value::None},
    {"--redo", BatchStep::Redo, Value::None},
    {"--save", BatchStep::Save, Value::Required},
    {"--save-to", BatchStep::SaveTo, Value::Required},
    {"--screenshot", BatchStep::Screenshot, Value::Required},
    {"--dump", BatchStep::Dump, Value::Optional},
    {"--report", BatchStep::Report, Value::Optional},
    {"--script", BatchStep::Script, Value::Required},
    {"--run", BatchStep::Run, Value::Required},
};

constexpr const char *PictureOptions[] = {"--view", "--size"};
constexpr const char *DialogOptions[] = {"--set", "--answer"};

template<typename Names>
bool isOneOf(const QString &name, const Names &names)
{
    for (const char *each : names) {
        if (name == QLatin1String(each))
            return true;
    }
    return false;
}

} // namespace

const BatchVerbs::Row *BatchVerbs::find(const QString &name)
{
    for (const Row &row : Verbs) {
        if (name == QLatin1String(row.name))
            return &row;
    }
    return nullptr;
}

QString BatchVerbs::nameOf(BatchStep::Verb verb)
{
    for (const Row &row : Verbs) {
        if (row.verb == verb)
            return QString::fromLatin1(row.name);
    }
    return {};
}

bool BatchVerbs::isPictureOption(const QString &name)
{
    return isOneOf(name, PictureOptions);
}

bool BatchVerbs::isDialogOption(const QString &name)
{
    return isOneOf(name, DialogOptions);
}

QStringList BatchVerbs::names()
{
    QStringList all;
    for (const Row &row : Verbs)
        all.append(QString::fromLatin1(row.name));
    for (const char *option : PictureOptions)
        all.append(QString::fromLatin1(option));
    for (const char *option : DialogOptions)
        all.append(QString::fromLatin1(option));
    for (const char *option : {Time, Format, JointsOnly, Json, Verbose})
        all.append(QString::fromLatin1(option));
    return all;
}

QString BatchStep::text() const
{
    const QString name = BatchVerbs::nameOf(verb);
    return value.isEmpty() ? name : name + QLatin1Char(' ') + value;
}

QString BatchVerbs::didYouMean(const QString &name, const QStringList &others)
{
    return ryDidYouMean(ryNearTexts(name, names() + others), QString());
}
