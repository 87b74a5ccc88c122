#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/math/RyVec3.h"

#include <QPointer>

#include <memory>
#include <optional>
#include <vector>

class RyNode;
class RyPropertyGroup;
class RyShape;

/// Another form of a shape: how far some of its vertices lie from the base, in figure space and centimetres. Shown as
/// far as its value says, 0 for not at all. The value is a property of the morph, which stands among the public
/// properties of the node that shows the shape, so that panes, scripts and links find it there; it goes along when the
/// object goes to another node.
class RyMorph : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    /// `vertices` ascending, each once, with a delta for each.
    RyMorph(const QString &name, std::vector<int> vertices, std::vector<RyVec3> deltas);
    ~RyMorph() override;

    const std::vector<int> &vertices() const { return m_vertices; }
    const std::vector<RyVec3> &deltas() const { return m_deltas; }
    /// Others for the same vertices, as many; undoable where a hold is open. Another number does nothing.
    void setDeltas(std::vector<RyVec3> deltas);
    /// From 0 to 1 and clamped unless somebody gives it other limits. Null once somebody deleted it.
    RyFloatProperty *getValueControl() const { return m_control; }
    /// What a clip shows in place of the value; nothing for the value again. Not recorded; the value stays as it is.
    /// Numbers that are not finite count as nothing.
    void setPlayedValue(std::optional<float> value);
    float shownValue() const;

    /// The shape that has this morph, and the node that shows it; null when none.
    RyShape *getShape() const { return m_shape; }
    RyNode *getNode() const;
    /// The node among whose properties it stands: its owner, or that of the morph which owns it; null when none.
    static RyNode *nodeOf(const RyProperty &property);

    void propertyChanged(RyFloatProperty *property) override;

signals:
    void shownValueChanged();
    void deltasChanged();

private:
    friend class RyObject;
    friend class RyShape;
    struct DeltasValue;
    /// Takes the control out of the group it is in and puts it behind the properties of this one; null: it is kept
    /// here.
    void moveControl(RyPropertyGroup *group);

    std::vector<int> m_vertices;
    std::vector<RyVec3> m_deltas;
    std::unique_ptr<RyProperty> m_kept; // the control, while it is in no group
    QPointer<RyFloatProperty> m_control;
    std::optional<float> m_played;
    RyShape *m_shape = nullptr;
};
