#pragma once

#include <QByteArray>
#include <QStringList>

class RyScene;

/// What a batch run says of the scene: JSON with figures, bones, undo steps, selection and the messages of the run.
QByteArray batchReport(const RyScene &scene, const QStringList &messages);
