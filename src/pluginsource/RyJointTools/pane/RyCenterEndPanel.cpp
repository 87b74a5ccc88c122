#include "pluginsource/RyJointTools/pane/RyCenterEndPanel.h"

#include "pluginsource/RyJointTools/pane/RyBindingBulgeView.h"
#include "pluginsource/RyJointTools/pane/RyCenterEndGeneralPage.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/ui/RyExtendedTabWidget.h"

#include <QVBoxLayout>

static constexpr int bulgeTab = 1;

RyCenterEndPanel::RyCenterEndPanel(RyJointEditorTool *tool, QWidget *parent)
    : QWidget(parent), m_tabs(new RyExtendedTabWidget(this)), m_general(new RyCenterEndGeneralPage(tool, m_tabs)),
      m_bulges(new RyBindingBulgeView(m_tabs))
{
    setObjectName(QStringLiteral("JointEditorCenterEndPanel"));
    m_tabs->setObjectName(QStringLiteral("JointEditorParameterTabWgt"));
    m_tabs->addTab(m_general, tr("General"));
    m_tabs->addTab(m_bulges, tr("Bulges"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tabs);
    connect(tool, SIGNAL(nodeChanged(RyNode *)), this, SLOT(updateNode(RyNode *)));
}

void RyCenterEndPanel::showNode(RyNode *node)
{
    m_general->showNode(node);
    updateNode(node);
}

void RyCenterEndPanel::updateNode(RyNode *node)
{
    for (const QMetaObject::Connection &connection : m_scene)
        disconnect(connection);
    m_node = node;
    // A skin that comes or goes says nothing itself, nor does a bone that leaves its figure.
    if (const RyScene *scene = node ? node->getScene() : nullptr) {
        m_scene = {connect(scene, &RyScene::drawnDataChanged, this, &RyCenterEndPanel::followScene),
                   connect(scene, &RyScene::nodeListChanged, this, &RyCenterEndPanel::followScene)};
    }
    followSkin();
}

RyBoneBinding *RyCenterEndPanel::bindingWithBulges() const
{
    auto *bone = qobject_cast<RyBone *>(m_node);
    RyBoneBinding *binding = m_skin && qobject_cast<RyFigure *>(bone ? bone->getSkeleton() : nullptr)
                                 ? m_skin->findBoneBinding(bone)
                                 : nullptr;
    return binding && binding->hasBulgeWeights() ? binding : nullptr;
}

void RyCenterEndPanel::followSkin()
{
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(m_node);
    if (m_skin != skin) {
        if (m_skin)
            disconnect(m_skin, nullptr, this, nullptr);
        m_skin = skin;
        if (skin)
            connect(skin, &RySkinBinding::skinChanged, this, &RyCenterEndPanel::followSkin);
    }
    m_binding = bindingWithBulges();
    m_tabs->setTabEnabled(bulgeTab, m_binding);
    m_bulges->showBinding(m_binding);
}

/// Told of whatever is drawn, so it looks no further than at who has the bulges.
void RyCenterEndPanel::followScene()
{
    if (m_skin != RySkinBinding::findSkinFromNode(m_node) || m_binding != bindingWithBulges())
        followSkin();
}
