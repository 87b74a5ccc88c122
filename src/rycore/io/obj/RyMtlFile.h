#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <vector>

/// The materials of a Wavefront material library, as far as a scene shows them. What is no such text has none.
class RyMtlFile
{
public:
    struct Material
    {
        QString name;
        std::array<float, 3> diffuse{1, 1, 1};
        float opacity = 1.0f;
        QString picture; // of the diffuse color, as the file names it; empty without one
    };

    explicit RyMtlFile(const QByteArray &text);

    std::vector<Material> materials;

private:
    void readLine(const QString &line);

    bool m_hasOpacity = false; // by the statement that has precedence
};
