#pragma once

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScript.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/undo/RyUndoStack.h"

#include <memory>

/// A window with a scene: a prop, and a figure with the bones hip > abdomen, hip > thigh.
class RyScriptScene
{
public:
    RyScriptScene()
    {
        RyApp::setDefaultHomePath(QStringLiteral(RY_SOURCE_DIR "/resources"));
        scene()->clear();
        ryUndoStack()->clearAll();
        figure = add(new RyFigure, "figure", nullptr);
        hip = add(new RyBone, "hip", figure);
        abdomen = add(new RyBone, "abdomen", hip);
        thigh = add(new RyBone, "thigh", hip);
        prop = add(new RyNode, "prop", nullptr);
        window = std::make_unique<RyMainWindow>(scene());
        RyMessageLog::global().clear();
        RyMessageLog::global().setEcho(false);
    }
    ~RyScriptScene()
    {
        window.reset();
        scene()->clear();
        ryUndoStack()->clearAll();
        RyMessageLog::global().setEcho(true);
    }

    static RyScene *scene() { return ryScene(); }
    QString dump() const { return rySceneDump(*scene()); }
    QScriptValue evaluate(const char *program) const
    {
        return window->getScriptEngine()->evaluate(QString::fromUtf8(program), QStringLiteral("test"));
    }
    /// As the action of the joint editor does it.
    bool rename(RyNode *node) const
    {
        scene()->setSelection({node});
        RyScript script{QString()};
        return script.loadFromFile(RyApp::getHomePath() +
                                       QStringLiteral("/scripts/support/Velmor/OstraToolkit/ryRenameNode.rsx"),
                                   true) &&
               script.execute();
    }

    std::unique_ptr<RyMainWindow> window;
    RyFigure *figure;
    RyBone *hip, *abdomen, *thigh;
    RyNode *prop;

private:
    template<typename Node>
    static Node *add(Node *node, const char *name, RyNode *parent)
    {
        node->setName(QString::fromLatin1(name));
        if (parent)
            parent->addNodeChild(node);
        scene()->addNode(node);
        return node;
    }
};
