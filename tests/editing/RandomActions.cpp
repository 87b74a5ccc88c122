#include "RandomActions.h"

#include "addProp.h"
#include "support/RyMapOf.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

const char *const attributeRows[] = {"CenterX", "CenterY", "CenterZ", "EndX", "EndY", "EndZ"};
/// They make bones that stay.
const char *const growing[] = {"RyJECreateBoneAction",         "RyJECreateSiblingBoneAction",
                               "RyJESplitBoneAction",          "RyJEDuplicateBonesAction",
                               "RyJECreateControlBonesAction", "RyJECreateDonorFigureAction"};

/// They refuse bones of parametric figures.
const char *const weighted[] = {"RyJECreateSiblingBoneAction", "RyJEDuplicateBonesAction",
                                "RyJECreateControlBonesAction", "RyJEReparentBoneAction", "RyJEBakeRotationsAction"};

bool isOneOf(const QString &action, const char *const *begin, const char *const *end)
{
    return std::find(begin, end, action) != end;
}

std::vector<RyNode *> weightedBones(const std::vector<RyBone *> &bones)
{
    std::vector<RyNode *> weighted;
    std::copy_if(bones.begin(), bones.end(), std::back_inserter(weighted),
                 [](const RyBone *bone) { return RySkinBinding::findSkinFromNode(bone); });
    return weighted;
}

/// What is no skeleton and no bone and has a shape.
std::vector<RyNode *> propsOf(const RyScene &scene)
{
    std::vector<RyNode *> props;
    for (RyNode *node : scene.getNodes()) {
        if (RyShape::getCurrentShapeForNode(node) && !qobject_cast<RySkeleton *>(node) && !qobject_cast<RyBone *>(node))
            props.push_back(node);
    }
    return props;
}

RyWeightMap *halfOf(const RyWeightMap &map, bool isFirst)
{
    std::vector<quint16> weights(size_t(map.getNumWeights()), 0);
    for (int i = 0; i < map.getNumAffected(); ++i) {
        if ((i < map.getNumAffected() / 2) == isFirst)
            weights[size_t(map.getAffectedIndices()[i])] = map.getAffectedWeights()[i];
    }
    return ryMapOf(weights);
}

void addBulges(RySkinBinding &skin)
{
    int number = 0;
    for (RyBoneBinding *binding : skin.bindings()) {
        if (!binding->getWeights() || number++ % 3 > 0)
            continue;
        auto *bulge = new RyBulgeBinding(number % 2);
        bulge->setLeftWeights(halfOf(*binding->getWeights(), true));
        bulge->setRightWeights(halfOf(*binding->getWeights(), false));
        bulge->adjustBulgeValues(0.2f, -0.1f, 0.15f, 0.3f);
        binding->setBulgeBinding(number % 2, bulge);
    }
}

void addMorph(RyShape &shape, int vertexCount)
{
    std::vector<int> vertices;
    std::vector<RyVec3> deltas;
    for (int vertex = 0; vertex < vertexCount; vertex += 5) {
        vertices.push_back(vertex);
        deltas.push_back({0.3f, 0.1f * float(vertex % 7), -0.2f});
    }
    shape.addMorph(new RyMorph(QStringLiteral("swollen"), vertices, deltas));
}

/// A small thing in the hand of a figure, for conversions; null where nothing has a hand.
RyNode *addProp(const RySkeleton &figure, const QString &name)
{
    const std::vector<RyBone *> bones = figure.getAllBones();
    if (bones.empty())
        return nullptr;
    RyBone *hand = bones[bones.size() / 2];
    RyNode *prop = ryAddProp(hand, name);
    prop->getXTransControl()->setValue(hand->getOrigin().x);
    prop->getYRotControl()->setValue(30.0f);
    return prop;
}

} // namespace

QStringList RandomActions::allActions(const EditingStage &stage)
{
    QStringList names;
    for (const QString &name : stage.actionNames()) {
        if (name.startsWith(QLatin1String("RyJE")))
            names.append(name);
    }
    return names;
}

void RandomActions::addShapes()
{
    for (RySkeleton *figure : ryScene()->getSkeletons()) {
        if (RySkinBinding *skin = RySkinBinding::findSkin(figure))
            addBulges(*skin);
        RyShape *shape = RyShape::getCurrentShapeForNode(figure);
        if (shape && shape->getMorphs().empty())
            addMorph(*shape, int(shape->getCurrentPositions().size()));
    }
    const RySkeleton *first = ryScene()->getSkeletons().empty() ? nullptr : ryScene()->getSkeletons().front();
    if (first)
        addProp(*first, QStringLiteral("lantern"));
    // What parametric figures refuse finds a weight-mapped one there too.
    RyNode *flag = first && RyLegacyBinding::findBinding(first) ? addProp(*first, QStringLiteral("flag")) : nullptr;
    if (flag)
        RyFigure::convertPropToFigure(flag, QStringLiteral("pole"), false, false);
    ryUndoStack()->clearAll();
}

QString RandomActions::edit()
{
    const int kind = pick(100);
    if (m_next.isEmpty() && !m_stage.bones().empty()) {
        if (kind < 12)
            return selectSome();
        if (kind < 24)
            return pose();
        if (kind < 32)
            return dragSomething();
        if (kind < 40)
            return RandomEdits::edit();
    }
    // What is selected for an action is an edit of its own: a restore point brings the selection back.
    if (!m_next.isEmpty())
        return runAny(std::exchange(m_next, QString()));
    const QStringList actions = allActions(m_stage);
    m_next = m_stage.bones().empty() && chance(70) ? QStringLiteral("RyJEConvertPropToFigureAction")
                                                   : actions.at(pick(actions.size()));
    if (isOneOf(m_next, std::begin(growing), std::end(growing)) && isCrowded())
        m_next = QStringLiteral("RyJEDeleteBoneAction");
    selectFor(m_next);
    return QStringLiteral("select for %1").arg(m_next);
}

QString RandomActions::pose()
{
    RyUndoStackHold hold;
    const std::vector<RyBone *> bones = m_stage.bones();
    for (int i = 0; i < 3; ++i) {
        const RyBone *bone = bones[size_t(pick(int(bones.size())))];
        RyFloatProperty *const turns[] = {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()};
        turns[pick(3)]->setValue(float(pick(91) - 45));
        if (chance(20))
            bone->getScaleControl()->setValue(0.9f + 0.02f * float(pick(11)));
    }
    for (const RyNode *node : ryScene()->getNodes()) {
        const RyShape *shape = RyShape::getCurrentShapeForNode(node);
        if (shape && !shape->getMorphs().empty() && chance(50))
            shape->getMorphs().front()->getValueControl()->setValue(0.1f * float(pick(11)));
    }
    hold.accept(QStringLiteral("Pose"));
    return QStringLiteral("pose");
}

void RandomActions::selectOneOf(std::vector<RyNode *> nodes)
{
    if (!nodes.empty())
        m_stage.select({nodes[size_t(pick(int(nodes.size())))]});
}

void RandomActions::selectFor(const QString &action)
{
    const std::vector<RySkeleton *> skeletons = ryScene()->getSkeletons();
    if (chance(15))
        return; // whatever is selected
    if (action == QLatin1String("RyJEConvertPropToFigureAction"))
        return selectOneOf(propsOf(*ryScene()));
    if (action == QLatin1String("RyJEConvertFigureToPropAction") && chance(50))
        return selectOneOf({skeletons.begin(), skeletons.end()});
    if (action == QLatin1String("RyJETransferWSRiggingAction") && skeletons.size() > 1) {
        const int source = pick(int(skeletons.size()));
        const int target = (source + 1) % int(skeletons.size());
        return m_stage.select({skeletons[size_t(source)], skeletons[size_t(target)]});
    }
    if (isOneOf(action, std::begin(weighted), std::end(weighted)) && chance(60))
        return selectOneOf(weightedBones(m_stage.bones()));
    if (!ryScene()->getPrimarySelection() && !m_stage.bones().empty())
        selectSome();
}

EditingStage::Fields RandomActions::fieldsFor(const QString &action)
{
    const QString name = freshName();
    if (action == QLatin1String("RyJERenameNodeAction"))
        return {{QStringLiteral("name"), name}, {QStringLiteral("label"), name}};
    if (action == QLatin1String("RyJECreateBoneAction")) {
        return {{QStringLiteral("JointEditorCreateBoneNameLEdit"), name},
                {QStringLiteral("JointEditorCreateBoneLabelLEdit"), name},
                {QStringLiteral("JointEditorCreateBoneRotationOrderCmb"), QString::number(pick(6))}};
    }
    if (action == QLatin1String("RyJECreateControlBonesAction")) {
        return {{QStringLiteral("JointEditorPrefixLEdit"), name},
                {QStringLiteral("JointEditorControlBoneModeCmb"), QString::number(pick(2))}};
    }
    if (action == QLatin1String("RyJEMirrorAction")) {
        return {{QStringLiteral("JointEditorMirrorNodesCmb"), QString::number(pick(3))},
                {QStringLiteral("JointEditorMirrorDirectionCmb"), QString::number(pick(4))},
                {QStringLiteral("JointEditorMirrorAxisCmb"), QString::number(pick(3))}};
    }
    if (action == QLatin1String("RyJEConvertPropToFigureAction")) {
        const char *const riggings[] = {"Korvex", "General", "Legacy"};
        const bool inherits = chance(50);
        EditingStage::Fields fields = {
            {QStringLiteral("ConvertPropToFigure%1RBtn").arg(QLatin1String(riggings[pick(3)])), QStringLiteral("true")},
            {QStringLiteral("ConvertPropToFigureInheritParentSkeletonCbx"),
             inherits ? QStringLiteral("true") : QStringLiteral("false")}};
        if (!inherits)
            fields.emplace_back(QStringLiteral("ConvertPropToFigureRootBoneLEdit"), name);
        return fields;
    }
    if (action == QLatin1String("RyJEReparentBoneAction")) {
        const std::vector<RyBone *> bones = m_stage.bones();
        if (!bones.empty())
            return {{QStringLiteral("NodeDlgTree"), bones[size_t(pick(int(bones.size())))]->getName()}};
    }
    if (action == QLatin1String("RyJESelectedNodesAttributesEditAction")) {
        const QString row = QLatin1String(attributeRows[size_t(pick(int(std::size(attributeRows))))]);
        return {{QStringLiteral("NodeAttributesEdit%1Cbx").arg(row), QStringLiteral("true")},
                {QStringLiteral("NodeAttributesEdit%1SBox").arg(row), QString::number(pick(900) / 10.0)}};
    }
    return {};
}

QHash<QString, QString> RandomActions::answersFor(const QString &action)
{
    if (action == QLatin1String("RyJEReparentBoneAction"))
        return {{QStringLiteral("Reparenting Warning"), chance(80) ? QStringLiteral("Ok") : QStringLiteral("Cancel")}};
    if (action == QLatin1String("RyJEDeleteUnusedBonesAction"))
        return {{QStringLiteral("Remove Unused Bones"), chance(80) ? QStringLiteral("Yes") : QStringLiteral("No")}};
    return {};
}

QString RandomActions::runAny(const QString &action)
{
    if (action == QLatin1String("RyJEDeleteBoneAction"))
        expectToDelete(qobject_cast<RyBone *>(ryScene()->getPrimarySelection()));
    const int refused = this->refused();
    const QString doing = runAction(action.toLatin1().constData(), fieldsFor(action), answersFor(action));
    ++(this->refused() > refused ? m_turnedDown : m_ran)[action];
    return doing;
}
