#pragma once

#include "parametric/LegacyEvaluator.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/parametric/RyLegacyRig.h"
#include "support/RyRandom.h"

#include <algorithm>
#include <cmath>

/// A small parametric figure of any shape, with any parameters, in any pose; for the library and for the evaluator.
struct RandomRig
{
    explicit RandomRig(RyRandom &itsRandom) : random(itsRandom)
    {
        const int bones = random.integer(1, 8);
        for (int b = 0; b < bones; ++b)
            addBone(b);
        for (int p = random.integer(0, 6 * bones); p > 0; --p)
            addParam();
        for (int v = random.integer(1, 40); v > 0; --v) {
            rest.push_back(random.vector(15));
            rig.owners.push_back(random.integer(0, bones - 1));
        }
        fillFigure();
    }

    LegacyEvaluator::Vec evaluate(size_t vertex) const
    {
        return LegacyEvaluator::deform(figure, posed, rig.owners[vertex],
                                       {rest[vertex].x, rest[vertex].y, rest[vertex].z});
    }
    /// Of the figure, or how far a point has gone where a pose blows it up.
    static double size(const LegacyEvaluator::Vec &at)
    {
        return std::max(30.0, std::sqrt(at[0] * at[0] + at[1] * at[1] + at[2] * at[2]));
    }

    RyRandom &random;
    RyLegacyRig rig;
    std::vector<RyVec3> rest;
    std::vector<RyLegacyControls> controls;
    LegacyEvaluator::Figure figure;
    std::vector<LegacyEvaluator::Controls> posed;

private:
    void addBone(int b)
    {
        RyLegacyRig::Bone bone;
        bone.parent = b == 0 || random.chance(0.1) ? -1 : random.integer(std::max(0, b - 3), b - 1);
        bone.origin = random.vector(10);
        bone.end = random.chance(0.05) ? bone.origin : bone.origin + random.vector(8);
        bone.orientation = RyQuat(random.vector(1), float(random.number(-3, 3)));
        bone.order = RyRotationOrder(random.integer(0, 5));
        bone.inheritsScale = random.chance(0.7);
        bone.hasGroup = random.chance(0.4);
        rig.bones.push_back(bone);
        RyLegacyControls pose;
        if (random.chance(0.8)) {
            for (size_t k = 0; k < 3; ++k) {
                pose.turn[k] = random.chance(0.7) ? random.number(-2.5, 2.5) : 0.0;
                pose.translation[k] = random.chance(0.3) ? random.number(-3, 3) : 0.0;
                pose.scale[k] = random.chance(0.3) ? random.number(0.6, 1.5) : 1.0;
            }
        }
        controls.push_back(pose);
    }

    RyMatrix4 matrix()
    {
        RyMatrix4 result;
        result.scale(RyVec3(float(random.number(0.5, 9)), float(random.number(0.5, 9)), float(random.number(0.5, 9))));
        if (random.chance(0.05))
            result.scale(RyVec3(1, 0, 1));
        result.rotate(RyQuat(random.vector(1), float(random.number(-3, 3))));
        result.translate(random.vector(8));
        return result;
    }

    float zone() { return random.chance(0.1) ? 24384.0f : float(random.number(-12, 12)); }

    void addParam()
    {
        using Param = RyLegacyJointParam;
        RyLegacyRig::Param param;
        const int bones = int(rig.bones.size());
        param.type = random.chance(0.6) ? Param::Bend : random.integer(1, 3);
        param.axis = random.integer(0, 2);
        param.driver = random.chance(0.03) ? -1 : random.integer(0, bones - 1);
        const int parent = param.driver < 0 ? -1 : rig.bones[size_t(param.driver)].parent;
        param.bone = random.chance(0.5) || parent < 0 ? param.driver : parent;
        if (param.type == Param::SmoothScale && random.chance(0.5))
            std::swap(param.bone, param.driver);
        if (random.chance(0.05))
            param.bone = random.integer(0, bones - 1);
        for (const unsigned flag : {Param::ApplyMatrices, Param::ApplyBulges, Param::HighSide, Param::LowSide})
            param.flags |= random.chance(0.4) ? unsigned(flag) : 0;
        for (const unsigned flag : {Param::ApplyAngles, Param::ApplyBlend, Param::ApplyZones})
            param.flags |= random.chance(0.8) ? unsigned(flag) : 0;
        if (random.chance(param.bone == param.driver ? 0.1 : 0.9))
            param.flags |= Param::Flipped;
        param.dynamicMatrix = matrix();
        param.staticMatrix = random.chance(0.2) ? param.dynamicMatrix : matrix();
        if (param.type == Param::Bend) {
            const bool tidy = random.chance(0.5);
            for (int i = 0; i < 4; ++i)
                param.values.push_back(float(tidy ? 130 - 80 * i + random.number(-30, 30) : random.number(-180, 180)));
            for (int i = 0; i < 4; ++i)
                param.values.push_back(float(random.number(-0.4, 0.4)));
        } else {
            for (int i = 0; i < (param.type == Param::SmoothScale ? 4 : 2); ++i)
                param.values.push_back(zone());
            if (random.chance(0.1))
                param.values[1] = param.values[0];
        }
        rig.params.push_back(param);
    }

    static LegacyEvaluator::Vec vec(const RyVec3 &v) { return {v.x, v.y, v.z}; }

    void fillFigure()
    {
        for (size_t b = 0; b < rig.bones.size(); ++b) {
            const RyLegacyRig::Bone &from = rig.bones[b];
            LegacyEvaluator::Bone bone;
            bone.parent = from.parent;
            bone.origin = vec(from.origin);
            bone.end = vec(from.end);
            bone.orientation = {from.orientation.x, from.orientation.y, from.orientation.z, from.orientation.w};
            bone.order = {from.order[0], from.order[1], from.order[2]};
            bone.inheritsScale = from.inheritsScale;
            bone.hasGroup = from.hasGroup;
            figure.bones.push_back(bone);
            posed.push_back({controls[b].turn, controls[b].translation, controls[b].scale});
        }
        for (const RyLegacyRig::Param &from : rig.params) {
            using Param = RyLegacyJointParam;
            LegacyEvaluator::Param param;
            param.type = from.type;
            param.flipped = from.flags & Param::Flipped;
            param.matrices = from.flags & Param::ApplyMatrices;
            param.angles = from.flags & Param::ApplyAngles;
            param.bulges = from.flags & Param::ApplyBulges;
            param.blend = from.flags & Param::ApplyBlend;
            param.zones = from.flags & Param::ApplyZones;
            param.high = from.flags & Param::HighSide;
            param.low = from.flags & Param::LowSide;
            param.axis = from.axis;
            param.bone = from.bone;
            param.driver = from.driver;
            for (int row = 0; row < 4; ++row) {
                for (int k = 0; k < 3; ++k) {
                    param.dynamicMatrix[size_t(row)][size_t(k)] = from.dynamicMatrix[row][k];
                    param.staticMatrix[size_t(row)][size_t(k)] = from.staticMatrix[row][k];
                }
            }
            param.values.assign(from.values.begin(), from.values.end());
            figure.params.push_back(param);
        }
    }
};
