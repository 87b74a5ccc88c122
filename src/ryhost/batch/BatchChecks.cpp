#include "ryhost/batch/BatchChecks.h"

#include "rycore/io/RySceneFile.h"
#include "ryhost/batch/BatchArguments.h"
#include "ryhost/batch/BatchVerbs.h"
#include "ryhost/batch/batchMistake.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>

namespace {

const QLatin1String Stream("-");

bool checkUnits(const QList<BatchStep> &steps, QString *error)
{
    int first = 0;
    while (first < steps.size() && steps.at(first).verb == BatchStep::Unit)
        ++first;
    for (int i = first; i < steps.size(); ++i) {
        const auto reads = [](const BatchStep &step) { return step.verb == BatchStep::Merge; };
        if (steps.at(i).verb == BatchStep::Unit && std::none_of(steps.begin() + i, steps.end(), reads))
            return batchMistake(
                error, QStringLiteral(
                           "--unit: no file is read after it; it goes before all other verbs, or before a --merge"));
    }
    return true;
}

bool checkInput(const BatchArguments &arguments, QString *error)
{
    int readers = arguments.files.count(Stream);
    for (const BatchStep &step : arguments.steps)
        readers += step.readsStandardInput();
    return readers <= 1 ||
           batchMistake(error, QStringLiteral("standard input can be read once only; name a file instead of "
                                              "\"-\" in the other places"));
}

bool checkOutput(const BatchArguments &arguments, QString *error)
{
    QStringList writers;
    for (const BatchStep &step : arguments.steps) {
        if (step.writesStandardOutput())
            writers.append(BatchVerbs::nameOf(step.verb));
    }
    if (writers.size() > 1) {
        const QString last = writers.takeLast();
        return batchMistake(
            error, QStringLiteral("only one of %1 and %2 can go to standard output; name a file for the others")
                       .arg(writers.join(QStringLiteral(", ")), last));
    }
    if (arguments.asJson && !writers.isEmpty() && writers.first() != QLatin1String("--report"))
        return batchMistake(error,
                            QStringLiteral("--json takes standard output; name a file for %1").arg(writers.first()));
    return true;
}

bool checkTargets(const BatchArguments &arguments, QString *error)
{
    const auto savesTo = [](const BatchStep &step) { return step.verb == BatchStep::SaveTo; };
    if (std::none_of(arguments.steps.begin(), arguments.steps.end(), savesTo))
        return true;
    QHash<QString, QString> taken;
    for (const QString &file : arguments.files) {
        if (file == Stream)
            return batchMistake(error,
                                QStringLiteral("--save-to keeps the names of files, and standard input has none; use "
                                               "--save, or give the file by its name"));
        const QString name = batchTargetName(file);
        if (taken.contains(name))
            return batchMistake(error,
                                QStringLiteral("--save-to: %1 and %2 would both be written as %3; rename one of them, "
                                               "or save them to different folders in two runs")
                                    .arg(taken.value(name), file, name));
        taken.insert(name, file);
    }
    return true;
}

/// A verb that names its file would write that of the last character only.
bool checkSeveral(const BatchArguments &arguments, QString *error)
{
    if (arguments.files.size() < 2)
        return true;
    for (const BatchStep &step : arguments.steps) {
        const bool writes = step.verb == BatchStep::Save || step.verb == BatchStep::Screenshot ||
                            step.verb == BatchStep::Dump || step.verb == BatchStep::Report;
        if (!writes || (step.verb == BatchStep::Report && step.writesStandardOutput() && arguments.asJson))
            continue;
        const QString help =
            step.verb == BatchStep::Save     ? QStringLiteral("--save-to DIR writes each under its own name")
            : step.verb == BatchStep::Report ? QStringLiteral("with --json, --report without a file gives the report "
                                                              "of each")
                                             : QStringLiteral("run the program once for each file");
        return batchMistake(error, QStringLiteral("%1 writes to one place, and there are %2 files; %3")
                                       .arg(BatchVerbs::nameOf(step.verb))
                                       .arg(arguments.files.size())
                                       .arg(help));
    }
    return true;
}

} // namespace

bool checkBatch(const BatchArguments &arguments, QString *error)
{
    return checkUnits(arguments.steps, error) && checkInput(arguments, error) && checkOutput(arguments, error) &&
           checkTargets(arguments, error) && checkSeveral(arguments, error);
}

QString batchTargetName(const QString &file)
{
    const QFileInfo info(file);
    return RySceneFile::writableEndings().contains(info.suffix().toLower())
               ? info.fileName()
               : info.completeBaseName() + QStringLiteral(".glb");
}
