#pragma once

#include "CharacterScene.h"

#include <Eigen/Core>

#include <QStringList>

#include <functional>

class RyFigure;
class RyNode;

/// The weight-mapped figures of a file, posed at random, and what they show in the world.
class BakedCharacter : public CharacterScene
{
public:
    using CharacterScene::CharacterScene;

    std::vector<RyFigure *> figures() const;
    /// Turns most bones, moves some, scales a few alike along their axes; morphs get values.
    void pose(std::mt19937 &random);
    /// Figures that stand elsewhere, turned and scaled, about a centre of their own.
    void moveFigures();

    /// Origins, posed end points and points on the axes of all bones, things below them too.
    std::vector<Eigen::Vector3d> joints() const;
    /// What the figures have that is no rest: names of controls, empty when all poses are cleared.
    QStringList poses() const;
};

/// Infinite for other counts.
double largestWay(const std::vector<Eigen::Vector3d> &a, const std::vector<Eigen::Vector3d> &b);
/// Characters and samples, as paths.
QStringList bakeablePaths();
/// Those with weight-mapped figures that have something more.
QStringList bakeablePaths(const std::function<bool(const BakedCharacter &)> &fits);
