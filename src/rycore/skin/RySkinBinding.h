#pragma once

#include "rycore/base/RyPointerTable.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBulges.h"
#include "rycore/skin/RySkinDeformer.h"

class RyNode;
class RyShapeNormals;
class RySkeleton;

/// Moves the vertices of a figure's shape with its bones: a linear blend by weight maps. Edits are undoable where a
/// hold is open.
///
/// With X the full map of a bone relative to the figure and w its weight, a vertex v goes to v + sum of w * (v X - v):
/// where the weights add up to 1 that is the weighted mean of the images, and whatever they leave free stays at rest.
///
/// A binding with local maps splits its map into stages: X0 moves with the parent and by the bone's own translation,
/// then the rotation about the third, second and first axis of the rotation order join in turn, at last the scale. Each
/// stage adds its share (the difference to the stage before), weighted by that axis' map and by the scale map; X0 - 1
/// is weighted by the mean of the three local maps. Equal maps therefore give what one general map gives.
///
/// Bones with bulges push vertices before that (see RySkinBulges): v is then the pushed vertex, and its weights stay
/// what they are.
///
/// Normals are carried along by the same sums, with the map of normals (see RyNormalMap) of X and of each stage.
class RySkinBinding : public RyModifier
{
    Q_OBJECT
public:
    RySkinBinding();
    ~RySkinBinding() override;

    /// The skin of the object of the node's skeleton; null without one and for null.
    static RySkinBinding *findSkinFromNode(const RyNode *node);
    /// The second argument is not used.
    static RySkinBinding *findSkin(const RySkeleton *skeleton, const void *unused = nullptr);

    // --- Bindings, in the order in which they were added.
    /// False for null and for a binding that is in a skin. Takes ownership.
    bool addBoneBinding(RyBoneBinding *binding);
    /// The binding is deleted unless something else (an undo step) holds it.
    bool removeBoneBinding(RyBoneBinding *binding);
    /// The first binding of exactly that bone; null without one and for null.
    RyBoneBinding *findBoneBinding(const RyNode *bone) const;
    int getNumBoneBindings() const { return int(m_bindings.size()); }
    const std::vector<RyBoneBinding *> &bindings() const { return m_bindings; }
    /// A copy of the list: stable against changes during a walk.
    std::vector<RyBoneBinding *> boneBindingIterator() const { return m_bindings; }

    /// Any binding has a local (a general) map, or the skin was declared to be of that kind.
    bool hasLocalMaps() const;
    bool hasGeneralMaps() const;
    /// What kinds of maps new bindings shall get while no binding has maps. Undoable where a hold is open.
    void setMapKinds(bool local, bool general);

    // --- Weights.
    enum WeightType {
        GeneralWeights = 1,
        LocalXWeights = 2,
        LocalYWeights = 4,
        LocalZWeights = 8,
        ScaleWeights = 16,
        AllWeights = 31
    };
    /// For each kind of map in `types`, each vertex whose weights have a sum above 0 and other than full weight gets
    /// them scaled to that sum; the rounding rest goes to its largest weight (the first binding on ties). `priority` 0:
    /// all bindings weigh equally, which is all there is. `restricted` would leave locked weights alone; there are
    /// none.
    void normalize(int priority, int types, bool restricted);
    /// Packs the maps; nothing that can be observed changes.
    void reduceWeightMemory();
    /// The option that takes the mean of the three local maps where a binding has no general map.
    static constexpr int AverageLocalMaps = 54;
    /// The bindings and, in step with them, a general map of each. A binding without a map that serves is listed
    /// without one, so that the two counts differ. Means are new maps; the list keeps them alive.
    void buildGeneralWeightMaps(std::vector<RyRef<RyWeightMap>> &maps, std::vector<RyBoneBinding *> &bindings,
                                int option) const;

    /// False when a map is for another number of vertices.
    bool deform(RyShapePoints &points) override;
    /// Where the present pose brings such positions, one for each vertex. `linear` gets the linear part of the map of
    /// each vertex, for what lies apart from it (bulges left aside). False as for `deform`, and nothing is done.
    bool deformBase(const std::vector<RyVec3> &positions, std::vector<RyVec3> &deformed,
                    std::vector<RyMatrix3> *linear = nullptr);
    std::vector<const RyElement *> parts() const override;
    /// Of each binding, in their order.
    std::vector<RyNode *> bones() const override;
    /// The strongest one.
    RyVertexBones vertexBones(int vertexCount) const override;
    std::vector<quint64> vertexBonesKey() const override;
    /// The flat arrays behind `deform`, with counters of what it did.
    const RySkinDeformer &deformer() const { return m_deformer; }
    /// What comes before the blend, with counters likewise.
    const RySkinBulges &bulges() const { return m_bulges; }

signals:
    /// Bindings, maps or weights changed; once per outermost edit of the skin, where one is open.
    void skinChanged();

protected:
    void editBegun() override { m_touched = false; }
    void editFinished() override;
    /// Maps and bindings have snapshots of their own; what was changed stays.
    void editCancelled() override { editFinished(); }

private slots:
    void announce();

private:
    friend class RyBoneBinding;
    struct BindingList;
    struct MapKindsValue;
    void insertBinding(RyBoneBinding *binding, int index);
    void takeBinding(RyBoneBinding *binding, int index);
    /// Finds the binding by its bone from here on.
    void indexBone(RyBoneBinding *binding);
    void dropBone(RyBoneBinding *binding);
    std::vector<quint64> weightsKey() const;
    bool updateInfluences(int vertexCount);
    void updateFurtherNormals(const RyShapeNormals *places);
    void updateMaps();
    std::vector<RyMatrix3> linearParts(size_t vertexCount) const;

    /// What the maps of one binding were computed from.
    struct MapSource
    {
        const RyBone *bone = nullptr;
        quint64 revision = 0;
        int firstChannel = 0;
        bool local = false;
    };
    std::vector<RyBoneBinding *> m_bindings; // each counted once
    RyPointerTable<RyBoneBinding *> m_bindingsOfBones;
    quint64 m_listRevision = 1;
    bool m_localKind = false;
    bool m_generalKind = false;
    bool m_touched = false; // within an edit
    RySkinBulges m_bulges;
    RySkinDeformer m_deformer;
    std::vector<quint64> m_influencesKey;
    quint64 m_furtherNormals = 0; // layout revision of those that the deformer has
    std::vector<MapSource> m_mapSources;
    std::vector<RyAffine> m_maps;       // one per channel of the deformer
    std::vector<RyAffine> m_normalMaps; // one per channel
};
