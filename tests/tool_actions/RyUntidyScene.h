#pragma once

#include "tool/RyToolScene.h"

#include "rycore/base/RyFloatProperty.h"

#include <QMap>

/// A figure that has been worked on: moved, turned, scaled and bent, with current values that are no defaults, bones
/// that neither end where the next one begins nor lie along their axes. Its left shin and thigh are selected; the thigh
/// is the tool's node.
struct RyUntidyScene : RyToolScene
{
    /// Those of the tool.
    enum Mode { Propagate = 1, Snap = 2, Align = 4, AllModes = 7 };
    using Values = QMap<QString, RyVec3>;

    explicit RyUntidyScene(int modes = 0)
    {
        pose();
        figure->getScaleControl()->setValue(1.25f);
        lThigh->getXScaleControl()->setValue(0.7f);
        hip->setOrigin({2, 101, -3});
        hip->setEndPoint({3, 109, 4});
        lThigh->setOrigin({12, 93, 4});
        lThigh->setEndPoint({13, 53, -3});
        lThigh->getOrientYControl()->setValue(33.0f);
        lThigh->setRotationOrder(RyRotationOrder(3));
        lShin->setOrigin({10, 49, 5});
        lShin->getOrientZControl()->setValue(-20.0f);
        lFoot->setEndPoint({14, 3, 15});
        tool->setPropagateTranslation(modes & Propagate);
        tool->setAutoSnapEndPoints(modes & Snap);
        tool->setAutoAlign(modes & Align);
        select(lThigh);
        // The child first, so that a change of the parent could take along what stands already.
        ryScene()->setSelection({lShin, lThigh});
        listen();
    }

    std::vector<RyNode *> nodes() const { return {figure, hip, lThigh, lShin, lFoot, rThigh, prop}; }
    static std::vector<RyFloatProperty *> rigging(const RyNode &node)
    {
        return {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl(),
                node.getEndXControl(),    node.getEndYControl(),    node.getEndZControl(),
                node.getOrientXControl(), node.getOrientYControl(), node.getOrientZControl()};
    }
    /// By the name of the node and what of it: "hip origin".
    Values values() const
    {
        Values values;
        for (const RyNode *node : nodes()) {
            const std::vector<RyFloatProperty *> controls = rigging(*node);
            const char *const triples[] = {" origin", " end", " orient"};
            for (size_t i = 0; i < 3; ++i) {
                values[node->getName() + QLatin1String(triples[i])] = {
                    controls[3 * i]->getValue(), controls[3 * i + 1]->getValue(), controls[3 * i + 2]->getValue()};
            }
        }
        return values;
    }
    /// The names of the values that are others than those.
    QStringList changesSince(const Values &before) const
    {
        const Values after = values();
        QStringList changed;
        for (auto value = before.begin(); value != before.end(); ++value) {
            if (after[value.key()] != value.value())
                changed.append(value.key());
        }
        return changed;
    }
    /// What a propagated change of the thigh's origin takes along.
    static QStringList belowThigh() { return {"lThigh end", "lShin origin", "lShin end", "lFoot origin", "lFoot end"}; }

    QMap<QString, int> announced; // changed riggings, by node
    int valuesOutside = 0;        // changes of rigging values outside of rig edits

private:
    void listen()
    {
        for (RyNode *node : nodes()) {
            QObject::connect(node, &RyNode::riggingChanged, &m_listener,
                             [this, node] { ++announced[node->getName()]; });
            for (const RyFloatProperty *control : rigging(*node)) {
                QObject::connect(control, &RyFloatProperty::currentValueChanged, &m_listener,
                                 [this] { valuesOutside += ryScene()->isInRiggingEdit() ? 0 : 1; });
            }
        }
    }

    QObject m_listener;
};
