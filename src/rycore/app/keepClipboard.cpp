#include "rycore/app/keepClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

static void keep(QClipboard &clipboard, QClipboard::Mode mode)
{
    const QMimeData *data = clipboard.mimeData(mode);
    if (!data)
        return;
    auto *copy = new QMimeData;
    for (const QString &format : data->formats()) {
        const QByteArray bytes = data->data(format);
        copy->setData(QString(format.constData(), format.size()), QByteArray(bytes.constData(), bytes.size()));
    }
    clipboard.setMimeData(copy, mode);
}

void keepClipboard()
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (clipboard->ownsClipboard())
        keep(*clipboard, QClipboard::Clipboard);
    if (clipboard->ownsSelection())
        keep(*clipboard, QClipboard::Selection);
}
