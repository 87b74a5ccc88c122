#include "ryforeign/RyForeignMorphPlan.h"

#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

namespace {

QString nameOf(const aiMesh &mesh, unsigned shape)
{
    const QString name = ryForeignText(mesh.mAnimMeshes[shape]->mName);
    return name.isEmpty() ? QStringLiteral("Morph %1").arg(shape + 1) : name;
}

} // namespace

RyForeignMorphPlan::RyForeignMorphPlan(const RyForeignInput &input, const aiNode &node)
    : m_input(input), m_known(input.channelsOf.value(ryForeignText(node.mName)))
{
    for (unsigned m = 0; m < node.mNumMeshes; ++m) {
        const aiMesh &mesh = *input.scene->mMeshes[node.mMeshes[m]];
        RyForeignInput::Channels channels;
        const unsigned geometry = geometryOf(mesh, channels);
        m_shapes.emplace_back();
        m_morphs.resize(std::max(m_morphs.size(), size_t(geometry) + 1));
        std::vector<int> &morphOfChannel = m_morphs[geometry];
        morphOfChannel.assign(channels.size(), -1);
        QHash<QString, int> occurrences;
        int shape = -1; // the last of the channel
        int between = 0;
        for (size_t channel = 0; channel < channels.size(); ++channel) {
            if (channels[channel].shapes == 0)
                continue;
            shape += channels[channel].shapes;
            between += channels[channel].shapes - 1;
            const QString name = nameOf(mesh, unsigned(shape));
            const int place = morphNamed(name, ++occurrences[name], channels[channel].value);
            morphOfChannel[channel] = place;
            m_shapes.back().resize(std::max(m_shapes.back().size(), size_t(place) + 1), -1);
            m_shapes.back()[size_t(place)] = shape;
        }
        inBetweens = std::max(inBetweens, between); // the parts of a mesh have the same
    }
}

/// Number of the geometry that a mesh comes from, and its channels.
unsigned RyForeignMorphPlan::geometryOf(const aiMesh &mesh, RyForeignInput::Channels &channels) const
{
    for (size_t geometry = 0; geometry < m_known.size(); ++geometry) {
        unsigned count = 0;
        for (const RyForeignInput::Channel &channel : m_known[geometry])
            count += unsigned(channel.shapes);
        if (count == mesh.mNumAnimMeshes && count > 0) {
            channels = m_known[geometry];
            return unsigned(geometry);
        }
    }
    for (unsigned shape = 0; shape < mesh.mNumAnimMeshes; ++shape) {
        const double weight = double(mesh.mAnimMeshes[shape]->mWeight);
        // Of FBX the importers' library says 1 of every morph that is alone in its channel.
        const bool isSaid = m_input.kind == RyForeignInput::Collada && std::isfinite(weight);
        // All shapes of a channel have its name.
        const bool isSame = m_input.kind == RyForeignInput::Fbx && shape > 0 &&
                            mesh.mAnimMeshes[shape]->mName.length > 0 &&
                            mesh.mAnimMeshes[shape]->mName == mesh.mAnimMeshes[shape - 1]->mName;
        if (isSame)
            ++channels.back().shapes;
        else
            channels.push_back({isSaid ? weight : 0.0, 1});
    }
    return 0;
}

int RyForeignMorphPlan::morphNamed(const QString &name, int occurrence, double value)
{
    const QString key = QStringLiteral("%1*%2").arg(occurrence).arg(name);
    if (const auto known = m_places.constFind(key); known != m_places.cend())
        return *known;
    const auto isTaken = [this](const QString &tried) {
        return std::any_of(morphs.begin(), morphs.end(), [&](const Morph &each) { return each.name == tried; });
    };
    QString own = name;
    for (int number = std::max(occurrence, 2); isTaken(own); ++number)
        own = name + QString::number(number);
    repeated += own != name;
    m_places.insert(key, int(morphs.size()));
    morphs.push_back({own, value});
    return int(morphs.size()) - 1;
}

int RyForeignMorphPlan::shapeOf(unsigned mesh, size_t morph) const
{
    return mesh < m_shapes.size() && morph < m_shapes[mesh].size() ? m_shapes[mesh][morph] : -1;
}

int RyForeignMorphPlan::morphOf(unsigned geometry, unsigned channel) const
{
    return geometry < m_morphs.size() && channel < m_morphs[geometry].size() ? m_morphs[geometry][channel] : -1;
}
