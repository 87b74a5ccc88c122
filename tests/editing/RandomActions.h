#pragma once

#include "RandomEdits.h"

/// Random edits in which every action of the joint editor has its turn as often as the others, with poses, morphs and
/// bulges in between, which bakes, conversions, mirroring and memories have to take along.
class RandomActions : public RandomEdits
{
public:
    using RandomEdits::RandomEdits;

    /// Class names of all actions of the joint editor, in alphabetical order.
    static QStringList allActions(const EditingStage &stage);
    /// Gives the figures of the scene bulges, shapes without one a morph, and the first figure a prop.
    static void addShapes();

    /// How often each action ran, and how often it was refused.
    const QHash<QString, int> &ran() const { return m_ran; }
    const QHash<QString, int> &turnedDown() const { return m_turnedDown; }

protected:
    QString edit() override;

private:
    QString runAny(const QString &action);
    QString pose();
    /// Selects what the action works on, more often than not.
    void selectFor(const QString &action);
    EditingStage::Fields fieldsFor(const QString &action);
    QHash<QString, QString> answersFor(const QString &action);
    void selectOneOf(std::vector<RyNode *> nodes);

    QString m_next; // to run on what is selected now
    QHash<QString, int> m_ran, m_turnedDown;
};
