#pragma once

#include <QString>
#include <QStringList>

/// What the program was started for.
class CommandLine
{
public:
    enum Mode { Window, Batch, Help, Version, Wrong };

    /// `arguments` without the program's name.
    static CommandLine parse(const QStringList &arguments);
    static QString helpText();

    Mode mode = Window;
    QStringList files;          // Window: the first is opened, the others are merged
    QStringList batchArguments; // Batch: everything else, "--batch" included
    bool isVerbose = false;     // Batch: what the toolkit says by itself is printed too
    QString error;
};
