#include "pluginsource/RyJointTools/operations/bakePose.h"

#include "pluginsource/RyJointTools/operations/RyBakedBones.h"
#include "pluginsource/RyJointTools/operations/RyHeldValues.h"

#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/skin/RySkinBinding.h"

namespace {

/// What a shape becomes: its mesh as it is drawn, without the morphs, which are turned with their vertices.
struct BakedShape
{
    std::vector<RyVec3> positions;
    std::vector<std::vector<RyVec3>> deltas; // of each morph

    /// False where the skin refuses.
    bool take(const RyFacetShape &shape, RySkinBinding &skin)
    {
        const bool hasMorphs = !shape.getMorphs().empty();
        std::vector<RyMatrix3> linear;
        if (!skin.deformBase(shape.getCurrentPositions(), positions, hasMorphs ? &linear : nullptr))
            return false;
        for (const RyMorph *morph : shape.getMorphs()) {
            std::vector<RyVec3> turned;
            for (size_t i = 0; i < morph->vertices().size(); ++i) {
                const auto vertex = size_t(morph->vertices()[i]);
                turned.push_back(vertex < linear.size() ? linear[vertex].multVec(morph->deltas()[i])
                                                        : morph->deltas()[i]);
                if (vertex < positions.size())
                    positions[vertex] -= turned.back() * morph->shownValue();
            }
            deltas.push_back(std::move(turned));
        }
        if (hasMorphs)
            keepUnmoved(shape, linear);
        return true;
    }

    /// What no bone moves stays to the bit, whatever its morphs show.
    void keepUnmoved(const RyFacetShape &shape, const std::vector<RyMatrix3> &linear)
    {
        const std::vector<RyVec3> &base = shape.getBasePositions();
        const float noise = 1e-6f;
        for (size_t vertex = 0; vertex < positions.size(); ++vertex) {
            const float slack = noise * (1.0f + base[vertex].length());
            if (linear[vertex] == RyMatrix3() && (positions[vertex] - base[vertex]).length() < slack)
                positions[vertex] = base[vertex];
        }
    }

    void install(RyFacetShape &shape)
    {
        if (positions == shape.getBasePositions())
            return;
        const RyRef<RyFacetMesh> mesh(shape.getFacetMesh()->copy());
        mesh->setPositions(std::move(positions));
        shape.setFacetMesh(mesh.get());
        for (size_t i = 0; i < deltas.size(); ++i)
            shape.getMorphs()[i]->setDeltas(std::move(deltas[i]));
    }
};

/// What hangs on bones and is none, with where it stands in the world.
class HungNodes
{
public:
    explicit HungNodes(const std::vector<RyBone *> &bones)
    {
        for (const RyBone *bone : bones) {
            for (RyNode *child : bone->nodeChildrenIterator()) {
                if (!qobject_cast<const RyBone *>(child))
                    m_nodes.push_back({child, child->worldMap()});
            }
        }
    }

    /// Puts them back there, as far as their pose controls can say it.
    void restore() const
    {
        for (const Hung &hung : m_nodes) {
            const RyAffine local = hung.world * hung.node->getNodeParent()->worldMap().inverse();
            const RyVec3 origin = hung.node->getOrigin();
            RyAffine stretch;
            RyQuat turn;
            local.decomposePolar(stretch, turn);
            RyMatrix3 scale;
            for (int row = 0; row < 3; ++row) {
                for (int column = 0; column < 3; ++column)
                    scale[row][column] = float(stretch.m[row][column]);
            }
            hung.node->adjustLocalTransform(local.mapPoint(origin) - origin, turn, scale, 1.0f);
        }
    }

private:
    struct Hung
    {
        RyNode *node;
        RyAffine world;
    };
    std::vector<Hung> m_nodes;
};

} // namespace

bool bakePose(RyFigure *figure)
{
    RySkinBinding *skin = figure ? figure->getSkinBinding() : nullptr;
    auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure));
    if (!skin || !shape || !shape->getFacetMesh())
        return false;
    const RyBakedBones bones(*figure);
    if (!bones.areConnected())
        return false;
    if (!bones.isPosed())
        return true;
    BakedShape baked;
    if (!baked.take(*shape, *skin))
        return false;
    RyHeldValues values;
    bones.hold(values);
    values.addControlledBy(bones.bones());
    const HungNodes hung(bones.bones());
    const RyExactRiggingEdit edit;
    baked.install(*shape);
    bones.apply();
    values.apply();
    hung.restore();
    return true;
}
