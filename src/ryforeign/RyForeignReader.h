#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

/// What the process that reads a foreign file asks of what knows foreign formats.
struct RyForeignRequest
{
    QString path;
    /// Centimetres in one unit of the file; 0: as the file says, or as its largest figure makes likely.
    double unit = 0.0;
    /// Told how much is done, from 0 to 1; false means that nobody wants the file any more.
    std::function<bool(double done)> progress;
    /// Called with a result as soon as it is there, before what it was made from is tidied up; need not come back.
    std::function<void(const struct RyForeignResult &result)> finished;
};

/// A foreign file as a glTF 2.0 binary with the extras of our own: in metres, as that format has it, so that what is
/// saved from it has its size in every program. Unit and axes of the file stand in the node above all.
struct RyForeignResult
{
    QByteArray glb;
    /// What did not come along, and what came along changed; a sentence each, for people.
    QStringList notes;
    /// Why there is no `glb`, without the file's name.
    QString error;
};

/// Reads `request.path`; false leaves `result.error`. May crash or hang on a damaged file.
using RyForeignReadFunction = bool (*)(const RyForeignRequest &request, RyForeignResult &result);
