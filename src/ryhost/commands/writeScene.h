#pragma once

#include "rycore/io/RySceneFile.h"

class QWidget;

/// What came of writing a file.
struct WrittenScene
{
    bool done = false;
    /// What there is to say, what the format could hold and the file does not, and what an export leaves out.
    QStringList messages, losses, withoutExtras;
};

/// Writes the scene for a window: shows progress where that takes long, puts everything into the log, and says in a box
/// why it failed.
WrittenScene writeScene(RyScene *scene, QWidget *window, const QString &path, RySceneFile::SaveOptions options);
