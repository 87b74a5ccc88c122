#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariantList>

class RyScene;

/// What happened in a batch run.
struct BatchEvents
{
    QStringList messages;
    QVariantList runs;   // of actions: `action`, and what RyActionResult says
    QVariantList fits;   // of parametric figures as they were saved
    QStringList written; // files, in turn
    QVariantList boxes;  // dialogs and message boxes, each with the verb `during` which it opened
};

/// What a batch run says of the scene: the text of a JSON document with figures, bones, undo steps, selection and the
/// events of the run.
QByteArray batchReport(const RyScene &scene, const BatchEvents &events);
