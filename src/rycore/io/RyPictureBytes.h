#pragma once

#include <QByteArray>
#include <QString>

struct RyMaterialLook;

/// The look's texture as a PNG or JPEG file: its own bytes where they are one. Empty without a texture.
QByteArray ryPictureBytes(const RyMaterialLook &look, QString *mimeType);
