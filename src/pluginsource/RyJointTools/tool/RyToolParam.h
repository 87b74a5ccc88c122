#pragma once

#include "pluginsource/RyJointTools/tool/joint/RyGuardedPointer.h"

class RyJointEditorTool;
class RyLegacyJointParam;
class RyParamFollowUp;
class RyToolPointer;
struct RyJointState;

/// Which parameter of the current node's joint the tool edits, with its partners on the other side of the joint. What
/// leaves its joint is dropped, after the drag of it has ended; partners are looked for again when the scene changes.
class RyToolParam
{
public:
    RyToolParam(RyJointEditorTool &tool, RyJointState &joint, RyParamFollowUp &values, RyToolPointer &pointer)
        : m_tool(tool), m_joint(joint), m_values(values), m_pointer(pointer)
    {}

    /// A parameter that is not one of the current node's joint selects none. Announces it when it is another one.
    void set(RyLegacyJointParam *param);
    /// Keeps one that is the current node's, else takes the one of it that is most like the one that was chosen last;
    /// none for a node whose figure has a skin, for one without a joint, and while none has been chosen.
    void choose();
    /// The scene has changed: the node may hang elsewhere, and joints and parameters may have come or gone. Announces
    /// the parameter anew when its partners are others, as soon as the event loop comes round.
    void check();

private:
    /// Null where there is none.
    struct Partners
    {
        RyLegacyJointParam *ofParent = nullptr;
        RyLegacyJointParam *ofBend = nullptr;
        RyLegacyJointParam *edited = nullptr;
        bool operator==(const Partners &) const = default;
    };
    /// False when nothing has changed.
    bool change(RyLegacyJointParam *param);
    bool changeWithStatus(RyLegacyJointParam *param);
    void drop();
    void clear();
    void take(RyLegacyJointParam &param);
    bool isOwn(const RyLegacyJointParam *param) const;
    bool isDrivenByParent(const RyLegacyJointParam &param) const;
    RyLegacyJointParam *findLikeLast() const;
    RyLegacyJointParam *findPartner(const RyLegacyJointParam &param) const;
    RyLegacyJointParam *findBendPartner(const RyLegacyJointParam &param) const;
    Partners findPartners(const RyLegacyJointParam &param) const;
    Partners partners() const;
    void setPartners(const Partners &partners);
    void changePartners(const Partners &partners);
    void announcePartners();
    void dropPartner(const RyLegacyJointParam *param);

    RyJointEditorTool &m_tool;
    RyJointState &m_joint;
    RyParamFollowUp &m_values;
    RyToolPointer &m_pointer;
    bool m_isSet = false;                                 // one was announced; it may be gone by now
    RyGuardedPointer<RyLegacyJointParam> m_editedPartner; // the one that a drag writes
    Partners m_announced;                                 // those that were told of; compared, never followed
};
