#pragma once

#include <QByteArray>

#include <cstring>
#include <string_view>

/// The records of a binary FBX file, read in place. What the bytes say is believed as far as it stays within them.
class RyFbxRecords
{
public:
    static constexpr qint64 HeaderSize = 27; // a name, two odd bytes and the version

    /// A record: a name, properties, records below it. Places are counted from the first byte of the file.
    struct Record
    {
        qint64 at = 0;
        qint64 propertyCount = 0;
        qint64 propertiesAt = 0;
        qint64 childrenAt = 0;
        qint64 end = 0;
        std::string_view name;
    };

    /// `bytes` has to stay; that of a file in text form has no records.
    explicit RyFbxRecords(const QByteArray &bytes);

    bool isBinary() const { return m_isBinary; }
    const char *bytes() const { return m_bytes; }
    qint64 size() const { return m_size; }
    /// Of each of the three counts that a record begins with, in bytes.
    qint64 countWidth() const { return m_isWide ? 8 : 4; }

    /// False for none that fits into the part up to `end`, and for the empty one behind the last.
    bool read(qint64 at, qint64 end, Record &record) const;
    /// The one behind the last: nothing but zeros.
    bool isEmpty(qint64 at, qint64 end) const;
    /// One after the other; the place behind the last.
    template<typename Work>
    qint64 forEach(qint64 at, qint64 end, const Work &work) const
    {
        for (Record record; read(at, end, record); at = record.end)
            work(record);
        return at;
    }

    /// Place behind the property at `at`; -1 for a kind that nobody knows. It may lie beyond the record.
    qint64 skipProperty(qint64 at) const;
    /// Place of a property's type; -1 where there is none.
    qint64 findProperty(const Record &record, int number) const;
    /// Empty where it is no text.
    QByteArray text(const Record &record, int number) const;
    /// 0 where it is no number with a point.
    double number(const Record &record, int number) const;
    /// Zero beyond the end.
    template<typename T>
    T value(qint64 at) const
    {
        T value{};
        if (at >= 0 && at + qint64(sizeof value) <= m_size)
            std::memcpy(&value, m_bytes + at, sizeof value);
        return value;
    }

private:
    const char *m_bytes;
    qint64 m_size;
    bool m_isBinary;
    bool m_isWide; // counts of eight bytes
};
