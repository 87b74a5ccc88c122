#include "ClipComparison.h"

#include <nlohmann/json.hpp>

#include <Eigen/Geometry>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

ClipDifference infinite(int clip, const std::string &reason)
{
    ClipDifference difference;
    difference.distance = std::numeric_limits<double>::infinity();
    difference.clip = clip;
    difference.reason = QString::fromStdString(reason);
    return difference;
}

std::vector<double> framesOfBoth(const GltfClipEvaluator &a, const GltfClipEvaluator &b, size_t atMost)
{
    std::vector<double> keys = a.keyTimes();
    const std::vector<double> others = b.keyTimes();
    keys.insert(keys.end(), others.begin(), others.end());
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return gltfFrameTimes(keys, atMost);
}

bool drivesOthers(const GltfEvaluator &file, size_t clip, const std::set<int> &nodes)
{
    const nlohmann::json &channels = file.tree()["animations"][clip].at("channels");
    return std::any_of(channels.begin(), channels.end(), [&nodes](const nlohmann::json &channel) {
        return !nodes.count(channel.at("target").value("node", -1));
    });
}

std::string nameOf(const GltfEvaluator &file, int clip)
{
    return file.tree()["animations"][size_t(clip)].value("name", std::string());
}

/// By their order; where some are gone, by their names as well.
bool pairClips(const GltfEvaluator &before, const GltfEvaluator &after, const ClipChoice &choice,
               std::vector<std::pair<int, int>> &clips)
{
    const int count = clipCount(after);
    const bool isSame = count == clipCount(before) || (choice.isPart && count > clipCount(before));
    int next = 0;
    for (int clip = 0; clip < clipCount(before); ++clip) {
        const bool isThere = isSame || (next < count && nameOf(before, clip) == nameOf(after, next));
        if (isThere)
            clips.emplace_back(clip, next++);
        else if (drivesOthers(before, size_t(clip), choice.goneNodes))
            return false;
    }
    return isSame || next == count;
}

ClipDifference compareClips(const GltfEvaluator &before, const GltfEvaluator &after, const ClipChoice &choice)
{
    std::vector<std::pair<int, int>> clips;
    if (!pairClips(before, after, choice, clips))
        return infinite(-1, "there are not as many clips");
    const double height = shownHeight(before);
    std::vector<ClipStage::Point> points = ClipStage::pickVertices(before, choice.vertices, choice.goneNodes);
    const auto frames = ClipStage::framesOf(before, choice.steadyNodes, 0.2 * height);
    points.insert(points.end(), frames.begin(), frames.end());
    ClipStage first(before, points);
    ClipStage second(after, points);
    ClipDifference worst;
    for (const auto &[clip, other] : clips) {
        if (choice.otherClips.count(clip))
            continue;
        const GltfClipEvaluator a(before, clip);
        const GltfClipEvaluator b(after, other);
        if (b.leftOut().size() > a.leftOut().size())
            return infinite(clip, b.leftOut().back());
        for (const double time : framesOfBoth(a, b, choice.frames)) {
            const std::vector<Eigen::Vector3d> &wanted = first.show(a, time);
            const std::vector<Eigen::Vector3d> &found = second.show(b, time);
            for (size_t i = 0; i < points.size(); ++i) {
                const double distance = (found[i] - wanted[i]).norm() / height;
                if (!(distance <= worst.distance)) // also where it is no number
                    worst = {distance == distance ? distance : std::numeric_limits<double>::infinity(), clip, time,
                             points[i], QString()};
            }
        }
    }
    return worst;
}

} // namespace

QString ClipDifference::text() const
{
    if (!reason.isEmpty())
        return QStringLiteral("clip %1: %2").arg(clip).arg(reason);
    return QStringLiteral("%1 of the height: clip %2 at %3 s, node %4, primitive %5, point %6")
        .arg(distance)
        .arg(clip)
        .arg(time)
        .arg(point.node)
        .arg(point.primitive)
        .arg(point.vertex);
}

ClipDifference largestClipDifference(const GltfEvaluator &before, const GltfEvaluator &after, const ClipChoice &choice)
{
    try {
        return compareClips(before, after, choice);
    } catch (const std::exception &error) {
        return infinite(-1, error.what());
    }
}

int clipCount(const GltfEvaluator &file)
{
    const auto clips = file.tree().find("animations");
    return clips == file.tree().end() ? 0 : int(clips->size());
}

double shownHeight(const GltfEvaluator &file)
{
    Eigen::AlignedBox3d box;
    for (const Eigen::Vector3d &point : file.allPositions())
        box.extend(point);
    const Eigen::Vector3d size = box.sizes();
    return size.y() > 0.01 * size.maxCoeff() ? size.y() : size.maxCoeff();
}
