#pragma once

#include "pane/RyPaneScene.h"

#include "rycore/ui/RyNumberExpression.h"

#include <QCheckBox>
#include <QPushButton>

/// What the pane must show, told from the tool's node and parameter and the scene alone.
class RyPaneTruth
{
public:
    explicit RyPaneTruth(const RyPaneScene &scene)
        : m_scene(scene), m_node(scene.tool->currentNode()), m_param(scene.tool->currentParam())
    {}

    /// Empty when the pane shows just that.
    QString difference() const
    {
        const bool showsPoints = !m_scene.find<QWidget>("JointEditorCenterEndPanel")->isHidden();
        const bool showsParam = !m_scene.find<QWidget>("JointEditorParamPanel")->isHidden();
        if (showsPoints == (m_param != nullptr) || showsParam == showsPoints)
            return QStringLiteral("the pane shows the other numbers");
        return wrongHeader() + wrongSwitches() + wrongList() + wrongPoints() + wrongValues() + wrongSpheres();
    }

private:
    using Param = RyLegacyJointParam;
    struct Group
    {
        Param::Type kind;
        Param::Flag flag;
        const char *box;
        std::vector<const char *> fields; // by controller
    };

    QString wrongHeader() const
    {
        const RyNode *primary = ryScene()->getPrimarySelection();
        const QString label = primary ? primary->getLabel() : QStringLiteral("None");
        const auto *nodes = m_scene.find<QPushButton>("JointEditorNodeBtn");
        if (nodes->accessibleDescription() != label)
            return QStringLiteral("the node is %1, not %2").arg(nodes->accessibleDescription(), label);
        const auto *orders = m_scene.find<QComboBox>("JointEditorRotationOrderCmb");
        if (orders->isEnabled() != (m_node != nullptr) ||
            (m_node && orders->currentIndex() != m_node->getRotationOrder().order()))
            return QStringLiteral("the rotation order is another one");
        return {};
    }
    QString wrongSwitches() const
    {
        const std::pair<const char *, bool> boxes[] = {
            {"JointEditorInheritParentScaleCbx", !m_node || m_node->inheritsScale()},
            {"JointEditorPromoteSelectionCbx", m_node && m_node->isSelectionPromoted()},
            {"JointEditorHiddenCbx", m_node && m_node->isHidden()}};
        QString wrong;
        for (const auto &[name, isOn] : boxes) {
            if (m_scene.find<QCheckBox>(name)->isChecked() != isOn)
                wrong += QLatin1String(name) + QLatin1String(" is another one");
        }
        return wrong;
    }
    QString wrongList() const
    {
        const auto *combo = m_scene.find<QComboBox>("JointEditorParameterCmb");
        const RyLegacyJoint *joint = RyLegacyJoint::findJoint(m_node);
        int row = 0;
        int current = 0;
        for (const Param *param : joint ? joint->params() : std::vector<Param *>()) {
            if (param->getDriver() != m_node && param->type() != Param::SmoothScale)
                continue;
            if (!combo->itemText(++row).startsWith(param->objectName()))
                return QStringLiteral("row %1 of the list is another parameter").arg(row);
            if (param == m_param)
                current = row;
        }
        if (combo->count() != row + 1)
            return QStringLiteral("%1 rows in the list, not %2").arg(combo->count()).arg(row + 1);
        if (m_param && current == 0)
            current = std::min(1, row); // it is not listed
        return combo->currentIndex() == current ? QString() : QStringLiteral("another row of the list is chosen");
    }
    QString wrongPoints() const
    {
        const char *names[] = {"Origin", "EndPoint", "Orientation"};
        QString wrong;
        for (int i = 0; i < 9; ++i) {
            const QByteArray name = QByteArray("JointEditor") + names[i / 3] + "XYZ"[i % 3] + "Wgt";
            wrong += wrongField(name, m_node ? pointControls(*m_node)[size_t(i)] : nullptr, {});
        }
        return wrong;
    }
    static std::vector<RyFloatProperty *> pointControls(const RyNode &node)
    {
        return {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl(),
                node.getEndXControl(),    node.getEndYControl(),    node.getEndZControl(),
                node.getOrientXControl(), node.getOrientYControl(), node.getOrientZControl()};
    }
    QString wrongValues() const
    {
        static const Group groups[] = {
            {Param::Bend, Param::ApplyAngles, "Angles", {"StaticA", "DynamicB", "DynamicC", "StaticD"}},
            {Param::Bend,
             Param::ApplyBulges,
             "Bulges",
             {nullptr, nullptr, nullptr, nullptr, "PosLeftBulge", "PosRightBulge", "NegLeftBulge", "NegRightBulge"}},
            {Param::Twist, Param::ApplyBlend, "Twist", {"TwistStart", "TwistEnd"}},
            {Param::SmoothScale,
             Param::ApplyZones,
             "Scale",
             {"SmoothHiStart", "SmoothHiEnd", "SmoothLoStart", "SmoothLoEnd"}},
        };
        QString wrong;
        for (const Group &group : groups)
            wrong += wrongGroup(group);
        return wrong;
    }
    QString wrongGroup(const Group &group) const
    {
        const bool isShown = m_param && m_param->type() == group.kind;
        const bool isOn = isShown && (m_param->flags() & group.flag);
        const auto *box = m_scene.find<QGroupBox>(QByteArray("JointParamGeneralEnable") + group.box + "GrpBox");
        if (box->isHidden() == isShown || (isShown && box->isChecked() != isOn))
            return QStringLiteral("group %1").arg(box->title());
        QString wrong;
        for (size_t i = 0; i < group.fields.size(); ++i) {
            if (!group.fields[i])
                continue;
            const QByteArray name = QByteArray("JointParamGeneral") + group.fields[i] + "Wgt";
            wrong += wrongField(name, isShown ? m_param->controllers()[i] : nullptr, {partnersController(i)});
            if (isShown && m_scene.field(name)->isEnabled() != (isOn && hasZone(i)))
                wrong += QStringLiteral("%1 can be edited or not").arg(QLatin1String(name));
        }
        return wrong;
    }
    /// Whether a controller counts: that of a zone does where the zone is there.
    bool hasZone(size_t controller) const
    {
        if (m_param->type() != Param::SmoothScale)
            return true;
        return m_param->flags() & (controller < 2 ? Param::HighSide : Param::LowSide);
    }
    QString wrongSpheres() const
    {
        const int active = m_scene.find<QComboBox>("JointParamMatricesActiveSphereCmb")->currentIndex();
        const bool isDynamic = active % 2 == 1;
        const bool isBoth = active >= 2;
        const auto *box = m_scene.find<QGroupBox>("JointParamMatricesEnableSphereMatricesGrpBox");
        if (m_param && box->isChecked() != m_param->applyMatrices())
            return QStringLiteral("group %1").arg(box->title());
        const char *names[] = {"PositionX", "PositionY", "PositionZ", "RotationX", "RotationY",
                               "RotationZ", "ScaleGen",  "ScaleX",    "ScaleY",    "ScaleZ"};
        QString wrong;
        for (size_t i = 0; i < std::size(names); ++i) {
            const QByteArray name = QByteArray("JointParamMatricesMatrix") + names[i] + "Wgt";
            const auto control = [i](const Param *param, bool dynamic) {
                return !param    ? nullptr
                       : dynamic ? param->getDynamicSphere()->controls()[i]
                                 : param->getStaticSphere()->controls()[i];
            };
            const Param *other = partner();
            wrong += wrongField(name, control(m_param, isDynamic),
                                {control(other, isDynamic), isBoth ? control(m_param, !isDynamic) : nullptr,
                                 isBoth ? control(other, !isDynamic) : nullptr});
        }
        return wrong;
    }
    /// Null where there is none of the same kind.
    const Param *partner() const
    {
        const RyBone *driver = m_param ? m_param->getDriver() : nullptr;
        if (!driver)
            return nullptr;
        const bool isSmooth = m_param->type() == Param::SmoothScale;
        const bool isDrivers = isSmooth || driver != m_node;
        const RyLegacyJoint *joint = RyLegacyJoint::findJoint(isDrivers ? driver : driver->getNodeParent());
        for (const Param *other : joint && joint->getBone() != m_node ? joint->params() : std::vector<Param *>()) {
            if (other->type() == m_param->type() && other->getDriver() == (isSmooth ? m_node : driver) &&
                (isSmooth || other->getAxis() == m_param->getAxis()))
                return other;
        }
        return nullptr;
    }
    /// A zone is told from its other end there.
    const RyFloatProperty *partnersController(size_t own) const
    {
        const Param *other = partner();
        if (!other || own >= other->controllers().size())
            return nullptr;
        return other->controllers()[other->type() == Param::SmoothScale ? 3 - own : own];
    }
    /// Values that differ are shown as none.
    QString wrongField(const QByteArray &name, const RyFloatProperty *property,
                       const std::vector<const RyFloatProperty *> &others) const
    {
        const RyFloatPropertyWgt *field = m_scene.field(name);
        if (field->getFirstProperty() != property)
            return QStringLiteral("%1 is of something else").arg(QLatin1String(name));
        const RyNumberField &number = *field->numberField();
        QString text = property ? valueText(*property) + number.suffix() : QString();
        for (const RyFloatProperty *other : others) {
            if (property && other && valueText(*other) != valueText(*property))
                text.clear();
        }
        return number.text() == text
                   ? QString()
                   : QStringLiteral("%1 shows %2, not %3").arg(QLatin1String(name), number.text(), text);
    }
    static QString valueText(const RyFloatProperty &property)
    {
        return RyNumberExpression::format(double(property.getValue()));
    }

    const RyPaneScene &m_scene;
    const RyNode *m_node;
    const Param *m_param;
};
