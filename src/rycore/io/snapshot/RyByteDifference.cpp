#include "rycore/io/snapshot/RyByteDifference.h"

#include <QDataStream>

#include <algorithm>
#include <cstring>

namespace {

constexpr int BlockSize = 4096;

/// Calls `take` with begin and size of every run of blocks that differ.
template<typename Take>
void walkRuns(const QByteArray &from, const QByteArray &to, const Take &take)
{
    if (from.constData() == to.constData() && from.size() == to.size())
        return;
    int begin = -1;
    for (int at = 0; at < to.size(); at += BlockSize) {
        const int size = std::min(BlockSize, to.size() - at);
        const bool isSame =
            at + size <= from.size() && std::memcmp(from.constData() + at, to.constData() + at, size_t(size)) == 0;
        if (!isSame && begin < 0)
            begin = at;
        if (isSame && begin >= 0) {
            take(begin, at - begin);
            begin = -1;
        }
    }
    if (begin >= 0)
        take(begin, to.size() - begin);
}

} // namespace

bool RyByteDifference::isLarge(const QByteArray &from, const QByteArray &to)
{
    qint64 total = 0;
    walkRuns(from, to, [&total](int, int size) { total += size; });
    return total > to.size() / 4;
}

QByteArray RyByteDifference::between(const QByteArray &from, const QByteArray &to)
{
    QByteArray difference;
    QDataStream stream(&difference, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << qint32(to.size());
    walkRuns(from, to, [&](int begin, int size) {
        stream << qint32(begin) << QByteArray::fromRawData(to.constData() + begin, size);
    });
    return difference;
}

bool RyByteDifference::apply(const QByteArray &from, const QByteArray &difference, QByteArray *to)
{
    QDataStream stream(difference);
    stream.setVersion(QDataStream::Qt_5_15);
    qint32 size = -1;
    stream >> size;
    if (stream.status() != QDataStream::Ok || size < 0)
        return false;
    *to = from.left(size);
    to->append(QByteArray(size - to->size(), '\0'));
    while (!stream.atEnd()) {
        qint32 begin = -1;
        QByteArray run;
        stream >> begin >> run;
        if (stream.status() != QDataStream::Ok || begin < 0 || qint64(begin) + run.size() > size)
            return false;
        std::copy(run.begin(), run.end(), to->begin() + begin);
    }
    return true;
}
