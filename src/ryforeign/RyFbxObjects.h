#pragma once

#include "ryforeign/RyFbxRecords.h"
#include "ryforeign/RyFbxTransform.h"
#include "ryforeign/RyForeignInput.h"

#include <optional>

/// What an FBX file says of its objects and the importers' library does not pass on: which nodes are limbs of a
/// skeleton, how far its morphs are shown, about which points its nodes turn, and which have the name of another.
class RyFbxObjects
{
public:
    /// As far as the file is whole; of an FBX file in text form names, pivots and ranges alone.
    explicit RyFbxObjects(const QByteArray &bytes);

    QSet<QString> limbs;                                              // names of nodes, as they are after renaming
    QHash<QString, std::vector<RyForeignInput::Channels>> channelsOf; // by nodes, likewise
    QHash<QString, QString> nameOf;                                   // the file's own, where nodes are renamed
    QHash<QString, RyForeignPivot> pivotOf;                           // by nodes, likewise
    QHash<QString, RyForeignScaling> scalingOf;                       // where it is none of the usual
    QStringList ambiguous;                                            // names that could not be told apart
    QStringList constraints;                                          // by names
    /// Properties that somebody added to nodes, in the order of the file; of binary files.
    struct OwnProperty
    {
        QString name;
        QStringList nodes;
    };
    std::vector<OwnProperty> ownProperties;

    /// The file with a name of its own, of the same length, for each node that has that of another, and with what the
    /// importers' library takes otherwise than the format means it; the bytes that were read where there is nothing of
    /// it.
    QByteArray changed() const;

private:
    using Record = RyFbxRecords::Record;

    /// A node as it stands in the file.
    struct Model
    {
        qint64 id = 0;
        qint64 nameAt = 0;
        QByteArray name;
        bool isLimb = false;
        std::optional<RyForeignPivot> pivot;
        RyForeignScaling scaling = RyForeignScaling::Usual;
    };

    void readRecords();
    void readText();
    template<typename Work>
    void forNamesInText(const QByteArray &kind, const Work &work) const;
    void readObject(const Record &record);
    void readModel(const Record &record, qint64 id);
    template<typename Work>
    void forProperties(const Record &object, const Work &work) const;
    void forgetRange(const Record &property);
    void forgetRangesInText();
    void readOwnProperty(const Record &property, const QString &node);
    /// Where the numbers of a property stand: each of them, and how many bytes it has.
    using Places = std::vector<std::pair<qint64, int>>;
    using PlacesOf = QHash<QByteArray, Places>; // by names of properties
    void readTransform(const Record &property, RyFbxTransform &transform, PlacesOf &placesOf) const;
    void readTransformInText(qint64 from, qint64 to, Model &model);
    void takeTransform(const RyFbxTransform &transform, const PlacesOf &placesOf, Model &model);
    void tellApart();
    void findChannels();
    std::vector<qint64> below(qint64 id, const QHash<qint64, RyForeignInput::Channel> &kind) const;
    void readConnection(const Record &record);

    const QByteArray m_bytes;
    const RyFbxRecords m_records;
    std::vector<Model> m_models;
    /// Bytes in the place of others.
    struct Change
    {
        qint64 at = 0;
        int size = 0;
        QByteArray bytes;
    };
    std::vector<Change> m_changes;                                                          // by places in the file
    QHash<qint64, RyForeignInput::Channel> m_geometries, m_deformers, m_channels, m_shapes; // by ids
    QHash<QString, size_t> m_ownPropertyOf;                                                 // by name
    QHash<qint64, std::vector<qint64>> m_below; // what is connected to an object, in the order of the file
};
