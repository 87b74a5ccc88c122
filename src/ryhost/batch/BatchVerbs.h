#pragma once

#include "ryhost/batch/BatchStep.h"

#include <QStringList>

/// What a batch run knows by name.
namespace BatchVerbs {

enum class Value { None, Required, Optional };

struct Row
{
    const char *name;
    BatchStep::Verb verb;
    Value value;
};

/// Null for a name that is no verb.
const Row *find(const QString &name);
QString nameOf(BatchStep::Verb verb);

/// What belongs to a verb before it: "--view", "--set" and so on.
bool isPictureOption(const QString &name);
bool isDialogOption(const QString &name);
constexpr char Time[] = "--time";
constexpr char Format[] = "--format";
constexpr char JointsOnly[] = "--joints-only";

/// What goes for the whole run, wherever it stands.
constexpr char Json[] = "--json";
constexpr char Verbose[] = "--verbose";

/// Verbs, their options and those of the run.
QStringList names();
/// " (did you mean --save or --save-to?)" of those and the `others`; empty where none is near.
QString didYouMean(const QString &name, const QStringList &others = {});

} // namespace BatchVerbs
