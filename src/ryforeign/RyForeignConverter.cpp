#include "ryforeign/RyForeignConverter.h"

#include "rycore/io/gltf/clips/RyGltfTransforms.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "ryforeign/RyForeignClips.h"
#include "ryforeign/RyForeignLooks.h"
#include "ryforeign/RyForeignMeshWriter.h"
#include "ryforeign/RyForeignSkin.h"
#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <QFileInfo>

#include <numeric>

RyForeignConverter::RyForeignConverter(const RyForeignInput &input, const RyForeignTree &tree, const RyAffine &top)
    : m_input(input), m_tree(tree), m_top(top), m_binds(input, tree), m_document(RyGltfDocument::create()),
      m_nodeOf(tree.nodes.size(), -1), m_shownBy(tree.nodes.size(), -1), m_figures(tree.nodes.size())
{
    std::iota(m_figures.begin(), m_figures.end(), 0);
    for (size_t i = 0; i < tree.nodes.size(); ++i) {
        const int parent = tree.nodes[i].parent;
        const int above = parent < 0 ? int(i) : m_tops[size_t(parent)];
        m_tops.push_back(tree.nodes[size_t(above)].isJoint ? above : int(i));
    }
}

RyForeignConverter::~RyForeignConverter() = default;

std::unique_ptr<RyGltfDocument> RyForeignConverter::convert(const std::function<bool(double)> &progress)
{
    addNodes();
    planSkins();
    if (!addMeshes(progress))
        return nullptr;
    addSkeletonsWithoutMesh();
    RyForeignClips(m_input, m_tree, m_nodeOf, m_shownBy, *m_document).write();
    noteRest();
    using RyExtrasJson::Json;
    RyExtrasJson::store(m_document->json(), Json{{"version", RyExtrasJson::Version}, {"unit", 100.0}});
    return std::move(m_document);
}

/// One node above all carries unit and axes: the root of the tree where that is the file's own whole, which is called
/// after the file.
void RyForeignConverter::addNodes()
{
    const QString name = QFileInfo(m_input.path).completeBaseName();
    const std::vector<bool> isDriven = RyForeignClips::drivenNodes(m_input, m_tree);
    const bool isRootWhole = m_input.kind != RyForeignInput::Bvh && !m_tree.nodes.front().isJoint && !isDriven.front();
    const int above = isRootWhole ? -1 : addNode(name, m_top, -1, false);
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        const RyForeignTree::Node &node = m_tree.nodes[i];
        if (i == 0 && isRootWhole)
            m_nodeOf[i] = addNode(name, node.local * m_top, above, false);
        else
            m_nodeOf[i] =
                addNode(node.name, node.local, node.parent < 0 ? above : m_nodeOf[size_t(node.parent)], isDriven[i]);
    }
}

int RyForeignConverter::addNode(const QString &name, const RyAffine &local, int parent, bool isDriven)
{
    bool isExact = true;
    RyGltfTransform transform = ryGltfTransformOf(local, {1.0, 1.0, 1.0}, &isExact);
    if (!isExact && !isDriven) {
        transform = ryGltfMatrixOf(local);
    } else if (!isExact) {
        m_input.say(QStringLiteral("\"%1\" is animated and sheared; the nearest translation, rotation and scale were "
                                   "taken")
                        .arg(name));
    }
    return m_document->addNode(name, transform, parent);
}

int RyForeignConverter::figureOf(int top)
{
    while (m_figures[size_t(top)] != top)
        top = m_figures[size_t(top)] = m_figures[size_t(m_figures[size_t(top)])];
    return top;
}

/// What a skin binds is one figure. The first skin of each has all joints of it, those that no mesh names too.
void RyForeignConverter::planSkins()
{
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        if (m_tree.nodes[i].source->mNumMeshes == 0)
            continue;
        auto skin = std::make_unique<RyForeignSkin>(m_input, m_tree, m_binds, int(i));
        if (skin->joints.empty())
            continue;
        for (const int joint : skin->joints) // the first top of a figure stands for it
            m_figures[size_t(figureOf(topOf(joint)))] = figureOf(topOf(skin->joints.front()));
        m_skins.emplace(int(i), std::move(skin));
    }
    std::map<int, RyForeignSkin *> firstOf;
    for (const auto &[node, skin] : m_skins)
        firstOf.emplace(figureOf(topOf(skin->joints.front())), skin.get());
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        if (!m_tree.nodes[i].isJoint)
            continue;
        const auto first = firstOf.find(figureOf(topOf(int(i))));
        if (first != firstOf.end())
            first->second->add(int(i));
    }
}

bool RyForeignConverter::addMeshes(const std::function<bool(double)> &progress)
{
    const std::vector<int> materials = RyForeignLooks(m_input, *m_document).write();
    RyForeignMeshWriter writer(m_input, *m_document, materials);
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        if (m_tree.nodes[i].source->mNumMeshes > 0)
            addMesh(int(i), writer);
        if (i % 16 == 0 && !progress(double(i) / double(m_tree.nodes.size())))
            return false;
    }
    m_lines = writer.lines;
    return true;
}

void RyForeignConverter::addMesh(int node, RyForeignMeshWriter &writer)
{
    const RyForeignTree::Node &entry = m_tree.nodes[size_t(node)];
    const aiNode &source = *entry.source;
    const auto skin = m_skins.find(node);
    const std::vector<unsigned> numbers(source.mMeshes, source.mMeshes + source.mNumMeshes);
    const auto known = m_meshes.find(numbers);
    int mesh = -1;
    if (skin == m_skins.end() && known != m_meshes.end()) {
        mesh = known->second;
    } else {
        const QString called = ryForeignText(m_input.scene->mMeshes[source.mMeshes[0]]->mName);
        const QString own = m_input.nameOf.value(called, called); // a mesh without a name has its node's
        mesh = writer.write(source, own.isEmpty() ? entry.name : own,
                            skin == m_skins.end() ? nullptr : skin->second.get());
        if (skin == m_skins.end())
            m_meshes.emplace(numbers, mesh);
    }
    if (mesh < 0)
        return; // points and lines alone
    // A joint that shows a mesh itself would show it as a part of the figure.
    int showing = m_nodeOf[size_t(node)];
    const bool isElsewhere = skin == m_skins.end() && !(entry.pivot.geometric == RyAffine());
    if (entry.isJoint || isElsewhere)
        showing = addNode(entry.name, isElsewhere ? entry.pivot.geometric : RyAffine(), showing, false);
    m_shownBy[size_t(node)] = showing;
    if (skin == m_skins.end())
        m_document->setNodeMeshAndSkin(showing, mesh, -1);
    else
        m_document->setNodeMeshAndSkin(showing, mesh, writeSkin(*skin->second, m_binds.meshToWorld(node)));
}

int RyForeignConverter::writeSkin(const RyForeignSkin &skin, const RyAffine &toFigure)
{
    std::vector<int> joints;
    std::vector<float> matrices;
    for (size_t i = 0; i < skin.joints.size(); ++i) {
        joints.push_back(m_nodeOf[size_t(skin.joints[i])]);
        ryGltfAppendMatrix(skin.inverseBinds[i], matrices);
    }
    const int index = m_document->addSkin(QString(), joints, m_document->addFloatAccessor(matrices, 16, 0), -1);
    RyTreeExtras::storeToFigure(*m_document, index, toFigure);
    return index;
}

/// Joints that move no mesh are a figure all the same: a skin that no mesh uses.
void RyForeignConverter::addSkeletonsWithoutMesh()
{
    std::vector<bool> isBound(m_tree.nodes.size(), false);
    for (const auto &[node, skin] : m_skins)
        isBound[size_t(figureOf(topOf(skin->joints.front())))] = true;
    std::map<int, std::vector<int>> jointsOf; // by figure
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        if (m_tree.nodes[i].isJoint && !isBound[size_t(figureOf(topOf(int(i))))])
            jointsOf[figureOf(topOf(int(i)))].push_back(int(i));
    }
    for (const auto &[figure, joints] : jointsOf) {
        std::vector<int> nodes;
        std::vector<float> matrices;
        for (const int joint : joints) {
            nodes.push_back(m_nodeOf[size_t(joint)]);
            ryGltfAppendMatrix(m_binds.of(joint).inverse(), matrices);
        }
        const int skin = m_document->addSkin(QString(), nodes, m_document->addFloatAccessor(matrices, 16, 0), -1);
        RyTreeExtras::storeToFigure(*m_document, skin, RyAffine());
    }
}

void RyForeignConverter::noteRest() const
{
    if (m_lines > 0)
        m_input.say(QStringLiteral("%1 points and lines of meshes are left out").arg(m_lines));
    if (m_input.scene->mNumCameras > 0)
        m_input.say(QStringLiteral("%1 cameras are left out; the nodes that hold them are there")
                        .arg(m_input.scene->mNumCameras));
    if (m_input.scene->mNumLights > 0)
        m_input.say(QStringLiteral("%1 lights are left out; the nodes that hold them are there")
                        .arg(m_input.scene->mNumLights));
}
