#pragma once

#include "ryforeign/RyForeignInput.h"

struct aiMesh;
struct aiNode;

/// Which morphs the meshes of a node have, each once, in the order in which they become targets, and which shapes of
/// the importers' library they are.
class RyForeignMorphPlan
{
public:
    struct Morph
    {
        QString name; // no other has it
        double value = 0.0;
    };

    RyForeignMorphPlan(const RyForeignInput &input, const aiNode &node);

    std::vector<Morph> morphs;
    int inBetweens = 0; // shapes that stand on the way to others
    int repeated = 0;   // morphs that got a number to tell them apart

    /// Of the node's mesh with this number; -1 where it lacks the morph.
    int shapeOf(unsigned mesh, size_t morph) const;
    /// What a clip calls after the number of a geometry and of a channel; -1 for none.
    int morphOf(unsigned geometry, unsigned channel) const;

private:
    unsigned geometryOf(const aiMesh &mesh, RyForeignInput::Channels &channels) const;
    int morphNamed(const QString &name, int occurrence, double value);

    const RyForeignInput &m_input;
    const std::vector<RyForeignInput::Channels> m_known;
    QHash<QString, int> m_places; // by names and how many of them came before
    std::vector<std::vector<int>> m_shapes, m_morphs;
};
