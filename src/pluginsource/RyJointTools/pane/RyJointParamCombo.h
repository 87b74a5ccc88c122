#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"

#include <QComboBox>
#include <QPointer>

#include <vector>

class RyJointEditorTool;
class RyLegacyBinding;
class RyScene;

/// What of the tool's current node is edited: its points, or one of the parameters that it lists. The list follows what
/// becomes of the joint and of the names; whatever is chosen by hand is only announced.
class RyJointParamCombo : public QComboBox
{
    Q_OBJECT
public:
    RyJointParamCombo(const RyJointEditorTool *tool, QWidget *parent);

    /// The list of the current node; the current parameter is chosen where it is in the list.
    void fill();
    /// The first parameter for one that is not in the list, the points for null.
    void choose(const RyLegacyJointParam *param);
    /// Null for the points.
    RyLegacyJointParam *paramAt(int index) const;

private:
    struct Entry
    {
        QPointer<RyLegacyJointParam> param;
        QString text;
        bool operator==(const Entry &) const = default;
    };
    QString textOf(const RyLegacyJointParam &param) const;
    std::vector<Entry> wantedEntries() const;
    void follow();
    void followScene(const RyNode *node);
    void followFigures(const RyScene *scene);
    template<typename Sender, typename Signal>
    void followSignal(const Sender *sender, Signal signal);
    void connectSources();

    const RyJointEditorTool *m_tool;
    std::vector<Entry> m_entries; // the first one has no parameter
    std::vector<QMetaObject::Connection> m_sources;
    QPointer<const RyLegacyBinding> m_binding; // the one that is followed
};
