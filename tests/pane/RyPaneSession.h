#pragma once

#include "RyMixedPaneScene.h"
#include "RyPaneListsTruth.h"
#include "support/RyRandom.h"
#include "tool_actions/RyPaneTruth.h"
#include "tool_actions/RyStepStates.h"

#include "rycore/base/RyMessageLog.h"
#include "rycore/script/RyScriptEngine.h"

/// The pane with a scene of all kinds, random numbers, and what every step of the history looked like.
struct RyPaneSession
{
    template<typename T>
    T oneOf(const std::vector<T> &all)
    {
        return all.empty() ? T() : all[size_t(random.integer(0, int(all.size()) - 1))];
    }
    RyNode *node() { return oneOf(ryScene()->getNodes()); }
    /// One of the pane's widgets that can be used as it stands, or null.
    template<typename W>
    W *usable(const std::function<bool(const W &)> &fits = {})
    {
        std::vector<W *> usable;
        for (W *widget : scene.pane->findChildren<W *>()) {
            if (widget->isVisible() && widget->isEnabled() && (!fits || fits(*widget)))
                usable.push_back(widget);
        }
        return oneOf(usable);
    }
    /// By keys, as far as a random row.
    void pickRow(QComboBox &combo)
    {
        const int wanted = random.integer(0, combo.count() - 1);
        combo.setFocus();
        for (int i = 0; i < combo.count() && combo.currentIndex() != wanted; ++i)
            QTest::keyClick(&combo, combo.currentIndex() < wanted ? Qt::Key_Down : Qt::Key_Up);
        QCOMPARE(combo.currentIndex(), wanted);
    }
    /// None when the edit changes nothing.
    static void step(const std::function<void()> &edit)
    {
        const QString before = RyStepStates::now();
        RyUndoStackHold hold;
        edit();
        if (RyStepStates::now() == before)
            hold.cancel();
        else
            hold.accept(QStringLiteral("Edit"));
    }
    /// Says nothing of errors.
    static QScriptValue run(const QString &program)
    {
        RyMessageLog::global().setEcho(false);
        const QScriptValue result = RyScriptEngine::current()->evaluate(program);
        RyMessageLog::global().setEcho(true);
        return result;
    }

    QString wrongPane() const { return RyPaneTruth(scene).difference() + RyPaneListsTruth(scene).difference(); }

    RyMixedPaneScene scene;
    RyRandom random;
    RyStepStates states;
    int names = 0; // given so far
};
