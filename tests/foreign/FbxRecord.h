#pragma once

#include <QByteArray>
#include <QtEndian>

#include <vector>

/// One record of an FBX file: a name, properties of their kinds, records below it.
class FbxRecord
{
public:
    /// The ways in which programs write the same.
    struct Form
    {
        bool isWide = false;   // places of eight bytes
        bool isPacked = false; // arrays
    };

    explicit FbxRecord(const char *name) : m_name(name) {}

    FbxRecord &number(qint32 value) { return property('I', raw(value), QByteArray::number(value)); }
    FbxRecord &id(qint64 value) { return property('L', raw(value), QByteArray::number(value)); }
    FbxRecord &real(double value) { return property('D', raw(value), written(value)); }
    /// The name of an object is one of its class as well, `name\0\1class`.
    FbxRecord &text(const QByteArray &value)
    {
        const int end = value.indexOf('\0');
        const QByteArray whole = end < 0 ? value : value.mid(end + 2) + "::" + value.left(end);
        return property('S', raw(qint32(value.size())) + value, '"' + whole + '"');
    }
    /// Bytes, which the form as text has no place for.
    FbxRecord &data(const QByteArray &value) { return property('R', raw(qint32(value.size())) + value, "\"\""); }
    FbxRecord &reals(const std::vector<double> &values) { return array('d', values); }
    FbxRecord &floats(const std::vector<float> &values) { return array('f', values); }
    FbxRecord &numbers(const std::vector<qint32> &values) { return array('i', values); }
    FbxRecord &ids(const std::vector<qint64> &values) { return array('l', values); }
    FbxRecord &add(const FbxRecord &child)
    {
        m_children.push_back(child);
        return *this;
    }

    /// In binary form.
    FbxRecord &flags(const QByteArray &values) { return property('b', values, "\"\"", values.size()); }

    /// With all that is below it, for a place in the file.
    QByteArray bytes(int at) const { return bytes(at, Form()); }
    QByteArray bytes(int at, const Form &form) const
    {
        QByteArray inner;
        for (const Property &each : m_properties)
            inner += each.kind + (each.count < 0 ? each.bytes : arrayBytes(each, form.isPacked));
        const int propertiesSize = inner.size();
        const int headSize = end(form).size() + m_name.size();
        for (const FbxRecord &child : m_children)
            inner += child.bytes(at + headSize + inner.size(), form);
        if (!m_children.empty())
            inner += end(form);
        return place(at + headSize + inner.size(), form) + place(int(m_properties.size()), form) +
               place(propertiesSize, form) + char(m_name.size()) + m_name + inner;
    }
    /// The same as text.
    QByteArray textForm(int depth = 0) const
    {
        const QByteArray indent(depth, '\t');
        QByteArray all = indent + m_name + ": " + m_written;
        if (!m_children.empty() || m_properties.empty()) {
            all += " {\n";
            for (const FbxRecord &child : m_children)
                all += child.textForm(depth + 1);
            all += indent + '}';
        }
        return all + '\n';
    }
    /// What closes a list of records.
    static QByteArray end() { return end(Form()); }
    static QByteArray end(const Form &form) { return QByteArray(form.isWide ? 25 : 13, '\0'); }
    static QByteArray header(qint32 version) { return QByteArray("Kaydara FBX Binary  \0\x1a\0", 23) + raw(version); }

private:
    template<class Value>
    static QByteArray raw(Value value)
    {
        char bytes[sizeof value];
        qToLittleEndian(value, bytes);
        return QByteArray(bytes, int(sizeof value));
    }
    static QByteArray place(int value, const Form &form)
    {
        return form.isWide ? raw(qint64(value)) : raw(qint32(value));
    }
    template<class Value>
    FbxRecord &array(char kind, const std::vector<Value> &values)
    {
        QByteArray bytes, list;
        for (const Value value : values) {
            bytes += raw(value);
            list += (list.isEmpty() ? "" : ",") + written(value);
        }
        return property(kind, bytes, '*' + QByteArray::number(qint64(values.size())) + " {\na: " + list + "\n}",
                        int(values.size()));
    }
    static QByteArray written(double value) { return QByteArray::number(value, 'g', 17); }
    static QByteArray written(float value) { return QByteArray::number(double(value), 'g', 9); }
    static QByteArray written(qint32 value) { return QByteArray::number(value); }
    static QByteArray written(qint64 value) { return QByteArray::number(value); }
    FbxRecord &property(char kind, const QByteArray &bytes, const QByteArray &asText, int count = -1)
    {
        m_written += (m_properties.empty() ? "" : ", ") + asText;
        m_properties.push_back({kind, count, bytes});
        return *this;
    }

    struct Property
    {
        char kind;
        int count; // of an array
        QByteArray bytes;
    };
    static QByteArray arrayBytes(const Property &array, bool isPacked)
    {
        const QByteArray bytes = isPacked ? qCompress(array.bytes).mid(4) : array.bytes; // without the size, Qt's own
        return raw(qint32(array.count)) + raw(qint32(isPacked)) + raw(qint32(bytes.size())) + bytes;
    }

    QByteArray m_name;
    std::vector<Property> m_properties;
    QByteArray m_written; // as text
    std::vector<FbxRecord> m_children;
};
