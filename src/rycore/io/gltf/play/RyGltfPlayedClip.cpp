#include "rycore/io/gltf/play/RyGltfPlayedClip.h"

#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/play/RyGltfPlayedMotion.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <limits>

RyGltfPlayedClip::RyGltfPlayedClip(const std::shared_ptr<const RyGltfOrigin> &origin,
                                   std::shared_ptr<const RyGltfClips> clips, size_t index)
    : m_origin(origin), m_document(origin->document), m_clips(std::move(clips)), m_index(index)
{
    m_morphs = RyGltfDrivenMorph::allOf(*origin, *m_clips, clip());
    findMoved(*origin);
}

/// What stands otherwise than by its pose relative to what it hangs on, where a bone hangs on its figure: nodes that
/// are driven, or that hang in the file on such between; and all bones of a figure with one such bone.
void RyGltfPlayedClip::findMoved(const RyGltfOrigin &origin)
{
    const RyGltfModel &model = origin.document->model();
    std::vector<int> drivenAbove(model.nodes.size(), 0); // how many nodes, the node itself included
    for (const RyGltfChannel &channel : clip().channels)
        drivenAbove[size_t(channel.node)] = 1;
    for (const int node : ryGltfPreOrder(model)) {
        if (model.nodes[size_t(node)].parent >= 0)
            drivenAbove[size_t(node)] += drivenAbove[size_t(model.nodes[size_t(node)].parent)];
    }
    const auto isDriven = [&](int node, int above) {
        return drivenAbove[size_t(node)] > (above >= 0 ? drivenAbove[size_t(above)] : 0);
    };
    std::vector<int> carriers(origin.figures.size(), -1);
    for (size_t i = 0; i < carriers.size(); ++i) {
        const RyGltfNodeSource *carrier = origin.findSource(origin.figures[i].sceneNode);
        if (carrier && qobject_cast<RySkeleton *>(origin.figures[i].sceneNode))
            carriers[i] = carrier->node;
    }
    std::vector<bool> moves(origin.figures.size(), false);
    for (const RyGltfNodeSource &source : origin.nodes) {
        if (source.isBone && isDriven(source.node, carriers[size_t(source.figure)]))
            moves[size_t(source.figure)] = true;
    }
    for (size_t i = 0; i < origin.nodes.size(); ++i) {
        const RyGltfNodeSource &source = origin.nodes[i];
        if (source.isBone ? moves[size_t(source.figure)]
                          : model.nodes[size_t(source.node)].skin < 0 && isDriven(source.node, source.parent))
            m_moved.push_back(int(i));
    }
}

std::vector<RyNode *> RyGltfPlayedClip::subjects(const RyScene &scene) const
{
    const auto origin = m_origin.lock();
    std::vector<RyNode *> figures, props;
    for (size_t i = 0; origin && i < m_moved.size(); ++i) {
        RyNode *node = origin->nodes[size_t(m_moved[i])].sceneNode;
        if (!node || node->getScene() != &scene)
            continue;
        RyNode *figure = qobject_cast<RySkeleton *>(node) || origin->nodes[size_t(m_moved[i])].isBone
                             ? static_cast<RyNode *>(node->getSkeleton())
                             : nullptr;
        std::vector<RyNode *> &list = figure ? figures : props;
        if (std::find(list.begin(), list.end(), figure ? figure : node) == list.end())
            list.push_back(figure ? figure : node);
    }
    for (const RyGltfDrivenMorph &driven : m_morphs) {
        RyNode *node = driven.morph ? driven.morph->getNode() : nullptr;
        std::vector<RyNode *> &list = qobject_cast<RySkeleton *>(node) ? figures : props;
        if (node && node->getScene() == &scene && std::find(list.begin(), list.end(), node) == list.end())
            list.push_back(node);
    }
    return figures.empty() ? props : figures;
}

std::unique_ptr<RyClipMotion> RyGltfPlayedClip::prepare(const RyScene &scene) const
{
    const auto origin = m_origin.lock();
    return origin ? std::make_unique<RyGltfPlayedMotion>(*origin, *m_clips, clip(), m_moved, m_morphs, scene) : nullptr;
}

std::pair<double, double> RyGltfPlayedClip::span() const
{
    if (!m_span) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        m_span = {infinity, -infinity};
        const auto include = [this](const RyGltfCurve &curve) {
            m_span->first = std::min(m_span->first, double(curve.times.front()));
            m_span->second = std::max(m_span->second, double(curve.times.back()));
        };
        for (const RyGltfChannel &channel : clip().channels) {
            if (const auto curve = m_clips->curve(channel.sampler, channel.path))
                include(*curve);
        }
        for (const RyGltfDrivenMorph &driven : m_morphs)
            include(*driven.curve);
    }
    return *m_span;
}

RySceneOrigin::Clips RyGltfPlayedClip::allOf(const std::shared_ptr<const RyGltfOrigin> &origin)
{
    const auto clips = std::make_shared<const RyGltfClips>(*origin->document);
    RySceneOrigin::Clips result;
    for (size_t i = 0; i < clips->clips().size(); ++i) {
        auto clip = std::make_shared<const RyGltfPlayedClip>(origin, clips, i);
        if (clip->length() >= 0.0) // without a key the start is behind the end
            result.push_back(std::move(clip));
    }
    return result;
}
