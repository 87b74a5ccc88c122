#pragma once

#include "rycore/io/gltf/extras/RyGltfNodeIndex.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/save/RyGltfByNode.h"
#include "rycore/scene/RyBone.h"

#include <QStringList>

#include <map>
#include <set>
#include <vector>

/// What the parts of a writer share while they bring an edited scene into a copy of its document.
struct RyGltfScenePatch
{
    /// A node of the file, or one made for this patch, that stands in the scene.
    struct Edit
    {
        const RyNode *node = nullptr;
        const RyGltfNodeSource *source = nullptr; // null for one that is new in the file
        RyAffine bind; // rest frame now: node space in file units to figure space in centimetres
        bool restChanged = false;
        bool poseChanged = false;
        bool moved = false;         // hangs on another node than in the file
        bool keepsRotation = false; // the rest frame keeps that of the file, although the orientation is another
        RyBone::Carried carried;    // of a bone, since it was read or made
        RyNodeValues now{};         // of a node of the file, from RyGltfFrameChanges on

        bool isCarried() const { return !(carried == RyBone::Carried()); }
        /// The rest frame as it would be if the rest had not been carried on.
        RyAffine uncarriedBind() const { return isCarried() ? bind * carried.map.inverse() : bind; }
        /// What edits of a node of the file are told from: a pose that became the rest is none any more.
        RyNodeValues loaded() const;
    };

    RyGltfScenePatch(const RyGltfOrigin &from, RyGltfDocument &to, QStringList *list)
        : source(from), document(to), messages(list)
    {}

    const RyGltfOrigin &source;
    RyGltfDocument &document;
    QStringList *messages;

    RyGltfByNode<Edit> edits; // by node of the patched document
    RyGltfNodeIndex nodeOf;   // nodes of the patched document
    std::vector<std::pair<const RyNode *, int>> added;
    std::set<int> removed;            // nodes of the file whose bone or prop is gone
    std::set<int> rewritten;          // nodes with another transform
    std::map<int, RyAffine> frames;   // of nodes whose own frame is another now: from that to the one in the file
    std::map<int, RyAffine> carried;  // by what the figure of topmost bones was moved, world to world in file units
    std::set<int> joints;             // of all skins, now
    std::map<int, RyAffine> toFigure; // per skin that can say so: mesh space to figure space, in units of the file

    void say(const QString &message) const
    {
        if (messages)
            messages->append(message);
    }
    /// A message with a list of names, of which only the first ones are told; none without names.
    void sayOf(const QString &message, const QStringList &names) const
    {
        if (names.isEmpty())
            return;
        constexpr int shown = 6;
        QString list = names.mid(0, shown).join(QStringLiteral(", "));
        if (names.size() > shown)
            list += QStringLiteral(" and %1 more").arg(names.size() - shown);
        say(message.arg(list));
    }
    static QString clipName(const RyGltfModel &model, size_t clip)
    {
        const QString &name = model.animationNames[clip];
        return name.isEmpty() ? QStringLiteral("animation %1").arg(clip) : name;
    }
};
