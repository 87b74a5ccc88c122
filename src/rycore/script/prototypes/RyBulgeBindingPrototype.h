#pragma once

#include "rycore/script/prototypes/RyValuesPrototype.h"
#include "rycore/skin/RyBulgeBinding.h"

/// Bulges of bones in scripts. The values go by "posLeft", "negLeft", "posRight" and "negRight", and by the names of
/// their properties.
class RyBulgeBindingPrototype : public RyValuesPrototype
{
    Q_OBJECT
public:
    explicit RyBulgeBindingPrototype(QObject *parent) : RyValuesPrototype(parent) {}

    Q_INVOKABLE int getAxis() const;
    /// Null where there is none.
    Q_INVOKABLE RyWeightMap *getLeftWeights() const;
    Q_INVOKABLE RyWeightMap *getRightWeights() const;
    /// A new map of these vertices, in any order, with weights from 0 to 65535 in step; null instead of the lists takes
    /// the map away. Throws, and changes nothing, where a vertex is not there or a weight is none.
    Q_INVOKABLE void setLeftWeights(const QScriptValue &vertices, const QScriptValue &weights = QScriptValue(),
                                    const QString &name = QStringLiteral("Left")) const;
    Q_INVOKABLE void setRightWeights(const QScriptValue &vertices, const QScriptValue &weights = QScriptValue(),
                                     const QString &name = QStringLiteral("Right")) const;

protected:
    std::vector<RyFloatProperty *> values() const override;
    RyFloatProperty *value(const QString &name) const override;

private:
    using Setter = void (RyBulgeBinding::*)(RyWeightMap *);
    void setWeights(Setter setter, const QScriptValue &vertices, const QScriptValue &weights,
                    const QString &name) const;
};
