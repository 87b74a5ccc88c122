#pragma once

#include "rycore/base/RyError.h"
#include "rycore/math/RyTime.h"
#include "rycore/scene/RyRiggingEdits.h"
#include "rycore/scene/RySceneOrigin.h"

#include <QObject>
#include <QPointer>
#include <QSet>

#include <memory>
#include <vector>

class RyClipPlayer;
class RyNode;
class RyRestoreKeeper;
class RySkeleton;

/// The scene: all nodes, the selection (an ordered list whose last node is primary), time, and the file it came
/// from.
class RyScene : public QObject
{
    Q_OBJECT
public:
    explicit RyScene(QObject *parent = nullptr);
    ~RyScene() override;

    // --- Nodes.
    /// Registers the node and its subtree; does not touch its parent, so it goes in any order with addNodeChild.
    Q_INVOKABLE RyError addNode(RyNode *node);
    /// Emits the node's aboutToBeRemoved before anything else, deselects, detaches; its children go with it. An unknown
    /// node gives an error.
    Q_INVOKABLE RyError removeNode(RyNode *node);
    /// All registered nodes in order of registration.
    const std::vector<RyNode *> &getNodes() const { return m_nodes; }
    /// Those without a parent.
    std::vector<RyNode *> getTopLevelNodes() const;
    /// Top-level nodes each followed by their subtrees in pre-order.
    std::vector<RyNode *> getNodesInTreeOrder() const;
    std::vector<RySkeleton *> getSkeletons() const;
    Q_INVOKABLE RyNode *findNode(const QString &name) const;
    /// Removes everything, the origin included, ends all rig edits and drops all restore points. The undo history is
    /// the caller's.
    void clear();

    // --- Rig edits.
    /// Opens a rig edit: work that places many bones and means each value as it writes it. They nest. While one is open
    ///  - tools only note that points change. They carry nothing on to what hangs below, snap and align nothing, and
    ///    make up for none of it afterwards: the next change is followed from where the work left the points;
    ///  - nodes put `riggingChanged` off. Each whose rigging changed emits it once, when the outermost edit has ended.
    /// Everything else is told at once as ever: values, poses, what is drawn. Undo is no part of it: a hold that is
    /// open around the edit also takes what listeners write at its end.
    ///
    /// One that is never finished leaves tools and nodes like that until `clear` ends it. `RyRiggingEdit` cannot forget
    /// to; scripts have no access for that reason.
    void beginRiggingEdit() { m_riggingEdits.begin(); }
    /// Nothing without a begin.
    void finishRiggingEdit() { m_riggingEdits.finish(); }
    bool isInRiggingEdit() const { return m_riggingEdits.isOpen(); }

    // --- Selection.
    Q_INVOKABLE RyNode *getPrimarySelection() const;
    /// In order of selection; a copy, stable against changes during the walk.
    std::vector<RyNode *> selectedNodeListIterator() const { return m_selection; }
    Q_INVOKABLE int getNumSelectedNodes() const { return int(m_selection.size()); }
    Q_INVOKABLE void selectAllNodes(bool onOff);
    /// Replaces the selection in one go; the last one is primary.
    void setSelection(const std::vector<RyNode *> &nodes);
    bool isSelected(const RyNode *node) const;

    RyTime getTime() const { return m_time; }
    void setTime(const RyTime &time);

    // --- Names.
    /// Trailing ASCII digits; empty when there are none or the whole text is digits.
    static QString getNameNumber(const QString &name);
    /// The text without them and without trailing blanks.
    static QString stripNameNumber(const QString &name);
    /// The same, also without an enclosing pair of parentheses: "Bone (3)" gives "Bone".
    static QString stripLabelNumber(const QString &label);
    /// Unique among the top-level nodes; a free text comes back unchanged. `ignore` does not count as taken.
    static QString getUniqueTopLevelName(const QString &name, const RyNode *ignore = nullptr);
    static QString getUniqueTopLevelLabel(const QString &label, const RyNode *ignore = nullptr);

    /// The file that the scene came from, with what the scene does not hold; null for a scene made here.
    RySceneOrigin *getOrigin() const { return m_origins.empty() ? nullptr : m_origins.front().get(); }
    /// All files that came into the scene, in the order in which they came; those too of which nothing is left.
    using Origins = std::vector<std::shared_ptr<RySceneOrigin>>;
    const Origins &getOrigins() const { return m_origins; }
    void addOrigin(std::shared_ptr<RySceneOrigin> origin);
    /// Shared, for restore points bring them back.
    void setOrigins(Origins origins);

    /// Those of all files, in their order, that move something in the scene.
    using Clips = RySceneOrigin::Clips;
    Clips getClips() const;
    RyClipPlayer *getClipPlayer() const { return m_player.get(); }

signals:
    void primarySelectionChanged(RyNode *node);
    void nodeSelectionListChanged();
    void nodeListChanged();
    void nodeAdded(RyNode *node);
    void nodeRemoved(RyNode *node);
    /// Something that is drawn changed: rigging, pose, visibility, meshes. Not coalesced.
    void drawnDataChanged();
    void timeChanged();
    void originChanged();

private:
    friend class RyNode;
    friend class RyRiggingEdit;
    struct NodeList;
    void registerNode(RyNode *node, int index);
    /// `expected`: where it most likely stands.
    void unregisterNode(RyNode *node, int expected = -1);
    void selectNode(RyNode *node, bool onOff);
    void changeSelection(std::vector<RyNode *> selection);

    std::vector<RyNode *> m_nodes; // each counted once
    std::vector<RyNode *> m_selection;
    QSet<const RyNode *> m_selected; // the same
    RyTime m_time;
    Origins m_origins;
    RyRiggingEdits m_riggingEdits;
    std::unique_ptr<RyRestoreKeeper> m_keeper;
    std::unique_ptr<RyClipPlayer> m_player;
};

/// The application's scene, made at first use.
RyScene *ryScene();
/// Deletes it; must come before the QCoreApplication goes.
void ryDestroyScene();
