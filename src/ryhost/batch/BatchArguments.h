#pragma once

#include "ryhost/batch/BatchStep.h"

#include <QStringList>

/// `--batch FILE... [verb...]`: verbs run from left to right and may repeat. Everything is checked before anything
/// runs.
class BatchArguments
{
public:
    /// `arguments` without the program's name. False with a message on wrong use.
    bool parse(const QStringList &arguments, QString *error);

    QStringList files;   // at least one; "-" is standard input
    QString inputFormat; // of standard input among them: an ending; empty: by its first bytes
    bool asJson = false;
    QList<BatchStep> steps;

private:
    bool parseVerb(const QStringList &arguments, int &at, QString *error);
    bool parseOption(const QString &name, const QString &value, QString *error);
    bool parsePictureOption(const QString &name, const QString &value, QString *error);
    bool parseTime(const QString &value, QString *error);
    bool parseFormat(const QString &value, QString *error);
    bool parseDialogOption(const QString &name, const QString &value, QString *error);
};
