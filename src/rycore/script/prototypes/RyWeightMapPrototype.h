#pragma once

#include "rycore/script/prototypes/RyScriptPrototype.h"

/// Weight maps in scripts, to read. Weights are whole numbers, 65535 is all.
class RyWeightMapPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyWeightMapPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    /// One for each vertex.
    Q_INVOKABLE int getNumWeights() const;
    Q_INVOKABLE int getWeight(int vertex) const;
    /// Vertices with a weight above 0, ascending, and their weights in step.
    Q_INVOKABLE int getNumAffected() const;
    Q_INVOKABLE QScriptValue getAffectedIndices() const;
    Q_INVOKABLE QScriptValue getAffectedWeights() const;
};
