#include "PlayedFile.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/clips/RyClipPlayer.h"

#include <cmath>

QString PlayedFile::check() const
{
    RyClipPlayer &player = *m_scene.getClipPlayer();
    const auto clips = m_origin.clips();
    for (size_t clip = 0; clip < clips.size(); ++clip) {
        for (int frame = 0; frame < frames; ++frame) {
            const double time = clips[clip]->start() + clips[clip]->length() * frame / std::max(1, frames - 1);
            player.show(clips[clip], time);
            const QString problem = checkFrame(int(clip), time);
            if (!problem.isEmpty())
                return problem;
        }
    }
    player.stop();
    return clips.empty() ? QStringLiteral("there are no clips") : QString();
}

QString PlayedFile::checkFrame(int clip, double time) const
{
    const GltfPose pose = GltfClipEvaluator(m_clips, clip).pose(time);
    const double size = std::cbrt(std::abs(toScene.linear().determinant()));
    const double vertices = (comparesVertices ? vertexDistance(pose) : 0.0) / (m_height * size);
    const double heads = (comparesHeads ? headDistance(pose) : 0.0) / (m_height * size);
    if (vertices <= Tolerance && heads <= Tolerance)
        return {};
    return QStringLiteral("clip %1 at %2: vertices %3, heads %4").arg(clip).arg(time).arg(vertices).arg(heads);
}

double PlayedFile::vertexDistance(const GltfPose &pose) const
{
    double worst = 0.0;
    for (const RyGltfFigureSource &figure : m_origin.figures) {
        const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure.sceneNode));
        for (size_t p = 0; shape && p < figure.parts.size(); ++p) {
            for (const GltfPrimitive &primitive : m_clips.primitives()) {
                if (primitive.node != figure.parts[p].node || primitive.primitive != figure.parts[p].primitive)
                    continue;
                const std::vector<Eigen::Vector3d> wanted = m_clips.positions(primitive, pose);
                const auto influences = m_clips.influences(primitive);
                const std::vector<RyVec3> &shown = figure.sceneNode->getObject()->getDeformedPositions();
                const std::vector<int> &vertices = shape->getParts()->parts[p].vertexOfSplit;
                if (wanted.size() != vertices.size())
                    return INFINITY;
                const bool isRigid =
                    std::all_of(influences.begin(), influences.end(), [](const auto &each) { return each.empty(); });
                if (isRigid && goneNodes.count(primitive.node))
                    continue; // hung on a deleted bone, whose motion nothing has any more
                for (size_t v = 0; v < wanted.size(); ++v) {
                    const bool isPulled = v < influences.size() &&
                                          std::any_of(influences[v].begin(), influences[v].end(),
                                                      [this](const auto &each) { return goneNodes.count(each.joint); });
                    const RyVec3 &point = shown[size_t(vertices[v])];
                    const double in[3] = {double(point.x), double(point.y), double(point.z)};
                    Eigen::Vector3d out;
                    figure.sceneNode->worldMap().mapPoint(in, out.data());
                    if (!isPulled)
                        worst = std::max(worst, (out - placed(wanted[v])).norm());
                }
            }
        }
    }
    return worst;
}

double PlayedFile::headDistance(const GltfPose &pose) const
{
    const std::vector<Eigen::Matrix4d> worlds = m_clips.worldMatrices(pose);
    double worst = 0.0;
    for (const RyGltfNodeSource &source : m_origin.nodes) {
        if (!source.isBone || !source.sceneNode || source.sceneNode->getScene() != &m_scene)
            continue;
        const RyVec3 head = source.sceneNode->getWSPos();
        const Eigen::Vector3d wanted = worlds[size_t(source.node)].topRightCorner<3, 1>();
        worst = std::max(worst, (Eigen::Vector3d(head.x, head.y, head.z) - placed(wanted)).norm());
    }
    return worst;
}
