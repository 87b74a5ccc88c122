#pragma once

#include <QHash>
#include <QSet>
#include <QString>

/// What a binary FBX file says of its objects and the importers' library does not pass on: which nodes are limbs of a
/// skeleton, and how far its morphs are shown.
class RyFbxObjects
{
public:
    /// As far as the file is whole; of an FBX file in text form nothing.
    explicit RyFbxObjects(const QString &path);

    QSet<QString> limbs;           // names of nodes
    QHash<QString, double> morphs; // values by names of shapes, where they are not 0

private:
    /// A record: a name, properties, records below it.
    struct Record
    {
        qint64 propertiesAt = 0;
        qint64 childrenAt = 0;
        qint64 end = 0;
        int propertyCount = 0;
        QByteArray name;
    };

    bool readRecord(qint64 at, qint64 end, Record &record) const;
    template<typename Work>
    void forRecords(qint64 at, qint64 end, const Work &work) const;
    QByteArray textProperty(const Record &record, int number) const;
    double numberProperty(const Record &record, int number) const;
    qint64 findProperty(const Record &record, int number) const;
    template<typename T>
    T valueAt(qint64 at) const;
    void readObject(const Record &record);
    void readConnection(const Record &record);

    const uchar *m_bytes = nullptr;
    qint64 m_size = 0;
    bool m_isWide = false;             // counts of eight bytes
    QHash<qint64, QString> m_shapes;   // names by ids
    QHash<qint64, double> m_channels;  // values by ids
    QHash<qint64, qint64> m_channelOf; // of shapes, by ids
};
