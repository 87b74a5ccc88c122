#pragma once

#include <QByteArray>
#include <QtEndian>

#include <vector>

/// One record of a binary FBX file: a name, properties of their kinds, records below it.
class FbxRecord
{
public:
    explicit FbxRecord(const char *name) : m_name(name) {}

    FbxRecord &number(qint32 value) { return property('I', raw(value)); }
    FbxRecord &id(qint64 value) { return property('L', raw(value)); }
    FbxRecord &real(double value) { return property('D', raw(value)); }
    FbxRecord &text(const QByteArray &value) { return property('S', raw(qint32(value.size())) + value); }
    FbxRecord &data(const QByteArray &value) { return property('R', raw(qint32(value.size())) + value); }
    FbxRecord &reals(const std::vector<double> &values) { return array('d', values); }
    FbxRecord &floats(const std::vector<float> &values) { return array('f', values); }
    FbxRecord &numbers(const std::vector<qint32> &values) { return array('i', values); }
    FbxRecord &ids(const std::vector<qint64> &values) { return array('l', values); }
    FbxRecord &add(const FbxRecord &child)
    {
        m_children.push_back(child);
        return *this;
    }

    /// With all that is below it, for a place in the file.
    QByteArray bytes(int at) const
    {
        QByteArray inner = m_properties;
        const int headSize = 13 + m_name.size();
        for (const FbxRecord &child : m_children)
            inner += child.bytes(at + headSize + inner.size());
        if (!m_children.empty())
            inner += end();
        return raw(qint32(at + headSize + inner.size())) + raw(m_count) + raw(qint32(m_properties.size())) +
               char(m_name.size()) + m_name + inner;
    }
    /// What closes a list of records.
    static QByteArray end() { return QByteArray(13, '\0'); }
    static QByteArray header(qint32 version) { return QByteArray("Kaydara FBX Binary  \0\x1a\0", 23) + raw(version); }

private:
    template<class Value>
    static QByteArray raw(Value value)
    {
        char bytes[sizeof value];
        qToLittleEndian(value, bytes);
        return QByteArray(bytes, int(sizeof value));
    }
    template<class Value>
    FbxRecord &array(char kind, const std::vector<Value> &values)
    {
        QByteArray bytes;
        for (const Value value : values)
            bytes += raw(value);
        return property(kind, raw(qint32(values.size())) + raw(qint32(0)) + raw(qint32(bytes.size())) + bytes);
    }
    FbxRecord &property(char kind, const QByteArray &bytes)
    {
        m_properties += kind + bytes;
        ++m_count;
        return *this;
    }

    QByteArray m_name;
    QByteArray m_properties;
    qint32 m_count = 0;
    std::vector<FbxRecord> m_children;
};
