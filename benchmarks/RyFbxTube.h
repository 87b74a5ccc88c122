#pragma once

#include <QByteArray>

#include <cmath>

/// An FBX file in text form: a tube of quads, 1.7 metres high, that a chain of bones moves, two for each vertex.
inline QByteArray ryFbxTube(int columns, int rows, int bones)
{
    QByteArray points, polygons;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const double angle = 6.283185307 * column / columns;
            points += QByteArray::number(20 * std::cos(angle)) + ',' + QByteArray::number(170.0 * row / (rows - 1)) +
                      ',' + QByteArray::number(20 * std::sin(angle)) + ',';
        }
    }
    for (int row = 0; row + 1 < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const int next = (column + 1) % columns;
            for (const int corner : {row * columns + column, row * columns + next, (row + 1) * columns + next})
                polygons += QByteArray::number(corner) + ',';
            polygons += QByteArray::number(-1 - ((row + 1) * columns + column)) + ',';
        }
    }
    points.chop(1);
    polygons.chop(1);
    QByteArray objects =
        "Geometry: 1, \"Geometry::Tube\", \"Mesh\" {\nVertices: *" + QByteArray::number(3 * rows * columns) +
        " {\na: " + points + "\n}\nPolygonVertexIndex: *" + QByteArray::number(4 * (rows - 1) * columns) +
        " {\na: " + polygons +
        "\n}\n}\nModel: 2, \"Model::Tube\", \"Mesh\" {\n}\nDeformer: 3, \"Deformer::\", \"Skin\" {\n}\n";
    QByteArray links = "C: \"OO\",2,0\nC: \"OO\",1,2\nC: \"OO\",3,1\n";
    const double step = 170.0 / bones;
    for (int bone = 0; bone < bones; ++bone) {
        const QByteArray id = QByteArray::number(1000 + bone), cluster = QByteArray::number(5000 + bone);
        QByteArray indices, weights;
        int count = 0;
        for (int row = 0; row < rows; ++row) {
            const double at = double(row) * bones / rows;
            const double share = 1.0 - std::abs(at - bone);
            for (int column = 0; share > 0.0 && column < columns; ++column, ++count) {
                indices += QByteArray::number(row * columns + column) + ',';
                weights += QByteArray::number(share) + ',';
            }
        }
        indices.chop(1);
        weights.chop(1);
        const QByteArray place = QByteArray::number(bone * step);
        objects += "Model: " + id + ", \"Model::bone" + QByteArray::number(bone) +
                   "\", \"LimbNode\" {\nProperties70:  {\nP: \"Lcl Translation\", \"Lcl Translation\", \"\", \"A\",0," +
                   QByteArray::number(bone == 0 ? 0.0 : step) + ",0\n}\n}\nDeformer: " + cluster +
                   ", \"SubDeformer::\", \"Cluster\" {\nIndexes: *" + QByteArray::number(count) + " {\na: " + indices +
                   "\n}\nWeights: *" + QByteArray::number(count) + " {\na: " + weights +
                   "\n}\nTransform: *16 {\na: 1,0,0,0,0,1,0,0,0,0,1,0,0,-" + place +
                   ",0,1\n}\nTransformLink: *16 {\na: 1,0,0,0,0,1,0,0,0,0,1,0,0," + place + ",0,1\n}\n}\n";
        links += "C: \"OO\"," + id + ',' + (bone == 0 ? QByteArray("0") : QByteArray::number(999 + bone)) +
                 "\nC: \"OO\"," + cluster + ",3\nC: \"OO\"," + id + ',' + cluster + '\n';
    }
    return "; FBX 7.4.0 project file\nFBXHeaderExtension:  {\nFBXHeaderVersion: 1003\nFBXVersion: 7400\n}\n"
           "GlobalSettings:  {\nVersion: 1000\nProperties70:  {\nP: \"UnitScaleFactor\", \"double\", \"Number\", "
           "\"\",1\n}\n}\nObjects:  {\n" +
           objects + "}\nConnections:  {\n" + links + "}\n";
}
