#pragma once

#include "ryhost/batch/BatchReport.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

/// What `--json` says of one file. `code` as in ExitCode.h; `verb` at which it stopped and `error` are left out when it
/// is done.
QJsonObject batchEntry(const QString &file, int code, const QString &verb, const QString &error,
                       const BatchEvents &events);

/// The whole document: the run's arguments, its code, and an entry for each file. `error` is for wrong use, which has
/// no entries.
QByteArray batchDocument(const QStringList &arguments, int code, const QString &error, const QJsonArray &files);

/// Says on standard error why nothing ran, and in a document on standard output where `--json` asks for one. Gives the
/// exit code.
int refuseWrongUse(const QStringList &arguments, const QString &error);
