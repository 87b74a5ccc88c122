#include "ryforeign/RyColladaText.h"

#include <QFile>
#include <QXmlStreamReader>

#include <cmath>

RyColladaText::RyColladaText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QXmlStreamReader reader(&file);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() == QLatin1String("unit")) {
            const double length = attributes.value(QLatin1String("meter")).toDouble();
            if (std::isfinite(length) && length > 0.0)
                metre = length;
        } else if (reader.name() == QLatin1String("node")) {
            QString id = attributes.value(QLatin1String("id")).toString();
            if (id.isEmpty())
                id = attributes.value(QLatin1String("sid")).toString();
            const QString name = attributes.value(QLatin1String("name")).toString();
            if (!id.isEmpty() && !name.isEmpty())
                nameOf.insert(id, name);
            if (!id.isEmpty() && attributes.value(QLatin1String("type")) == QLatin1String("JOINT"))
                joints.insert(id);
        }
    }
}
