#include "ryhost/start/HostVersion.h"

QString hostVersion()
{
    return QStringLiteral(RY_VERSION);
}
