#include "ryhost/batch/BatchEdits.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/clips/RyClipLookup.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/batch/BatchStep.h"
#include "ryhost/batch/batchMistake.h"

bool BatchEdits::select(RyScene &scene, const QString &names, QString *error)
{
    const QString verb = QStringLiteral("--select: ");
    std::vector<RyNode *> nodes;
    if (names != QLatin1String("none")) {
        // A name that holds a comma is tried as it stands first.
        QString reason;
        if (RyNode *whole = RyNodeLookup::findNode(scene, names, &reason)) {
            nodes.push_back(whole);
        } else if (!names.contains(QLatin1Char(','))) {
            return batchMistake(error, verb + reason);
        } else {
            for (const QString &name : names.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
                RyNode *node = RyNodeLookup::findNode(scene, name.trimmed(), &reason);
                if (!node)
                    return batchMistake(error, verb + reason);
                nodes.push_back(node);
            }
            if (nodes.empty())
                return batchMistake(error,
                                    verb + QStringLiteral("\"%1\" names no node; \"none\" selects none").arg(names));
        }
    }
    scene.setSelection(nodes);
    return true;
}

bool BatchEdits::writeValue(RyScene &scene, const BatchStep &step, QString *error)
{
    const bool poseOnly = step.verb == BatchStep::Pose;
    QString reason;
    float value = 0.0f;
    RyFloatProperty *property = RyNodeLookup::findProperty(scene, step.value, poseOnly, &value, &reason);
    if (!property || !RyNodeLookup::canBecome(*property, value, &reason))
        return batchMistake(error, (poseOnly ? QStringLiteral("--pose: ") : QStringLiteral("--property: ")) + reason);
    RyUndoStackHold hold;
    property->adjustValue(value);
    hold.accept(QStringLiteral("Change %1").arg(property->getLabel()));
    return true;
}

bool BatchEdits::showClip(RyScene &scene, const BatchStep &step, QString *error)
{
    QString reason;
    const auto clip =
        step.value == QLatin1String("none") ? nullptr : RyClipLookup::findClip(scene, step.value, &reason);
    if (!reason.isEmpty())
        return batchMistake(error, QStringLiteral("--clip: ") + reason);
    scene.getClipPlayer()->show(clip, clip ? step.time.value_or(clip->start()) : 0.0);
    return true;
}

bool BatchEdits::undo(bool merged, QString *error)
{
    if (!ryUndoStack()->canUndo()) {
        return batchMistake(error, merged ? QStringLiteral("--undo: there is nothing to undo; --merge makes no step")
                                          : QStringLiteral("--undo: there is nothing to undo"));
    }
    ryUndoStack()->undo();
    return true;
}

bool BatchEdits::redo(QString *error)
{
    if (!ryUndoStack()->canRedo())
        return batchMistake(error, QStringLiteral("--redo: there is nothing to redo"));
    ryUndoStack()->redo();
    return true;
}
