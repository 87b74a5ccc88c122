#include "ryhost/look/HostIcons.h"

#include "rycore/app/RyApp.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

static QColor s_color(200, 203, 208);
static QHash<QString, QIcon> s_icons;

static QString pathOf(const QString &name)
{
    return RyApp::getHomePath() + QStringLiteral("/icons/") + name + QStringLiteral(".svg");
}

bool HostIcons::exists(const QString &name)
{
    return QFileInfo::exists(pathOf(name));
}

void HostIcons::setColor(const QColor &color)
{
    s_color = color;
    s_icons.clear();
}

QIcon HostIcons::icon(const QString &name)
{
    const auto known = s_icons.constFind(name);
    if (known != s_icons.constEnd())
        return *known;
    QIcon icon;
    QFile file(pathOf(name));
    if (file.open(QIODevice::ReadOnly)) {
        QSvgRenderer drawing(file.readAll().replace("#808080", s_color.name().toLatin1()));
        for (int size : {16, 20, 24, 32, 48, 64}) {
            QPixmap pixmap(size, size);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            drawing.render(&painter);
            painter.end();
            icon.addPixmap(pixmap);
        }
    }
    s_icons.insert(name, icon);
    return icon;
}
