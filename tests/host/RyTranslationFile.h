#pragma once

#include <QDataStream>
#include <QFile>
#include <QMap>

/// A translation as the program finds it in its folder: made of pairs of source text and text, all of one context.
inline bool writeTranslationFile(const QString &path, const QByteArray &context, const QMap<QByteArray, QString> &texts)
{
    const auto hashOf = [](const QByteArray &text) {
        quint32 hash = 0;
        for (const char letter : text) {
            hash = (hash << 4) + uchar(letter);
            if (const quint32 high = hash & 0xf0000000)
                hash = (hash ^ (high >> 24)) & ~high;
        }
        return hash ? hash : 1;
    };
    enum Tag : quint8 { End = 1, Translation = 3, SourceText = 6, Context = 7, Hashes = 0x42, Messages = 0x69 };
    QByteArray messages;
    QDataStream message(&messages, QIODevice::WriteOnly);
    QMap<quint32, quint32> places;
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        places.insert(hashOf(text.key()), quint32(messages.size()));
        // Strings and byte arrays stream as this format has them: a length, then the letters.
        message << quint8(Translation) << text.value() << quint8(SourceText) << text.key() << quint8(Context) << context
                << quint8(End);
    }
    QByteArray hashes;
    QDataStream table(&hashes, QIODevice::WriteOnly);
    for (auto place = places.begin(); place != places.end(); ++place)
        table << place.key() << place.value();

    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd"));
    QDataStream stream(&file);
    stream << quint8(Hashes) << hashes << quint8(Messages) << messages;
    return true;
}
