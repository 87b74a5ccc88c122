#include "ryhost/batch/BatchArguments.h"

#include "rycore/io/RySceneFile.h"
#include "ryhost/batch/BatchChecks.h"
#include "ryhost/batch/BatchVerbs.h"
#include "ryhost/batch/batchMistake.h"

#include <cmath>

namespace {

bool isVerb(const QString &text)
{
    return text.startsWith(QLatin1String("--"));
}

} // namespace

bool BatchArguments::parse(const QStringList &arguments, QString *error)
{
    QStringList words = arguments;
    asJson = words.removeAll(QLatin1String(BatchVerbs::Json)) > 0;
    if (words.indexOf(QStringLiteral("--batch")) != 0)
        return batchMistake(error, QStringLiteral("--batch must be the first argument"));
    int at = 1;
    while (at < words.size() && !isVerb(words.at(at)))
        files.append(words.at(at++));
    if (files.isEmpty())
        return batchMistake(error, QStringLiteral("--batch needs the name of a file, or - for standard input"));
    if (files.contains(QString()))
        return batchMistake(error, QStringLiteral("--batch: the name of a file is empty"));
    while (at < words.size()) {
        if (!parseVerb(words, at, error))
            return false;
    }
    return checkBatch(*this, error);
}

bool BatchArguments::parsePictureOption(const QString &name, const QString &value, QString *error)
{
    if (steps.isEmpty() || steps.last().verb != BatchStep::Screenshot)
        return batchMistake(error, QStringLiteral("%1 belongs after --screenshot").arg(name));
    if (name == QLatin1String("--view")) {
        if (!QStringList{QStringLiteral("front"), QStringLiteral("side"), QStringLiteral("top"),
                         QStringLiteral("perspective")}
                 .contains(value)) {
            return batchMistake(error,
                                QStringLiteral("--view: \"%1\" is none of front, side, top, perspective").arg(value));
        }
        steps.last().view = value;
        return true;
    }
    const QStringList parts = value.split(QLatin1Char('x'));
    const int width = parts.value(0).toInt();
    const int height = parts.value(1).toInt();
    if (parts.size() != 2 || width < 16 || height < 16 || width > 8192 || height > 8192)
        return batchMistake(error,
                            QStringLiteral("--size: \"%1\" is no size such as 1280x900 (16 to 8192)").arg(value));
    steps.last().size = QSize(width, height);
    return true;
}

bool BatchArguments::parseTime(const QString &value, QString *error)
{
    if (steps.isEmpty() || steps.last().verb != BatchStep::Clip)
        return batchMistake(error, QStringLiteral("--time belongs after --clip"));
    bool isNumber = false;
    const double seconds = value.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(seconds))
        return batchMistake(error, QStringLiteral("--time: \"%1\" is no number of seconds").arg(value));
    steps.last().time = seconds;
    return true;
}

bool BatchArguments::parseFormat(const QString &value, QString *error)
{
    const bool isOfInput = steps.isEmpty() && files.contains(QStringLiteral("-"));
    const bool isOfMerge = !steps.isEmpty() && steps.last().verb == BatchStep::Merge && steps.last().value == "-";
    const bool isOfSave = !steps.isEmpty() && steps.last().verb == BatchStep::Save && steps.last().value == "-";
    if (!isOfInput && !isOfMerge && !isOfSave)
        return batchMistake(
            error, QStringLiteral("--format belongs after --batch -, --merge - or --save -; where a file has a "
                                  "name, its ending says the format"));
    const QStringList known = isOfSave ? RySceneFile::writableEndings() : RySceneFile::readableEndings();
    if (!known.contains(value))
        return batchMistake(
            error, QStringLiteral("--format: \"%1\" is none of %2").arg(value, known.join(QStringLiteral(", "))));
    (isOfInput ? inputFormat : steps.last().format) = value;
    return true;
}

bool BatchArguments::parseDialogOption(const QString &name, const QString &value, QString *error)
{
    if (steps.isEmpty() || (steps.last().verb != BatchStep::Run && steps.last().verb != BatchStep::Script))
        return batchMistake(error,
                            QStringLiteral("%1 belongs after the --run or --script whose dialogs it is for").arg(name));
    // Values may hold an equals sign, and so may titles.
    const bool isField = name == QLatin1String("--set");
    const int equals = isField ? value.indexOf(QLatin1Char('=')) : value.lastIndexOf(QLatin1Char('='));
    if (equals <= 0) {
        return batchMistake(
            error,
            QStringLiteral("%1: \"%2\" does not have the form %3")
                .arg(name, value, isField ? QStringLiteral("OBJECTNAME=VALUE") : QStringLiteral("TITLE=BUTTON")));
    }
    (isField ? steps.last().fields : steps.last().answers).append({value.left(equals), value.mid(equals + 1)});
    return true;
}

bool BatchArguments::parseOption(const QString &name, const QString &value, QString *error)
{
    if (name == QLatin1String(BatchVerbs::Time))
        return parseTime(value, error);
    if (name == QLatin1String(BatchVerbs::Format))
        return parseFormat(value, error);
    return BatchVerbs::isPictureOption(name) ? parsePictureOption(name, value, error)
                                             : parseDialogOption(name, value, error);
}

bool BatchArguments::parseVerb(const QStringList &arguments, int &at, QString *error)
{
    const QString &name = arguments.at(at);
    const bool hasValue = at + 1 < arguments.size() && !isVerb(arguments.at(at + 1));
    if (BatchVerbs::isPictureOption(name) || BatchVerbs::isDialogOption(name) ||
        name == QLatin1String(BatchVerbs::Time) || name == QLatin1String(BatchVerbs::Format)) {
        if (!hasValue)
            return batchMistake(error, QStringLiteral("%1 needs a value").arg(name));
        at += 2;
        return parseOption(name, arguments.at(at - 1), error);
    }
    if (name == QLatin1String(BatchVerbs::JointsOnly)) {
        if (steps.isEmpty() || (steps.last().verb != BatchStep::Save && steps.last().verb != BatchStep::SaveTo))
            return batchMistake(error, QStringLiteral("%1 belongs after --save or --save-to").arg(name));
        steps.last().jointsOnly = true;
        ++at;
        return true;
    }
    const BatchVerbs::Row *row = BatchVerbs::find(name);
    if (!row && isVerb(name)) {
        return batchMistake(error, QStringLiteral("%1 is no verb of a batch run%2; --help lists them")
                                       .arg(name, BatchVerbs::didYouMean(name)));
    }
    if (!row)
        return batchMistake(
            error, QStringLiteral("\"%1\" stands alone; a verb such as --select must come before it, and further "
                                  "files stand before all verbs")
                       .arg(name));
    BatchStep step;
    step.verb = row->verb;
    ++at;
    if (row->value == BatchVerbs::Value::Required && !hasValue)
        return batchMistake(error, QStringLiteral("%1 needs a value").arg(name));
    if (row->value != BatchVerbs::Value::None && hasValue)
        step.value = arguments.at(at++);
    if (row->verb == BatchStep::Unit) {
        bool isNumber = false;
        step.number = step.value.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(step.number) || step.number < 1e-6 || step.number > 1e6) {
            return batchMistake(
                error, QStringLiteral("--unit: \"%1\" is no number of centimetres per file unit (0.000001 to 1000000)")
                           .arg(step.value));
        }
    }
    if (row->verb == BatchStep::SaveTo && (step.value.isEmpty() || step.value == QLatin1String("-")))
        return batchMistake(error, QStringLiteral("--save-to needs a folder; for standard output use --save -"));
    steps.append(step);
    return true;
}
