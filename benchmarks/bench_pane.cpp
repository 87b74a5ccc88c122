// Selecting another bone in a figure of 1,000 bones and in one of 10, until the tool's settings pane, which can be
// seen, shows it and is painted. What the pane shows is compared with the bone before anything is timed. Bones have
// weights, bulges and face groups.
#include "RyOffscreenProgram.h"
#include "RyRoundRobin.h"

#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberExpression.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QComboBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTreeWidget>

namespace {

constexpr int Few = 10;
constexpr int Many = 1000;

class Stage
{
public:
    Stage() : m_manager(ryScene())
    {
        m_manager.addTool(m_tool);
        m_manager.setActiveTool(m_tool);
        m_tool->frame()->resize(350, 900);
        m_tool->frame()->show();
        settle();
    }

    /// Chains of ten, each with a vertex and a face group of its own; every second one bulges.
    void makeFigure(int bones)
    {
        ryScene()->clear();
        ryUndoStack()->clearAll();
        auto *figure = new RyFigure;
        auto *mesh = new RyFacetMesh;
        mesh->setPositions(std::vector<RyVec3>(size_t(bones) + 2));
        auto *skin = new RySkinBinding;
        auto *map = new RySelectionMap;
        m_bones.clear();
        std::vector<RyFacet> facets;
        std::vector<int> groups;
        for (int i = 0; i < bones; ++i) {
            facets.push_back({{i, i + 1, i + 2, -1}, -1});
            groups.push_back(i);
            addBone(figure, skin, mesh->getNumVertices());
            mesh->createFaceGroup(groupOf(i));
            map->addPair(groupOf(i), m_bones.back(), false);
        }
        mesh->setFacets(facets);
        mesh->setGroupsOfFacets(groups);
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        object->addModifier(skin);
        figure->setObject(object);
        figure->setSelectionMap(map);
        ryScene()->addNode(figure);
        settle();
    }

    /// Ten bones, one after the other.
    void selectTen()
    {
        for (int i = 0; i < 10; ++i) {
            m_current = (m_current + 1) % m_bones.size();
            ryScene()->setSelection({m_bones[m_current]});
            settle();
        }
    }

    bool showsAll()
    {
        for (size_t i = 0; i < m_bones.size(); ++i) {
            ryScene()->setSelection({m_bones[i]});
            settle();
            if (!shows(int(i)))
                return false;
        }
        return true;
    }

private:
    static QString groupOf(int bone) { return QStringLiteral("group %1").arg(bone); }

    /// Everything that waits for its turn, painting included.
    static void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    }

    void addBone(RyFigure *figure, RySkinBinding *skin, int vertices)
    {
        const int i = int(m_bones.size());
        auto *bone = new RyBone;
        bone->setName(QStringLiteral("bone %1").arg(i));
        bone->setOrigin(RyVec3(0.25f * float(i), float(i % 7), 1), true);
        bone->setEndPoint(RyVec3(0.25f * float(i), float(i % 7) + 2.5f, 3), true);
        bone->setRotationOrder(RyRotationOrder(i % 6));
        (i % 10 == 0 ? static_cast<RyNode *>(figure) : m_bones.back())->addNodeChild(bone);
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        binding->setWeights(mapOf(i, vertices));
        if (i % 2 == 0) {
            auto *bulge = new RyBulgeBinding(1);
            bulge->setLeftWeights(mapOf(i, vertices));
            bulge->adjustBulgeValues(0.1f, 0.2f, 0.3f, float(i));
            binding->setBulgeBinding(1, bulge);
        }
        skin->addBoneBinding(binding);
        m_bones.push_back(bone);
    }
    static RyWeightMap *mapOf(int vertex, int vertices)
    {
        auto *map = new RyWeightMap(QStringLiteral("map"));
        map->setAffected(vertices, {vertex}, {quint16(RyWeightMap::FullWeight)});
        return map;
    }

    template<typename W>
    const W &find(const char *name) const
    {
        return *m_tool->frame()->findChild<W *>(QString::fromLatin1(name));
    }
    bool shows(int i) const
    {
        const RyBone &bone = *m_bones[size_t(i)];
        const auto isShown = [this](const char *name, const RyFloatProperty *value) {
            const RyNumberField &number = *find<RyFloatPropertyWgt>(name).numberField();
            return number.text() == RyNumberExpression::format(double(value->getValue())) + number.suffix();
        };
        return find<QPushButton>("JointEditorNodeBtn").text() == bone.getLabel() &&
               find<QPushButton>("JointEditorSelectionGroupBtn").text() == groupOf(i) &&
               find<QComboBox>("JointEditorRotationOrderCmb").currentIndex() == i % 6 &&
               isShown("JointEditorOriginXWgt", bone.getOriginXControl()) &&
               isShown("JointEditorEndPointYWgt", bone.getEndYControl()) &&
               isShown("JointEditorOrientationZWgt", bone.getOrientZControl()) &&
               (find<QTreeWidget>("JointEditorBindingBulgeView").topLevelItemCount() > 0) == (i % 2 == 0);
    }

    RyViewportMgr m_manager;
    RyJointEditorTool *m_tool = new RyJointEditorTool; // the manager's
    std::vector<RyBone *> m_bones;
    size_t m_current = 0;
};

/// How many times as long it takes among many bones; below zero for a wrong result.
double measure(int turns)
{
    Stage stage;
    for (const int bones : {Few, Many}) {
        stage.makeFigure(bones);
        if (!stage.showsAll()) {
            std::printf("WRONG RESULT: the pane shows another bone of %d\n", bones);
            return -1.0;
        }
    }
    RyRoundRobin ways;
    for (const int bones : {Few, Many}) {
        ways.add(std::to_string(bones) + " bones, ten selected in turn", [&] { stage.selectTen(); });
        ways.before([&stage, bones] {
            stage.makeFigure(bones);
            stage.selectTen();
        });
    }
    ways.run(turns);
    ways.print();
    ryScene()->clear();
    return ways.ratio(1, 0);
}

} // namespace

int main(int argc, char **argv)
{
    const RyOffscreenProgram program(argc, argv);
    const QTemporaryDir settings; // nobody's own
    RyAppSettings::setSettingsPath(settings.path());
    const double ratio = measure(program.number(1, 31));
    RyUndoStack::destroyGlobal();
    ryDestroyScene();
    if (ratio >= 0.0)
        std::printf("=> %d bones / %d bones: %.2f (at most 3%s)\n", Many, Few, ratio,
                    program.isShort || ratio <= 3.0 ? "" : ", MISSED");
    return ratio >= 0.0 ? 0 : 1;
}
