#pragma once

#include "rycore/math/RyVec3.h"

#include <QByteArray>

#include <string>
#include <vector>

/// A small FBX file, written here, whose true places are known: a prism of five sides around two bones, 160 cm high,
/// off the middle, with Y up and to the front what has a larger Z.
struct MadeFigure
{
    double unit = 1.0; // centimetres
    bool isZUp = false;
    bool hasLeaf = false;          // behind the last bone, as some programs write one
    QByteArray leaf = "bone1_end"; // its name
    bool hasSkin = true;           // otherwise a prop that stands for itself
    double mirrored = 1.0;         // scale of the mesh along X; -1 mirrors it
    int clusters = 2;              // of the skin, more than two by bones that lie beside the others
    double weightSum = 1.0;        // of each vertex
    bool hasFree = false;          // the last vertex is moved by nothing
    bool hasLine = false;          // a polygon of two corners more
    bool hasExtras = false;        // a camera and a light
    bool hasStrange = false;       // a place and two texture coordinates that are no numbers
    double opacity = 1.0;

    struct Picture
    {
        std::string property = "DiffuseColor"; // of the material
        std::string path;
        QByteArray content; // in the file, unless it is empty and not `isEmbedded`
        bool isEmbedded = false;
        std::string uvSet = "first";
        double offset[2] = {0.0, 0.0};
        double scale[2] = {1.0, 1.0};
    };
    std::vector<Picture> pictures;

    QByteArray bytes() const;

    /// In centimetres, ring by ring from below.
    std::vector<RyVec3> vertices() const;
    RyVec3 bone(int number) const;
    static constexpr int Sides = 5;
};
