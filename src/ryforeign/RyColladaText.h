#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

struct aiNode;
class QXmlStreamReader;

/// What a Collada file says and the importers' library does not pass on: it calls nodes after their ids, which is the
/// only way to tell two of one name apart, or with a number where there is none, and forgets which of them are joints.
class RyColladaText
{
public:
    /// Reads the file's text; as far as it is well formed. `root`: what the importers' library made of its scene, for
    /// the nodes without ids: those are told by their place in the tree.
    RyColladaText(const QString &path, const aiNode &root);

    double metre = 1.0;             // length of the file's unit
    QHash<QString, QString> nameOf; // of nodes by their names in the library; those that are called so are not there
    QSet<QString> joints;           // likewise names of nodes that are joints
    QStringList extras;             // whose words stand in extras: names of profiles
    QStringList leftOut;            // libraries of physics and kinematics

private:
    /// A node or a whole scene.
    struct Entry
    {
        QString id, name;
        bool isJoint = false;
        std::vector<int> children;
        QStringList instances; // ids of nodes that stand below it as well
    };

    void read(QXmlStreamReader &reader);
    void readExtra(QXmlStreamReader &reader);
    void open(const QXmlStreamReader &reader, std::vector<int> &above);
    void match(const aiNode &node, int entry, int depth);
    std::vector<int> childrenOf(int entry) const;
    void nameTheRest(const aiNode &root);

    std::vector<Entry> m_entries;
    QHash<QString, int> m_entryOf; // by ids
    QString m_scene;               // id of the one that is shown
    bool m_hasUnit = false;
};
