#pragma once

#include "RyDrawingStage.h"

#include "parametric/ParametricScene.h"
#include "rycore/figure/RyLegacyZoneFit.h"
#include "rycore/mesh/RyWeightMap.h"

/// The stage with an untidy parametric figure whose zones are put in place, of triangles and quads, without bones and
/// borders; its left hand is the current node.
class RyWeightStage : public RyDrawingStage
{
public:
    using Color = RyGLRecorder::Color;
    struct Corner
    {
        RyVec3 world;
        Color color;
    };

    RyWeightStage()
    {
        doll.makeUntidy();
        cutSomeQuads();
        doll.makeJoints();
        for (RyBone *bone : doll.figure->getAllBones()) {
            RyLegacyZoneFit::fit(bone);
            for (RyLegacyJointParam *param : doll.joint(bone)->params()) {
                using Param = RyLegacyJointParam;
                param->setFlags(param->flags() | Param::ApplyBlend | Param::ApplyZones |
                                (param->getAxis() == 2 ? unsigned(Param::ApplyMatrices) : 0u));
            }
        }
        tool->setBoneDrawMode(RyJointEditorTool::NoBones);
        tool->setDrawMeshBoundaries(false);
        tool->setStaticColor(QColor(230, 20, 40));
        tool->setDynamicColor(QColor(10, 200, 90));
        tool->setWeightOpacity(170);
        viewport->getCamera()->lookAt(doll.lHand->getWSPos() + RyVec3(10, 30, 90), doll.lHand->getWSPos());
        select(doll.lHand);
        use(doll.lHand, "jointy");
    }
    RyLegacyJointParam *use(RyBone *bone, const char *name)
    {
        if (tool->currentNode() != bone)
            select(bone);
        RyLegacyJointParam *param = doll.param(bone, name);
        tool->setParam(param);
        return param;
    }

    /// What weights are drawn: all corners of the facets of a face group (empty for the whole mesh), triangles first.
    /// `own` alone in a drawing of lines.
    std::vector<Corner> corners(const QString &group, RyLegacyJointParam *own, bool isReversed,
                                RyLegacyJointParam *partner, bool isPartnerReversed, bool ownAlone = false) const
    {
        const RyFacetMesh &mesh = *doll.mesh();
        const std::vector<RyVec3> posed = doll.figure->getObject()->getDeformedPositions();
        const auto weightsOf = [&](RyLegacyJointParam *param) {
            std::vector<float> weights(posed.size(), 0.0f);
            const RyWeightMap *map = param ? param->getWeights(doll.figure) : nullptr;
            for (size_t v = 0; map && v < weights.size(); ++v)
                weights[v] = map->getFloatWeight(int(v));
            return weights;
        };
        const std::vector<float> owns = weightsOf(own);
        const std::vector<float> partners = weightsOf(partner);
        std::vector<Corner> corners;
        for (const bool triangles : {true, false}) {
            for (const RyFacet &facet : mesh.getFacets()) {
                if (facet.isTriangle() != triangles ||
                    (!group.isEmpty() && facet.group != mesh.findFaceGroupIndex(group)))
                    continue;
                for (int k = 0; k < facet.count(); ++k) {
                    const size_t v = size_t(facet.vertices[k]);
                    const bool isOwn = ownAlone || owns[v] >= partners[v];
                    corners.push_back({doll.figure->worldMap().toMatrix4().multVecMatrix(posed[v]),
                                       isOwn ? mixed(owns[v], isReversed) : mixed(partners[v], isPartnerReversed)});
                }
            }
        }
        return corners;
    }
    /// The same as it was drawn.
    std::vector<Corner> drawn(const RyGLRecorder &recording) const
    {
        std::vector<Corner> corners;
        for (const RyGLRecorder::Elements &elements : recording.elements) {
            if (!elements.writesColors)
                continue;
            const auto &primitive = elements.primitive;
            for (size_t i = 0; i < primitive.vertices.size(); ++i)
                corners.push_back({world(primitive, i), i < primitive.colors.size() ? primitive.colors[i] : Color()});
        }
        return corners;
    }
    /// Empty when they are the same but for rounding, else what is not.
    static QString difference(const std::vector<Corner> &a, const std::vector<Corner> &b)
    {
        if (a.size() != b.size())
            return QStringLiteral("%1 and %2 corners").arg(a.size()).arg(b.size());
        for (size_t i = 0; i < a.size(); ++i) {
            const Color &p = a[i].color;
            const Color &q = b[i].color;
            const double apart = std::max({std::abs(p.r - q.r), std::abs(p.g - q.g), std::abs(p.b - q.b)});
            if (apart > 1.0 || p.a != q.a || p.kind != q.kind || (a[i].world - b[i].world).length() > 2e-3f)
                return QStringLiteral("corner %1: %2 %3 %4 and %5 %6 %7, %8 apart")
                    .arg(i)
                    .arg(p.r)
                    .arg(p.g)
                    .arg(p.b)
                    .arg(q.r)
                    .arg(q.g)
                    .arg(q.b)
                    .arg(double((a[i].world - b[i].world).length()));
        }
        return {};
    }
    static int count(const std::vector<Corner> &corners, const std::function<bool(const Color &)> &what)
    {
        int found = 0;
        for (const Corner &corner : corners)
            found += what(corner.color);
        return found;
    }

    ParametricScene doll{false};

private:
    Color mixed(float weight, bool isReversed) const
    {
        const QColor &from = isReversed ? tool->display().dynamicColor : tool->display().staticColor;
        const QColor &to = isReversed ? tool->display().staticColor : tool->display().dynamicColor;
        const auto mix = [weight](int a, int b) { return a + (b - a) * double(weight); };
        return {"4ub", mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue()),
                double(tool->display().weightOpacity)};
    }
    /// Every fifth facet becomes two triangles.
    void cutSomeQuads()
    {
        RyFacetMesh *mesh = doll.mesh();
        std::vector<RyFacet> facets;
        std::vector<int> groups;
        for (const RyFacet &facet : mesh->getFacets()) {
            const int *v = facet.vertices;
            if (facets.size() % 5 == 0) {
                facets.push_back({{v[0], v[1], v[2], -1}, -1});
                facets.push_back({{v[0], v[2], v[3], -1}, -1});
                groups.push_back(facet.group);
            } else {
                facets.push_back({{v[0], v[1], v[2], v[3]}, -1});
            }
            groups.push_back(facet.group);
        }
        mesh->setFacets(facets);
        mesh->setGroupsOfFacets(groups);
    }
};
