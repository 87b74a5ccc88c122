#include "rycore/io/gltf/document/RyGltfAppender.h"

#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/file/RyGltfJson.h"
#include "rycore/io/gltf/file/RyGltfUri.h"

#include <QFileInfo>

#include <algorithm>

using Json = RyGltfReferences::Json;

namespace {

constexpr const char *Pointer = "KHR_animation_pointer";

/// A copy of a list without the indices that are dropped.
void pruneIndices(Json &object, const char *key, const std::vector<bool> &isDropped)
{
    const auto found = object.find(key);
    if (found == object.end() || !found->is_array())
        return;
    Json kept = Json::array();
    for (const Json &index : *found) {
        const bool isIndex = RyGltfReferences::isIndex(index) && index.get<std::size_t>() < isDropped.size();
        if (!isIndex || !isDropped[index.get<std::size_t>()])
            kept.push_back(index);
    }
    if (kept.empty())
        object.erase(key); // the format knows no empty lists
    else
        *found = std::move(kept);
}

const Json *memberOf(const Json &object, const char *key)
{
    return RyGltfJson::find(object, key);
}

const Json *extensionOf(const Json &object, const char *name)
{
    const Json *extensions = memberOf(object, "extensions");
    return extensions ? memberOf(*extensions, name) : nullptr;
}

} // namespace

RyGltfAppender::RyGltfAppender(RyGltfDocument &target, const RyGltfDocument &from, const std::set<int> &leftOut)
    : m_target(target), m_from(from), m_tree(from.json())
{
    for (int list = 0; list < ryGltfListCount; ++list)
        m_isDropped[std::size_t(list)].assign(listOf(RyGltfList(list)).size(), false);
    leaveOutUnknown(m_tree);
    dropNodes(leftOut);
    if (leftOut.empty())
        return;
    pruneAnimations();
    dropUnused();
}

const Json &RyGltfAppender::listOf(RyGltfList list) const
{
    static const Json none = Json::array();
    const Json *found = RyGltfReferences::findList(m_tree, list);
    return found ? *found : none;
}

bool RyGltfAppender::isDropped(RyGltfList list, std::size_t index) const
{
    const std::vector<bool> &dropped = m_isDropped[std::size_t(list)];
    return index < dropped.size() && dropped[index];
}

void RyGltfAppender::lose(const QString &what)
{
    m_losses.append(QStringLiteral("%1: %2").arg(QFileInfo(m_from.path()).fileName(), what));
}

// --- What is left out

void RyGltfAppender::dropNodes(const std::set<int> &leftOut)
{
    std::vector<bool> &dropped = m_isDropped[std::size_t(RyGltfList::Nodes)];
    std::vector<int> pending(leftOut.begin(), leftOut.end());
    while (!pending.empty()) {
        const int node = pending.back();
        pending.pop_back();
        dropped[std::size_t(node)] = true;
        const std::vector<int> &children = m_from.model().nodes[std::size_t(node)].children;
        pending.insert(pending.end(), children.begin(), children.end());
    }
    for (std::size_t node = 0; node < dropped.size(); ++node)
        pruneIndices(m_tree["nodes"][node], "children", dropped);
    for (std::size_t skin = 0; skin < m_from.model().skins.size(); ++skin) {
        const std::vector<int> &joints = m_from.model().skins[skin].joints;
        m_isDropped[std::size_t(RyGltfList::Skins)][skin] =
            std::any_of(joints.begin(), joints.end(), [&dropped](int joint) { return dropped[std::size_t(joint)]; });
        const int above = m_from.model().skins[skin].skeleton;
        if (above >= 0 && dropped[std::size_t(above)])
            m_tree["skins"][skin].erase("skeleton");
    }
}

bool RyGltfAppender::isDriven(const Json &channel) const
{
    const Json *target = memberOf(channel, "target");
    const Json *node = target ? memberOf(*target, "node") : nullptr;
    if (node && RyGltfReferences::isIndex(*node) && isDropped(RyGltfList::Nodes, node->get<std::size_t>()))
        return false;
    const Json *pointer = target ? extensionOf(*target, Pointer) : nullptr;
    const Json *text = pointer ? memberOf(*pointer, "pointer") : nullptr;
    RyGltfList list;
    int index = -1;
    std::string rest;
    return !text || !text->is_string() ||
           !RyGltfReferences::splitPointer(text->get_ref<const std::string &>(), list, index, rest) ||
           !isDropped(list, std::size_t(index));
}

/// Channels of nodes that are left out go with their samplers; a clip that drove nothing else goes as a whole.
void RyGltfAppender::pruneAnimations()
{
    for (std::size_t a = 0; a < listOf(RyGltfList::Animations).size(); ++a) {
        Json &animation = m_tree["animations"][a];
        const Json *channelsBefore = memberOf(animation, "channels");
        const Json *samplersBefore = memberOf(animation, "samplers");
        if (!channelsBefore || !channelsBefore->is_array() || !samplersBefore || !samplersBefore->is_array())
            continue;
        if (std::all_of(channelsBefore->begin(), channelsBefore->end(),
                        [this](const Json &channel) { return isDriven(channel); }))
            continue; // as it was, samplers that several channels share included
        Json channels = Json::array();
        Json samplers = Json::array();
        for (const Json &channel : *channelsBefore) {
            if (!isDriven(channel))
                continue;
            channels.push_back(channel);
            const Json *sampler = memberOf(channel, "sampler");
            if (!sampler || !RyGltfReferences::isIndex(*sampler) ||
                sampler->get<std::size_t>() >= samplersBefore->size())
                continue; // nothing can play it
            samplers.push_back((*samplersBefore)[sampler->get<std::size_t>()]);
            channels.back()["sampler"] = samplers.size() - 1;
        }
        m_isDropped[std::size_t(RyGltfList::Animations)][a] = channels.empty();
        animation["channels"] = std::move(channels);
        animation["samplers"] = std::move(samplers);
    }
}

/// An entry goes when something uses it and all that do go; a skin only with its joints, for it makes a figure of them
/// without any mesh. What nothing uses stays: it may be named in a way that is not known here.
void RyGltfAppender::dropUnused()
{
    std::array<std::vector<int>, ryGltfListCount> uses, usesThatStay;
    for (int list = 0; list < ryGltfListCount; ++list) {
        uses[std::size_t(list)].assign(m_isDropped[std::size_t(list)].size(), 0);
        usesThatStay[std::size_t(list)] = uses[std::size_t(list)];
    }
    for (int i = 0; i < ryGltfListCount; ++i) { // what uses stands before what is used
        const Json &entries = listOf(RyGltfList(i));
        for (std::size_t entry = 0; entry < entries.size(); ++entry) {
            const bool goesByUse = RyGltfList(i) != RyGltfList::Nodes && RyGltfList(i) != RyGltfList::Skins;
            if (goesByUse && uses[std::size_t(i)][entry] > 0 && usesThatStay[std::size_t(i)][entry] == 0) {
                m_isDropped[std::size_t(i)][entry] = true;
            }
            const bool stays = !m_isDropped[std::size_t(i)][entry];
            RyGltfReferences::visit(RyGltfList(i), entries[entry], [&](RyGltfList to, const Json &index) {
                const std::size_t place = index.get<std::size_t>();
                if (place >= uses[std::size_t(to)].size())
                    return;
                ++uses[std::size_t(to)][place];
                usesThatStay[std::size_t(to)][place] += stays;
            });
        }
    }
}

/// Extensions whose references are not known go, wherever they stand, unless they hold nothing.
void RyGltfAppender::leaveOutUnknown(Json &value)
{
    if (value.is_array()) {
        for (Json &element : value) {
            if (!element.is_structured())
                return; // a list of numbers
            leaveOutUnknown(element);
        }
    }
    if (!value.is_object())
        return;
    Json *extensions = nullptr;
    for (auto &[key, member] : *value.get_ptr<Json::object_t *>()) {
        if (!member.is_structured() || key == "extras")
            continue;
        if (key == "extensions" && member.is_object())
            extensions = &member;
        else
            leaveOutUnknown(member);
    }
    if (!extensions)
        return;
    Json kept = Json::object();
    for (auto &[name, extension] : *extensions->get_ptr<Json::object_t *>()) {
        const bool isEmpty = extension.is_object() && extension.empty();
        if (isEmpty || RyGltfReferences::knowsExtension(QString::fromStdString(name))) {
            leaveOutUnknown(extension);
            kept[name] = std::move(extension);
        } else {
            m_unknown.insert(name);
        }
    }
    if (kept.empty())
        value.erase("extensions");
    else
        *extensions = std::move(kept);
}

// --- What is brought over

void RyGltfAppender::countPlaces()
{
    for (int i = 0; i < ryGltfListCount; ++i) {
        const Json *there = RyGltfReferences::findList(m_target.json(), RyGltfList(i));
        int next = there ? int(there->size()) : 0;
        for (const bool dropped : m_isDropped[std::size_t(i)])
            m_places.of[std::size_t(i)].push_back(dropped || RyGltfList(i) == RyGltfList::Scenes ? -1 : next++);
    }
}

void RyGltfAppender::renumber(RyGltfList list, Json &entry) const
{
    RyGltfReferences::visit(list, entry, [this](RyGltfList to, Json &index) {
        const std::vector<int> &places = m_places.of[std::size_t(to)];
        const std::size_t place = index.get<std::size_t>();
        if (place < places.size() && places[place] >= 0)
            index = places[place];
    });
}

void RyGltfAppender::renumberPointers(Json &animation) const
{
    if (!memberOf(animation, "channels"))
        return;
    for (Json &channel : animation["channels"]) {
        const Json *target = memberOf(channel, "target");
        if (!target || !extensionOf(*target, Pointer))
            continue;
        Json &extension = channel["target"]["extensions"][Pointer];
        RyGltfList list;
        int index = -1;
        std::string rest;
        const auto text = extension.find("pointer");
        if (text != extension.end() && text->is_string() &&
            RyGltfReferences::splitPointer(text->get_ref<const std::string &>(), list, index, rest) &&
            std::size_t(index) < m_places.of[std::size_t(list)].size()) {
            *text = RyGltfReferences::joinPointer(list, m_places.at(list, index), rest);
        }
    }
}

std::vector<int> RyGltfAppender::append(const QString &name, QString *error)
{
    countPlaces();
    copyBuffers();
    copyEntries();
    const std::vector<int> roots = addRoots(name);
    copySceneExtensions();
    uniteExtensionLists();
    if (!m_target.refresh(error))
        return {};
    takeInPictures();
    if (!m_from.d->otherChunks.empty())
        lose(QStringLiteral("chunks of the container that glTF does not know were left out"));
    for (const std::string &extension : m_unknown) {
        lose(QStringLiteral("the extension %1 was left out, for what it names is not known")
                 .arg(QString::fromStdString(extension)));
    }
    return roots;
}

void RyGltfAppender::copyBuffers()
{
    const std::vector<RyGltfBuffer> &buffers = m_from.d->storage.buffers;
    m_viewOffsets.resize(buffers.size());
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        if (isDropped(RyGltfList::Buffers, i))
            continue;
        RyGltfBuffer buffer = buffers[i];
        m_viewOffsets[i] = compactBuffer(i, buffer.bytes);
        if (buffer.source != RyGltfBuffer::DataUri || !m_viewOffsets[i].empty()) {
            buffer.source = RyGltfBuffer::Made;
            m_tree["buffers"][i].erase("uri");
        }
        m_tree["buffers"][i]["byteLength"] = buffer.bytes.size();
        m_target.d->storage.buffers.push_back(std::move(buffer));
    }
}

/// Leaves the bytes of views out that are left out. Gives the new offsets of the views, none where all stay.
std::vector<std::uint64_t> RyGltfAppender::compactBuffer(std::size_t buffer, QByteArray &bytes) const
{
    constexpr std::uint64_t Alignment = 16; // as much as any reader may count on
    const std::vector<RyGltfBufferView> &views = m_from.d->storage.views;
    const Json &entries = listOf(RyGltfList::BufferViews);
    std::vector<std::size_t> kept;
    bool anyDropped = false;
    for (std::size_t v = 0; v < views.size(); ++v) {
        if (std::size_t(views[v].buffer) != buffer)
            continue;
        if (entries[v].contains("extensions"))
            return {}; // which may read the buffer in a way of its own
        anyDropped = anyDropped || isDropped(RyGltfList::BufferViews, v);
        if (!isDropped(RyGltfList::BufferViews, v))
            kept.push_back(v);
    }
    if (!anyDropped)
        return {};
    std::sort(kept.begin(), kept.end(), [&views](std::size_t a, std::size_t b) {
        return std::make_pair(views[a].offset, a) < std::make_pair(views[b].offset, b);
    });
    std::vector<std::uint64_t> offsets(views.size(), 0);
    QByteArray result;
    std::uint64_t from = 0, end = 0; // of the run at hand, in the buffer as it was
    std::uint64_t start = 0;         // of the run, in the result
    for (const std::size_t v : kept) {
        const RyGltfBufferView &view = views[v];
        if (view.offset >= end) {
            from = end = view.offset;
            start = (std::uint64_t(result.size()) + Alignment - 1) / Alignment * Alignment + from % Alignment;
            result.append(int(start) - result.size(), '\0');
        }
        if (view.offset + view.length > end) {
            result.append(bytes.constData() + end, int(view.offset + view.length - end));
            end = view.offset + view.length;
        }
        offsets[v] = start + view.offset - from;
    }
    bytes = result;
    return offsets;
}

void RyGltfAppender::copyEntries()
{
    Json &target = m_target.json();
    for (int i = 0; i < ryGltfListCount; ++i) {
        const RyGltfList list = RyGltfList(i);
        const std::vector<int> &places = m_places.of[std::size_t(i)];
        if (std::all_of(places.begin(), places.end(), [](int place) { return place < 0; }))
            continue;
        Json &from = RyGltfReferences::makeList(m_tree, list);
        Json &to = RyGltfReferences::makeList(target, list);
        for (std::size_t entry = 0; entry < from.size(); ++entry) {
            if (isDropped(list, entry))
                continue;
            Json &each = from[entry];
            if (list == RyGltfList::BufferViews) {
                const std::vector<std::uint64_t> &offsets =
                    m_viewOffsets[std::size_t(m_from.d->storage.views[entry].buffer)];
                if (!offsets.empty())
                    each["byteOffset"] = offsets[entry];
            }
            renumber(list, each);
            if (list == RyGltfList::Animations)
                renumberPointers(each);
            to.push_back(std::move(each));
        }
    }
}

// --- What lies above the lists

std::vector<int> RyGltfAppender::addRoots(const QString &name)
{
    const RyGltfModel &model = m_from.model();
    std::vector<bool> isShown(model.nodes.size(), false);
    Json shown = Json::array();
    Json hidden = Json::array();
    for (const int node : model.sceneRoots) {
        isShown[std::size_t(node)] = true;
        if (m_places.at(RyGltfList::Nodes, node) >= 0)
            shown.push_back(m_places.at(RyGltfList::Nodes, node));
    }
    for (std::size_t node = 0; node < model.nodes.size(); ++node) {
        if (model.nodes[node].parent < 0 && !isShown[node] && m_places.at(RyGltfList::Nodes, int(node)) >= 0)
            hidden.push_back(m_places.at(RyGltfList::Nodes, int(node)));
    }
    Json &tree = m_target.json();
    Json &nodes = RyGltfReferences::makeList(tree, RyGltfList::Nodes);
    std::vector<int> roots{int(nodes.size())};
    nodes.push_back(rootOf(name, shown));
    const int scene = m_target.shownScene();
    if (scene >= 0)
        tree["scenes"][std::size_t(scene)]["nodes"].push_back(roots.front());
    if (!hidden.empty()) {
        roots.push_back(int(nodes.size()));
        nodes.push_back(Json{{"children", hidden}});
    }
    return roots;
}

/// The node that stands for the whole document: what it says of itself goes into its extras.
Json RyGltfAppender::rootOf(const QString &name, const Json &children)
{
    Json root = Json::object();
    if (!name.isEmpty())
        root["name"] = name.toStdString();
    const Json *asset = memberOf(m_tree, "asset");
    Json said = Json::object();
    for (const char *key : {"copyright", "extras"}) {
        if (const Json *value = asset ? memberOf(*asset, key) : nullptr)
            said[key] = *value;
    }
    if (const Json *extras = memberOf(m_tree, "extras"))
        root["extras"] = *extras;
    if (!said.empty() && (!root.contains("extras") || root["extras"].is_object()))
        root["extras"]["asset"] = std::move(said);
    if (const Json *packet = asset ? extensionOf(*asset, "KHR_xmp_json_ld") : nullptr) {
        root["extensions"]["KHR_xmp_json_ld"] = *packet;
        renumber(RyGltfList::Nodes, root);
    }
    if (!children.empty())
        root["children"] = children;
    return root;
}

/// The target's scene keeps its own light where both have one.
void RyGltfAppender::copySceneExtensions()
{
    const int from = m_from.shownScene();
    const int to = m_target.shownScene();
    const int count = int(listOf(RyGltfList::Scenes).size());
    if (count > 1)
        lose(QStringLiteral("scenes that are not shown were left out; their nodes were not"));
    const Json *extensions = from < 0 || to < 0 ? nullptr : memberOf(m_tree["scenes"][std::size_t(from)], "extensions");
    if (!extensions || !extensions->is_object())
        return;
    Json scene = Json{{"extensions", *extensions}};
    renumber(RyGltfList::Scenes, scene);
    Json &target = m_target.json()["scenes"][std::size_t(to)]["extensions"];
    if (!target.is_object())
        target = Json::object();
    for (auto &[name, extension] : scene["extensions"].items()) {
        if (!target.contains(name))
            target[name] = std::move(extension);
        else if (target[name] != extension)
            lose(QStringLiteral("the extension %1 of the scene was left out, for there is another")
                     .arg(QString::fromStdString(name)));
    }
}

void RyGltfAppender::uniteExtensionLists()
{
    for (const char *key : {"extensionsUsed", "extensionsRequired"}) {
        const Json *names = memberOf(m_tree, key);
        for (const Json &name : names && names->is_array() ? *names : Json::array()) {
            if (!name.is_string() || m_unknown.count(name.get<std::string>()))
                continue;
            Json &list = m_target.json()[key];
            if (!list.is_array())
                list = Json::array();
            if (std::find(list.begin(), list.end(), name) == list.end())
                list.push_back(name);
        }
    }
}

/// Pictures beside the document would be looked for beside the target.
void RyGltfAppender::takeInPictures()
{
    for (std::size_t i = 0; i < listOf(RyGltfList::Images).size(); ++i) {
        if (isDropped(RyGltfList::Images, i))
            continue;
        Json &image = m_target.json()["images"][std::size_t(m_places.at(RyGltfList::Images, int(i)))];
        const auto uri = image.find("uri");
        if (uri == image.end() || !uri->is_string() || RyGltfUri::isData(uri->get_ref<const std::string &>()))
            continue;
        QString type;
        const QByteArray bytes = m_from.imageBytes(int(i), &type);
        const int view =
            bytes.isEmpty() ? -1 : m_target.d->appendView(bytes.constData(), std::uint64_t(bytes.size()), 0, 0);
        if (view < 0) {
            lose(QStringLiteral("the picture %1 cannot be read and was not taken in")
                     .arg(QString::fromStdString(uri->get<std::string>())));
            continue;
        }
        image.erase("uri");
        image["bufferView"] = view;
        image["mimeType"] = (type.isEmpty() ? QStringLiteral("image/png") : type).toStdString();
    }
}
