#pragma once

#include "rycore/base/RyBase.h"

#include <memory>

class RyElementDuplicateContext;
class RyFloatProperty;
class RyPropertyGroup;

/// Something with a label and with properties in groups. Property groups are owned by the element.
class RyElement : public RyBase
{
    Q_OBJECT
public:
    explicit RyElement(QObject *parent = nullptr);
    ~RyElement() override;

    /// The label, or the name while none was set.
    QString getLabel() const;
    /// Undoable where a hold is open. A null text goes back to the name.
    void setLabel(const QString &label);
    bool hasOwnLabel() const { return !m_label.isNull(); }

    /// Root of the tree of groups that panes show; null when there are none.
    RyPropertyGroup *getPropertyGroups() const { return m_publicGroups.get(); }
    /// Root of the tree of groups with the rigging values; null for elements without rigging.
    RyPropertyGroup *getPrivatePropertyGroups() const { return m_privateGroups.get(); }

    /// Edits nest. The outermost begin takes a snapshot, the outermost finish announces the edit once, cancel restores
    /// the snapshot unrecorded and closes all levels. Finish or cancel without begin does nothing.
    void beginEdit();
    void finishEdit();
    void cancelEdit();
    int editLevel() const { return m_editLevel; }

    /// A new element like this one, entered in the context; null where elements of this kind cannot be duplicated (the
    /// base does so). The copy may be of another class than the original. What it refers to is resolved by the context
    /// afterwards.
    virtual RyElement *doDuplicateElement(RyElementDuplicateContext *context);
    /// Called on a duplicate once all duplicates are made: references into the set that was duplicated go to the
    /// duplicates.
    virtual void resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context);
    /// Takes the values, limits and labels of the properties at the same places of the other's groups. `addMissing`:
    /// properties and groups that the other has beyond those of this element are added. Links are not taken over, nor
    /// properties that stand in the other's groups and belong to something else.
    void copyPropertiesFrom(const RyElement &other, bool addMissing);

    /// Called by a property of this element after its value (raw or by a link) changed, before its listeners hear of
    /// it.
    virtual void propertyChanged(RyFloatProperty *property);
    /// The same after a change of the default alone.
    virtual void propertyDefaultChanged(RyFloatProperty *property);

signals:
    /// The label changed, or the name that stands for it.
    void labelChanged(const QString &label);

protected:
    /// Adds the root of a tree of groups; the getters above return it.
    RyPropertyGroup *createPublicGroups(const QString &name);
    RyPropertyGroup *createPrivateGroups(const QString &name);

    void nameHasChanged() override;
    virtual void editBegun() {}
    virtual void editFinished() {}
    /// Restores what editBegun kept. Runs under an undo lock.
    virtual void editCancelled() {}

private:
    struct LabelValue;
    void applyLabel(const QString &label);
    void copyGroup(const RyElement &other, const RyPropertyGroup &from, RyPropertyGroup &to, bool addMissing);

    QString m_label; // null: never set
    std::unique_ptr<RyPropertyGroup> m_publicGroups;
    std::unique_ptr<RyPropertyGroup> m_privateGroups;
    int m_editLevel = 0;
};
