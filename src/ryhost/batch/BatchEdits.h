#pragma once

#include <QString>

class RyScene;
struct BatchStep;

/// Verbs of a batch run that change what the scene shows. False with a message that begins with the verb.
namespace BatchEdits {

bool select(RyScene &scene, const QString &names, QString *error);
/// Of a --property, or of a --pose, which takes pose controls alone.
bool writeValue(RyScene &scene, const BatchStep &step, QString *error);
bool showClip(RyScene &scene, const BatchStep &step, QString *error);
/// `merged`: a file was merged before, which leaves no step.
bool undo(bool merged, QString *error);
bool redo(QString *error);

} // namespace BatchEdits
