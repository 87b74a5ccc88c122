#pragma once

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RySceneOrigin.h"
#include "rycore/scene/clips/RyClip.h"

#include <QPointer>

#include <algorithm>
#include <utility>

/// A clip of any length that shifts some nodes along X by a centimetre in each second.
class ToyClip : public RyClip
{
public:
    ToyClip(QString name, double start, double end, std::vector<RyNode *> nodes)
        : m_name(std::move(name)), m_start(start), m_end(end), m_nodes(nodes.begin(), nodes.end())
    {}

    QString name() const override { return m_name; }
    double start() const override { return m_start; }
    double end() const override { return m_end; }
    std::vector<RyNode *> subjects(const RyScene &scene) const override
    {
        std::vector<RyNode *> result;
        for (const QPointer<RyNode> &node : m_nodes) {
            if (!node || node->getScene() != &scene)
                continue;
            auto *figure = static_cast<RyNode *>(node);
            while (figure->getNodeParent())
                figure = figure->getNodeParent();
            if (std::find(result.begin(), result.end(), figure) == result.end())
                result.push_back(figure);
        }
        return result;
    }
    std::unique_ptr<RyClipMotion> prepare(const RyScene &) const override { return std::make_unique<Motion>(m_nodes); }

private:
    struct Motion : RyClipMotion
    {
        explicit Motion(std::vector<QPointer<RyNode>> moved) : nodes(std::move(moved)) {}
        void evaluate(double seconds, RyClipFrame &frame) override
        {
            frame.maps.clear();
            for (const QPointer<RyNode> &node : nodes)
                frame.maps.emplace_back(node, RyAffine::fromTranslation(seconds, 0, 0));
        }
        std::vector<QPointer<RyNode>> nodes;
    };

    QString m_name;
    double m_start, m_end;
    std::vector<QPointer<RyNode>> m_nodes;
};

/// A file with clips that a test gives it.
class ToyOrigin : public RySceneOrigin
{
public:
    QString path() const override { return QStringLiteral("toy"); }
    double unitFactor() const override { return 1.0; }
    Clips clips() const override { return given; }

    Clips given;
};
