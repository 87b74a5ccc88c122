#include "rycore/io/gltf/RyGltfSceneWriter.h"

#include "rycore/io/gltf/RyGltfTreePatch.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <set>

// What was made in the program below a figure of the file: new nodes, and for bones new joints of its skin.

std::vector<const RyNode *> RyGltfSceneWriter::newNodes() const
{
    std::set<const RyNode *> known;
    for (const RyGltfNodeSource &source : m_source.nodes)
        known.insert(source.sceneNode);
    std::vector<const RyNode *> result;
    for (const RyGltfFigureSource &figure : m_source.figures) {
        std::vector<RyNode *> below;
        if (figure.sceneNode)
            figure.sceneNode->getNodeChildren(below, true);
        for (const RyNode *node : below) {
            if (node->getScene() && known.insert(node).second)
                result.push_back(node);
        }
    }
    return result;
}

void RyGltfSceneWriter::addNewNodes()
{
    const RyAffine toCentimetres = RyAffine::fromScale(m_source.unit, m_source.unit, m_source.unit);
    std::map<int, std::vector<const RyNode *>> bonesOfSkin;
    std::map<const RyNode *, RyAffine> binds;
    for (const auto &[index, edit] : m_edits) {
        binds[edit.source->sceneNode] = edit.bind;
        m_indexOf[edit.source->sceneNode] = index;
    }
    for (const RyNode *node : newNodes()) {
        const RyNode *parent = node->getNodeParent();
        const auto above = m_indexOf.find(parent);
        const bool hasParent = above != m_indexOf.end();
        const RyAffine bind = toCentimetres * RyAffine::fromRotation(node->getOrientation()) *
                              RyAffine::fromTranslation(node->getOrigin());
        const RyAffine localPose = node->inheritsScale() ? node->getLocalMap()
                                                         : node->figureMap() * parent->figureMap().inverse();
        // Below the figure itself there is no node of the file to hang on: the place in the world is written.
        const RyAffine local = bind * localPose *
                               (hasParent ? binds[parent].inverse() : parent->worldMap() * toCentimetres.inverse());
        bool exact = true;
        RyGltfTransform transform = ryGltfTransformOf(local, false, &exact);
        if (!exact)
            transform = ryGltfTransformOf(local, true);
        const int index = m_document->addNode(node->getName(), transform, hasParent ? above->second : -1);
        binds[node] = bind;
        m_indexOf[node] = index;
        m_added.emplace_back(node, index);
        const RyGltfFigureSource *figure = m_source.findFigureSource(node->getSkeleton());
        if (figure && !figure->skins.empty() && qobject_cast<const RyBone *>(node)) {
            bonesOfSkin[figure->skins.front().skin].push_back(node);
        } else if (node->getObject() && m_messages) {
            m_messages->append(QStringLiteral("The mesh of \"%1\" is new below a node of the file and was not written")
                                   .arg(node->getName()));
        }
    }
    for (const auto &[skin, bones] : bonesOfSkin)
        addJoints(skin, bones, binds);
}

void RyGltfSceneWriter::addJoints(int skin, const std::vector<const RyNode *> &bones,
                                  const std::map<const RyNode *, RyAffine> &binds)
{
    const RyGltfSkin &before = m_source.document->model().skins[size_t(skin)];
    std::vector<float> values;
    if (before.inverseBindMatrices >= 0)
        values = m_source.document->readFloats(before.inverseBindMatrices);
    values.resize(16 * before.joints.size(), 0.0f);
    RyAffine toFigure = RyAffine::fromScale(m_source.unit, m_source.unit, m_source.unit);
    for (const RyGltfFigureSource &figure : m_source.figures) {
        for (const RyGltfSkinSource &source : figure.skins) {
            if (source.skin == skin && !source.rebound)
                toFigure = source.toFigure;
        }
    }
    std::vector<int> joints = before.joints;
    for (const RyNode *bone : bones) {
        ryGltfAppendMatrix(toFigure * binds.at(bone).inverse(), values);
        joints.push_back(m_indexOf.at(bone));
    }
    m_document->setSkinInverseBindMatrices(skin, m_document->addFloatAccessor(values, 16, 0));
    RyGltfTreePatch tree(*m_document);
    tree.setSkinJoints(skin, joints);
    QString error;
    if (!tree.finish(&error) && m_messages)
        m_messages->append(QStringLiteral("New bones could not become joints of the skin: %1").arg(error));
}
