#pragma once

#include <QString>

class BatchArguments;

/// Whether verbs and files that are fine by themselves go together: units that a file is read with, one reader of
/// standard input, one writer of standard output, and for several files no verb that would write them all to one place.
/// False with a message.
bool checkBatch(const BatchArguments &arguments, QString *error);

/// What `--save-to` calls a file: its own name, with the ending .glb where its own cannot be written.
QString batchTargetName(const QString &file);
