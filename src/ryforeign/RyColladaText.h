#pragma once

#include <QHash>
#include <QSet>
#include <QString>

/// What a Collada file says and the importers' library does not pass on: it calls nodes after their ids, which is the
/// only way to tell two of one name apart, and forgets which of them are joints.
class RyColladaText
{
public:
    /// Reads the file's text; as far as it is well formed.
    explicit RyColladaText(const QString &path);

    double metre = 1.0;             // length of the file's unit
    QHash<QString, QString> nameOf; // of nodes by ids, or else scoped ids; those without a name are not there
    QSet<QString> joints;           // likewise ids of nodes that are joints
};
