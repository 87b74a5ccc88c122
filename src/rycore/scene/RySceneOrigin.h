#pragma once

#include <QString>

#include <memory>
#include <vector>

class RyClip;

/// The file behind a scene: a slot that the file formats fill.
class RySceneOrigin : public std::enable_shared_from_this<RySceneOrigin>
{
public:
    virtual ~RySceneOrigin() = default;
    virtual QString path() const = 0;
    /// Centimetres per unit of the file.
    virtual double unitFactor() const = 0;
    /// In the order of the file; what they move may have left the scene.
    using Clips = std::vector<std::shared_ptr<const RyClip>>;
    virtual Clips clips() const { return {}; }
};
