#include "rycore/io/gltf/open/RyImageDecoder.h"

namespace {

thread_local QStringList *collected = nullptr; // of the thread that decodes
QtMessageHandler handlerBefore = nullptr;

void collect(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (collected)
        collected->append(text.trimmed());
    else if (handlerBefore)
        handlerBefore(type, context, text);
}

} // namespace

QImage RyImageDecoder::decode(const QByteArray &bytes, QStringList *words)
{
    QStringList *const outer = collected;
    collected = words;
    const QtMessageHandler before = qInstallMessageHandler(collect);
    if (before != collect)
        handlerBefore = before;
    const QImage image = QImage::fromData(bytes);
    qInstallMessageHandler(before);
    collected = outer;
    return image;
}
