#include "ryforeign/RyColladaMorphs.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace {

/// Of the start tag that begins at `at`.
QByteArray attribute(const QByteArray &text, int at, const QByteArray &name)
{
    const QByteArray tag = text.mid(at, std::max(0, text.indexOf('>', at) - at));
    const QRegularExpression pattern(
        QStringLiteral("\\s%1\\s*=\\s*[\"']([^\"']*)[\"']").arg(QString::fromLatin1(name)));
    return pattern.match(QString::fromLatin1(tag)).captured(1).toLatin1(); // byte by byte
}

/// Start of the next element of this name; -1 for none.
int findElement(const QByteArray &text, const QByteArray &name, int from)
{
    for (int at = text.indexOf('<' + name, from); at >= 0; at = text.indexOf('<' + name, at + 1)) {
        const char next = at + 1 + name.size() < text.size() ? text[at + 1 + name.size()] : '\0';
        if (next == '>' || next == '/' || next == ' ' || next == '\t' || next == '\r' || next == '\n')
            return at;
    }
    return -1;
}

} // namespace

RyColladaMorphs::RyColladaMorphs(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray whole = file.readAll();
    if (findElement(whole, "morph", 0) < 0)
        return;
    text.reserve(whole.size());
    QHash<QByteArray, QByteArray> baseOf; // of controllers that morph, by references
    int copied = 0;
    for (int at = findElement(whole, "controller", 0); at >= 0; at = findElement(whole, "controller", at + 1)) {
        const int end = whole.indexOf("</controller>", at);
        const int morph = findElement(whole, "morph", at);
        if (end < 0 || morph < 0 || morph > end)
            continue;
        const QByteArray base = attribute(whole, morph, "source");
        baseOf.insert('#' + attribute(whole, at, "id"), base);
        meshes.append(QString::fromUtf8(base.mid(1)));
        text += whole.mid(copied, at - copied);
        copied = end + int(qstrlen("</controller>"));
    }
    text += whole.mid(copied);
    // What follows such a controller follows its base.
    for (int at = findElement(text, "skin", 0); at >= 0; at = findElement(text, "skin", at + 1)) {
        const QByteArray source = attribute(text, at, "source");
        if (baseOf.contains(source))
            text.replace(text.indexOf(source, at), source.size(), baseOf.value(source));
    }
    const QByteArray name("instance_controller"), close("</instance_controller>");
    for (int at = findElement(text, name, 0); at >= 0; at = findElement(text, name, at + 1)) {
        const QByteArray url = attribute(text, at, "url");
        if (!baseOf.contains(url))
            continue;
        const int tagEnd = text.indexOf('>', at);
        const int end = text.indexOf(close, at);
        if (text[tagEnd - 1] != '/' && end >= 0)
            text.replace(end, close.size(), "</instance_geometry>");
        text.replace(text.indexOf(url, at), url.size(), baseOf.value(url));
        text.replace(at + 1, name.size(), "instance_geometry");
    }
    if (meshes.isEmpty())
        text.clear();
}
