#include "rycore/script/prototypes/RyWeightMapPrototype.h"

#include "rycore/mesh/RyWeightMap.h"

template<typename Number>
static QScriptValue numbers(QScriptEngine *engine, const Number *values, int count)
{
    QScriptValue array = engine->newArray(uint(count));
    for (int i = 0; i < count; ++i)
        array.setProperty(quint32(i), int(values[i]));
    return array;
}

int RyWeightMapPrototype::getNumWeights() const
{
    const RyWeightMap *map = self<RyWeightMap>();
    return map ? map->getNumWeights() : 0;
}

int RyWeightMapPrototype::getWeight(int vertex) const
{
    const RyWeightMap *map = self<RyWeightMap>();
    return map ? map->getWeight(vertex) : 0;
}

int RyWeightMapPrototype::getNumAffected() const
{
    const RyWeightMap *map = self<RyWeightMap>();
    return map ? map->getNumAffected() : 0;
}

QScriptValue RyWeightMapPrototype::getAffectedIndices() const
{
    const RyWeightMap *map = self<RyWeightMap>();
    return map ? numbers(engine(), map->getAffectedIndices(), map->getNumAffected()) : QScriptValue();
}

QScriptValue RyWeightMapPrototype::getAffectedWeights() const
{
    const RyWeightMap *map = self<RyWeightMap>();
    return map ? numbers(engine(), map->getAffectedWeights(), map->getNumAffected()) : QScriptValue();
}
