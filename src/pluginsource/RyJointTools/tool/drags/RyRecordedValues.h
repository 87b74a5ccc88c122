#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"

#include <QPointer>

#include <utility>
#include <vector>

class RyFloatProperty;

/// All values of a joint parameter as they stood when this was made.
class RyRecordedValues
{
public:
    /// Null keeps nothing.
    explicit RyRecordedValues(RyLegacyJointParam *param);
    /// Puts back what differs, to the bit; nothing when the parameter is gone.
    void writeBack() const;

private:
    QPointer<RyLegacyJointParam> m_param;
    std::vector<std::pair<RyFloatProperty *, float>> m_values; // raw
};
