#pragma once

#include <QString>

/// The file behind a scene: a slot that the file formats fill.
class RySceneOrigin
{
public:
    virtual ~RySceneOrigin() = default;
    virtual QString path() const = 0;
    /// Centimetres per unit of the file.
    virtual double unitFactor() const = 0;
};
