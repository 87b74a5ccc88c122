#pragma once

#include "rycore/scene/RyNode.h"
#include "rycore/scene/clips/RyClip.h"
#include "rycore/script/prototypes/RyScriptPrototype.h"

/// The scene in scripts, beside its own slots.
class RyScenePrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyScenePrototype(QObject *parent) : RyScriptPrototype(parent) {}

    /// The node of a name or the end of a path ("hip/abdomen"). Throws when there is none or more than one.
    Q_INVOKABLE RyNode *find(const QString &nameOrPath) const;
    /// Arrays: all nodes, each before its children; those without a parent; skeletons; the selection, primary last.
    Q_INVOKABLE QScriptValue getNodes() const;
    Q_INVOKABLE QScriptValue getTopLevelNodes() const;
    Q_INVOKABLE QScriptValue getSkeletons() const;
    Q_INVOKABLE QScriptValue getSelectedNodes() const;
    /// Takes an array of nodes, names and paths; the last is primary.
    Q_INVOKABLE void setSelection(const QScriptValue &nodes) const;
    /// Array of clips, each with `name`, `figures` (or props that it moves), `start` and `end` in seconds.
    Q_INVOKABLE QScriptValue getClips() const;
    /// Shows a clip, "FIGURE/NAME" or "FIGURE/NUMBER" from 1, at its first key or a time in seconds. It stands still
    /// until the next edit. Throws where none or more than one is meant.
    Q_INVOKABLE void showClip(const QString &figureAndName) const;
    Q_INVOKABLE void showClip(const QString &figureAndName, double seconds) const;
    /// The clip that shows as `getClips` gives it, with its `time`; null without one.
    Q_INVOKABLE QScriptValue getShownClip() const;
    /// Another time of the clip that shows. Throws without one.
    Q_INVOKABLE void setClipTime(double seconds) const;
    /// Puts the clip away.
    Q_INVOKABLE void stopClip() const;
    /// See RySymmetricEditing.
    Q_INVOKABLE bool isSymmetricEditing() const;
    Q_INVOKABLE void setSymmetricEditing(bool onOff) const;
    /// The name itself, or with a number where a top-level node has it.
    Q_INVOKABLE QString getUniqueTopLevelName(const QString &name) const;
    /// A canonical text of the scene: equal texts, equal scenes.
    Q_INVOKABLE QString dump() const;

private:
    QScriptValue clipObject(const RyClip &clip) const;
    std::shared_ptr<const RyClip> findClip(const QString &text) const;
};
