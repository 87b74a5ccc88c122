#pragma once

#include <QPointer>
#include <QTreeWidget>

#include <vector>

class RyBoneBinding;
class RyBulgeBinding;
class RyFloatProperty;
class RyWeightMap;

/// How far a bone of a skin bulges: by axis, by weight map, for positive and negative turns, each with its field.
class RyBindingBulgeView : public QTreeWidget
{
    Q_OBJECT
public:
    explicit RyBindingBulgeView(QWidget *parent = nullptr);

    /// Lists the bulges of a binding, and follows the names of its maps; nothing for null. What stays the same is left
    /// alone.
    void showBinding(const RyBoneBinding *binding);

private:
    /// One side of a bulge binding.
    struct Side
    {
        int axis;
        // Another one may lie where one was that is gone.
        QPointer<const RyWeightMap> map;
        QString name;
        QPointer<RyFloatProperty> pos;
        QPointer<RyFloatProperty> neg;
        bool operator==(const Side &) const = default;
    };
    static std::vector<Side> sidesOf(const RyBoneBinding &binding);
    void followNames();
    void addAxis(int axis);
    void addSide(QTreeWidgetItem *above, const Side &side);
    void addController(QTreeWidgetItem *above, const QString &title, RyFloatProperty *property);

    QPointer<const RyBoneBinding> m_binding;
    std::vector<Side> m_sides;
    QWidget *m_lastField = nullptr; // while fields are made
};
