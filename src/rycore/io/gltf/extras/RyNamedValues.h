#pragma once

#include <QHash>
#include <QPair>
#include <QString>

#include <vector>

class RyFloatProperty;
class RyNode;

/// The values of a node by names that a file can keep: those of its groups, those of the bulges of its binding without
/// the bone's name, and those of the parameters of its joint, each with its parameter's name before it. Several of one
/// name are numbered in their order.
class RyNamedValues
{
public:
    explicit RyNamedValues(const RyNode &node);
    /// The values alone, in the same order, which is much cheaper.
    static std::vector<RyFloatProperty *> propertiesOf(const RyNode &node);

    /// Whether a file keeps the value without what links add to it.
    static bool isKeptRaw(const RyFloatProperty &property);

    struct Value
    {
        QString name;
        int number;
        RyFloatProperty *property;
    };
    const std::vector<Value> &all() const { return m_values; }
    /// Null for none.
    RyFloatProperty *find(const QString &name, int number) const { return m_places.value({name, number}); }

private:
    void add(const QString &name, RyFloatProperty *property);

    std::vector<Value> m_values;
    QHash<QPair<QString, int>, RyFloatProperty *> m_places;
    QHash<QString, int> m_counts;
};
