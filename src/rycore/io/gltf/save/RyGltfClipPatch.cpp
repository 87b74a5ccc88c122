#include "rycore/io/gltf/save/RyGltfClipPatch.h"

#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/io/gltf/save/RyGltfChannelRemoval.h"
#include "rycore/io/gltf/save/RyGltfClipRewriter.h"

#include <algorithm>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

bool RyGltfClipPatch::apply(QString *error)
{
    if (!reexpress(error))
        return false;
    drop();
    return true;
}

bool RyGltfClipPatch::reexpress(QString *error) const
{
    if (m_clips.clips().empty()) {
        reportKept();
        return true;
    }
    const std::vector<RyGltfClipChange> changes = RyGltfClipRewriter(m_patch, m_clips).rewrite();
    return RyGltfClipWriter(m_patch.document, m_clips).write(changes, error);
}

/// Names the clips that were left as they are although they drive joints of another rest, or below such.
void RyGltfClipPatch::reportKept() const
{
    const RyGltfModel &model = m_patch.source.document->model();
    QStringList names;
    for (size_t clip = 0; clip < model.animatedNodes.size(); ++clip) {
        const auto isOther = [&](int node) {
            const auto edit = m_patch.edits.find(node);
            return m_patch.frames.count(node) || m_patch.frames.count(model.nodes[size_t(node)].parent) ||
                   (edit != m_patch.edits.end() && edit->second.moved);
        };
        if (std::any_of(model.animatedNodes[clip].begin(), model.animatedNodes[clip].end(), isOther))
            names.append(RyGltfScenePatch::clipName(model, clip));
    }
    m_patch.sayOf(QStringLiteral("Clips were written as they were and say the old rest of edited joints: %1"), names);
}

void RyGltfClipPatch::drop()
{
    findGone();
    if (m_gone.empty())
        return;
    RyGltfChannelRemoval removal(m_patch);
    removal.apply([this](const Json &target) { return isGone(target); });
    m_patch.sayOf(QStringLiteral("Channels of removed joints were taken out of the clips: %1"), removal.shortened());
    m_patch.sayOf(QStringLiteral("Clips that drove nothing but removed joints are gone with them: %1"), removal.left());
}

void RyGltfClipPatch::findGone()
{
    const RyGltfModel &model = m_patch.document.model();
    for (const int node : m_patch.removed) {
        int top = node;
        while (model.nodes[size_t(top)].parent >= 0)
            top = model.nodes[size_t(top)].parent;
        if (RyTreeExtras::isRemoved(m_patch.document, "nodes", top))
            m_gone.insert(node);
    }
}

bool RyGltfClipPatch::isGone(const Json &target) const
{
    if (const Json *node = find(target, "node")) {
        if (!RyGltfReferences::isIndex(*node) || m_gone.count(node->get<int>()) == 0)
            return false;
        // Those of morphs follow their mesh.
        const std::vector<RyGltfFigureSource> &figures = m_patch.source.figures;
        const Json *path = find(target, "path");
        return !path || *path != "weights" ||
               std::none_of(figures.begin(), figures.end(),
                            [&](const RyGltfFigureSource &each) { return each.hasMorphsOf(node->get<int>()); });
    }
    const auto pointed = ryGltfPointedNode(target);
    return pointed && m_gone.count(pointed->first) > 0;
}
