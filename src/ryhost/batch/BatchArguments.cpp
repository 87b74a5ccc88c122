#include "ryhost/batch/BatchArguments.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

enum class Value { None, Required, Optional };

struct VerbRow
{
    const char *name;
    BatchStep::Verb verb;
    Value value;
};

constexpr VerbRow Verbs[] = {
    {"--unit", BatchStep::Unit, Value::Required},     {"--merge", BatchStep::Merge, Value::Required},
    {"--select", BatchStep::Select, Value::Required}, {"--property", BatchStep::Property, Value::Required},
    {"--pose", BatchStep::Pose, Value::Required},     {"--clip", BatchStep::Clip, Value::Required},
    {"--undo", BatchStep::Undo, Value::None},         {"--redo", BatchStep::Redo, Value::None},
    {"--save", BatchStep::Save, Value::Required},     {"--screenshot", BatchStep::Screenshot, Value::Required},
    {"--dump", BatchStep::Dump, Value::Optional},     {"--report", BatchStep::Report, Value::Optional},
    {"--script", BatchStep::Script, Value::Required}, {"--run", BatchStep::Run, Value::Required},
};

bool isVerb(const QString &text)
{
    return text.startsWith(QLatin1String("--"));
}

const QLatin1String JointsOnly("--joints-only");

bool isPictureOption(const QString &name)
{
    return name == QLatin1String("--view") || name == QLatin1String("--size");
}

const QLatin1String Time("--time");

bool isDialogOption(const QString &name)
{
    return name == QLatin1String("--set") || name == QLatin1String("--answer");
}

bool fail(QString *error, const QString &message)
{
    *error = message;
    return false;
}

} // namespace

bool BatchArguments::parse(const QStringList &arguments, QString *error)
{
    const int start = arguments.indexOf(QStringLiteral("--batch"));
    if (start != 0)
        return fail(error, QStringLiteral("--batch must be the first argument"));
    if (arguments.size() < 2 || isVerb(arguments.at(1)))
        return fail(error, QStringLiteral("--batch needs the name of a file"));
    file = arguments.at(1);
    for (int at = 2; at < arguments.size();) {
        if (!parseVerb(arguments, at, error))
            return false;
    }
    if (!checkUnits(error))
        return false;
    int toStandardOutput = 0;
    for (const BatchStep &step : qAsConst(steps))
        toStandardOutput += (step.verb == BatchStep::Dump || step.verb == BatchStep::Report) && step.value.isEmpty();
    if (toStandardOutput > 1)
        return fail(
            error,
            QStringLiteral("only one of --dump and --report can go to standard output; name a file for the others"));
    return true;
}

bool BatchArguments::isKnownVerb(const QString &name)
{
    const auto isIt = [&](const VerbRow &row) { return name == QLatin1String(row.name); };
    return isPictureOption(name) || isDialogOption(name) || name == Time || name == JointsOnly ||
           std::any_of(std::begin(Verbs), std::end(Verbs), isIt);
}

bool BatchArguments::checkUnits(QString *error) const
{
    int first = 0;
    while (first < steps.size() && steps.at(first).verb == BatchStep::Unit)
        ++first;
    for (int i = first; i < steps.size(); ++i) {
        const auto reads = [](const BatchStep &step) { return step.verb == BatchStep::Merge; };
        if (steps.at(i).verb == BatchStep::Unit && std::none_of(steps.begin() + i, steps.end(), reads))
            return fail(error,
                        QStringLiteral(
                            "--unit: no file is read after it; it goes before all other verbs, or before a --merge"));
    }
    return true;
}

bool BatchArguments::parsePictureOption(const QString &name, const QString &value, QString *error)
{
    if (steps.isEmpty() || steps.last().verb != BatchStep::Screenshot)
        return fail(error, QStringLiteral("%1 belongs after --screenshot").arg(name));
    if (name == QLatin1String("--view")) {
        if (!QStringList{QStringLiteral("front"), QStringLiteral("side"), QStringLiteral("top"),
                         QStringLiteral("perspective")}
                 .contains(value)) {
            return fail(error, QStringLiteral("--view: \"%1\" is none of front, side, top, perspective").arg(value));
        }
        steps.last().view = value;
        return true;
    }
    const QStringList parts = value.split(QLatin1Char('x'));
    const int width = parts.value(0).toInt();
    const int height = parts.value(1).toInt();
    if (parts.size() != 2 || width < 16 || height < 16 || width > 8192 || height > 8192)
        return fail(error, QStringLiteral("--size: \"%1\" is no size such as 1280x900 (16 to 8192)").arg(value));
    steps.last().size = QSize(width, height);
    return true;
}

bool BatchArguments::parseTime(const QString &value, QString *error)
{
    if (steps.isEmpty() || steps.last().verb != BatchStep::Clip)
        return fail(error, QStringLiteral("--time belongs after --clip"));
    bool isNumber = false;
    const double seconds = value.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(seconds))
        return fail(error, QStringLiteral("--time: \"%1\" is no number of seconds").arg(value));
    steps.last().time = seconds;
    return true;
}

bool BatchArguments::parseDialogOption(const QString &name, const QString &value, QString *error)
{
    if (steps.isEmpty() || (steps.last().verb != BatchStep::Run && steps.last().verb != BatchStep::Script))
        return fail(error, QStringLiteral("%1 belongs after the --run or --script whose dialogs it is for").arg(name));
    // Values may hold an equals sign, and so may titles.
    const bool isField = name == QLatin1String("--set");
    const int equals = isField ? value.indexOf(QLatin1Char('=')) : value.lastIndexOf(QLatin1Char('='));
    if (equals <= 0) {
        return fail(error, QStringLiteral("%1: \"%2\" does not have the form %3")
                               .arg(name, value,
                                    isField ? QStringLiteral("OBJECTNAME=VALUE") : QStringLiteral("TITLE=BUTTON")));
    }
    (isField ? steps.last().fields : steps.last().answers).append({value.left(equals), value.mid(equals + 1)});
    return true;
}

bool BatchArguments::parseVerb(const QStringList &arguments, int &at, QString *error)
{
    const QString &name = arguments.at(at);
    if (isPictureOption(name) || isDialogOption(name) || name == Time) {
        if (at + 1 >= arguments.size() || isVerb(arguments.at(at + 1)))
            return fail(error, QStringLiteral("%1 needs a value").arg(name));
        const QString &value = arguments.at(at + 1);
        at += 2;
        if (name == Time)
            return parseTime(value, error);
        return isPictureOption(name) ? parsePictureOption(name, value, error) : parseDialogOption(name, value, error);
    }
    if (name == JointsOnly) {
        if (steps.isEmpty() || steps.last().verb != BatchStep::Save)
            return fail(error, QStringLiteral("%1 belongs after --save").arg(name));
        steps.last().jointsOnly = true;
        ++at;
        return true;
    }
    for (const VerbRow &row : Verbs) {
        if (name != QLatin1String(row.name))
            continue;
        BatchStep step;
        step.verb = row.verb;
        ++at;
        const bool hasValue = at < arguments.size() && !isVerb(arguments.at(at));
        if (row.value == Value::Required && !hasValue)
            return fail(error, QStringLiteral("%1 needs a value").arg(name));
        if (row.value != Value::None && hasValue)
            step.value = arguments.at(at++);
        if (row.verb == BatchStep::Unit) {
            bool isNumber = false;
            step.number = step.value.toDouble(&isNumber);
            if (!isNumber || !std::isfinite(step.number) || step.number < 1e-6 || step.number > 1e6) {
                return fail(error, QStringLiteral(
                                       "--unit: \"%1\" is no number of centimetres per file unit (0.000001 to 1000000)")
                                       .arg(step.value));
            }
        }
        steps.append(step);
        return true;
    }
    if (isVerb(name))
        return fail(error, QStringLiteral("%1 is no verb of a batch run; --help lists them").arg(name));
    if (steps.isEmpty())
        return fail(error, QStringLiteral("\"%1\" stands alone; to add a second file write --merge %1").arg(name));
    return fail(error, QStringLiteral("\"%1\" stands alone; a verb such as --select must come before it").arg(name));
}
