#pragma once

#include "pluginsource/RyJointTools/pane/RyJointParamPage.h"

#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class RyLegacyJointSphere;

/// The two spheres of a joint parameter, edited one by one or both at once.
class RyJointParamMatricesPage : public RyJointParamPage
{
    Q_OBJECT
public:
    RyJointParamMatricesPage(RyJointEditorTool *tool, QWidget *parent);

private slots:
    void updateParam(RyLegacyJointParam *param);
    void refresh();
    /// One of the four items of the list; others change nothing.
    void setActiveSphere(int selection);
    void applyMatrices(bool onOff);
    void makeMatricesDefault();
    void restrictRotationAxesToggled(bool onOff);
    /// A sphere may turn about X or about Y while the axes are restricted: the other field cannot be edited.
    void validateRotationAxisRestriction();

private:
    enum ActiveSphere { Static, Dynamic, BothFromStatic, BothFromDynamic };
    struct GroupRow;
    struct FieldRow;
    static const GroupRow Groups[3];
    static const FieldRow Fields[10];
    static constexpr size_t XRotation = 3, YRotation = 4; // among the fields

    QWidget *makeSpheres(QWidget *parent);
    QGroupBox *makeGroup(const GroupRow &row, QWidget *parent);
    void addSphere(const RyLegacyJointSphere &sphere);
    void followRotations();
    void showRestriction(QCheckBox &box);
    void showParam() override { refresh(); }
    void showFlags() override;

    int m_activeSphere = Dynamic;
    bool m_isRefreshHeld = false; // never set here
    QGroupBox *m_enable = nullptr;
    QComboBox *m_sphere = nullptr;
    std::array<RyFloatPropertyWgt *, 10> m_fields{};
    std::vector<QMetaObject::Connection> m_rotations;
};
