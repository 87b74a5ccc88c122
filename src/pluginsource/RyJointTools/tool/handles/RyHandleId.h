#pragma once

/// Ids of what the tool draws for the mouse. 0 is none, 1 to 46 are handles (3 and 4 are unused), from 47 on they are
/// bones: the place in the skeleton's list of bones plus 47.
namespace HandleId {

enum Id {
    None = 0,
    CenterPoint = 1,
    EndPoint = 2,
    DynamicRingX = 5,
    DynamicRingY = 6,
    DynamicRingZ = 7,
    StaticRingX = 8,
    StaticRingY = 9,
    StaticRingZ = 10,
    DynamicTranslateX = 11,
    DynamicTranslateY = 12,
    DynamicTranslateZ = 13,
    StaticTranslateX = 14,
    StaticTranslateY = 15,
    StaticTranslateZ = 16,
    DynamicScaleXPlus = 17,
    DynamicScaleYPlus = 18,
    DynamicScaleZPlus = 19,
    DynamicScaleXMinus = 20,
    DynamicScaleYMinus = 21,
    DynamicScaleZMinus = 22,
    StaticScaleXPlus = 23,
    StaticScaleYPlus = 24,
    StaticScaleZPlus = 25,
    StaticScaleXMinus = 26,
    StaticScaleYMinus = 27,
    StaticScaleZMinus = 28,
    StaticAngleA = 29,
    DynamicAngleB = 30,
    DynamicAngleC = 31,
    StaticAngleD = 32,
    TwistStart = 33,
    TwistEnd = 34,
    HighZoneStart = 35,
    HighZoneEnd = 36,
    LowZoneEnd = 37,
    LowZoneStart = 38,
    StaticScale = 39,
    DynamicScale = 40,
    OriginX = 41,
    OriginY = 42,
    OriginZ = 43,
    EndPointX = 44,
    EndPointY = 45,
    EndPointZ = 46
};

constexpr int firstBoneId = 47;

constexpr bool isBone(int id)
{
    return id >= firstBoneId;
}

constexpr int fromBoneIndex(int index)
{
    return index + firstBoneId;
}

constexpr int toBoneIndex(int id)
{
    return id - firstBoneId;
}

} // namespace HandleId
