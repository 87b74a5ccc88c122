#include "rycore/io/gltf/extras/RyLinkExtras.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyLinkGraph.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyGltfNodeIndex.h"
#include "rycore/io/gltf/extras/RyNamedValues.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <unordered_map>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

QString quoted(const QString &name)
{
    return QLatin1Char('"') + name + QLatin1Char('"');
}

// --- Writing

struct Holder
{
    const RyNode *node;
    Json reference; // to the node
};

/// What stands in the file, figures first, in an order that only the file decides.
std::vector<Holder> holdersOf(const std::vector<const RyNode *> &figures, const RyGltfNodeIndex &nodeOf)
{
    std::vector<Holder> holders;
    std::set<const RyNode *> known;
    for (size_t i = 0; i < figures.size(); ++i) {
        if (qobject_cast<const RySkeleton *>(figures[i]) && known.insert(figures[i]).second)
            holders.push_back({figures[i], Json{{"figure", int(i)}}});
    }
    std::map<int, const RyNode *> nodes;
    for (const auto &[node, place] : nodeOf.entries()) {
        if (!known.count(node))
            nodes.emplace(place, node);
    }
    for (const auto &[place, node] : nodes)
        holders.push_back({node, Json{{"node", place}}});
    return holders;
}

bool isLinked(const RyNode &node)
{
    const std::vector<RyFloatProperty *> properties = RyNamedValues::propertiesOf(node);
    return std::any_of(properties.begin(), properties.end(),
                       [](const RyFloatProperty *property) { return !property->getControllerLinks().empty(); });
}

Json referenceTo(const Holder &holder, const RyNamedValues::Value &value)
{
    Json reference = holder.reference;
    reference["property"] = value.name.toStdString();
    if (value.number > 0)
        reference["number"] = value.number;
    return reference;
}

// --- Reading

class Reader
{
public:
    Reader(const RyGltfDocument &document, const RyLinkExtras::Places &places, QStringList *messages)
        : m_document(document), m_places(places), m_messages(messages)
    {}

    void read(const Json &entries);
    std::set<const RyNode *> apply();

private:
    struct End
    {
        RyNode *node = nullptr;
        RyFloatProperty *property = nullptr;
        QString text;   // what it is called in messages
        QString reason; // why there is no property
    };
    /// A controlled value with its controllers.
    struct Entry
    {
        End controlled;
        std::vector<End> controllers;
        float target;   // what results, as the file says it
        float ownShare; // likewise
    };

    End findEnd(const Json &reference);
    const RyNamedValues &valuesOf(const RyNode *node);
    void leaveOut(const End &from, const End &to, const QString &reason);
    std::vector<Entry *> inOrder();
    void attach(const Entry &entry);

    const RyGltfDocument &m_document;
    const RyLinkExtras::Places &m_places;
    QStringList *m_messages;
    std::unordered_map<const RyNode *, RyNamedValues> m_values;
    std::deque<Entry> m_entries;
    std::unordered_map<const RyFloatProperty *, Entry *> m_entryOf;
};

const RyNamedValues &Reader::valuesOf(const RyNode *node)
{
    return m_values.try_emplace(node, *node).first->second;
}

Reader::End Reader::findEnd(const Json &reference)
{
    End end;
    const Json *figure = find(reference, "figure");
    const Json *node = find(reference, "node");
    const Json *property = find(reference, "property");
    const Json *number = find(reference, "number");
    const QString name =
        property && property->is_string() ? QString::fromStdString(property->get<std::string>()) : QString();
    if (figure && figure->is_number_integer()) {
        const auto found = m_places.figures.find(figure->get<int>());
        end.node = found == m_places.figures.end() ? nullptr : found->second;
        end.text = QStringLiteral("figure %1").arg(figure->get<int>());
    } else if (node && node->is_number_integer()) {
        const int place = node->get<int>();
        const bool isThere = place >= 0 && size_t(place) < m_places.nodeAt.size();
        end.node = isThere ? m_places.nodeAt[size_t(place)] : nullptr;
        end.text = isThere ? m_document.model().nodes[size_t(place)].name : QString();
        if (end.text.isEmpty())
            end.text = QStringLiteral("node %1").arg(place);
    } else {
        end.text = QStringLiteral("nothing");
    }
    if (!end.node) {
        end.reason = QStringLiteral("%1 does not stand in the scene").arg(quoted(end.text));
        end.text = quoted(end.text + QStringLiteral(": ") + name);
        return end;
    }
    const int count = number && number->is_number_integer() ? number->get<int>() : 0;
    end.property = valuesOf(end.node).find(name, count);
    end.text = quoted(end.property ? end.property->getFullLabel() : end.node->getLabel() + QStringLiteral(": ") + name);
    if (!end.property)
        end.reason = QStringLiteral("%1 has no value called %2").arg(quoted(end.node->getLabel()), quoted(name));
    return end;
}

void Reader::leaveOut(const End &from, const End &to, const QString &reason)
{
    if (m_messages)
        m_messages->append(
            QStringLiteral("The stored link from %1 to %2 is left out: %3").arg(from.text, to.text, reason));
}

void Reader::read(const Json &entries)
{
    for (const Json &each : entries) {
        const Json *from = find(each, "from");
        if (!from || !from->is_array())
            continue;
        const End controlled = findEnd(each);
        Entry *entry = nullptr;
        if (controlled.property) {
            Entry *&known = m_entryOf[controlled.property];
            if (!known) {
                const float target = controlled.property->getValue();
                const Json *raw = find(each, "raw");
                const bool hasRaw = raw && raw->is_number() && std::isfinite(raw->get<float>());
                m_entries.push_back({controlled, {}, target, hasRaw ? raw->get<float>() : target});
                known = &m_entries.back();
            }
            entry = known;
        }
        for (const Json &reference : *from) {
            const End controller = findEnd(reference);
            if (!controlled.property || !controller.property)
                leaveOut(controller, controlled, controlled.property ? controller.reason : controlled.reason);
            else
                entry->controllers.push_back(controller);
        }
    }
}

/// Controllers before what they control: then a link is made to what controls nothing yet, and every value is worked
/// out once. Links that would close a circle go.
std::vector<Reader::Entry *> Reader::inOrder()
{
    enum State { New, Open, Done };
    std::unordered_map<const Entry *, State> states;
    std::vector<Entry *> order;
    struct Visit
    {
        Entry *entry;
        size_t next; // controller
    };
    for (Entry &first : m_entries) {
        if (states[&first] != New)
            continue;
        std::vector<Visit> path{{&first, 0}};
        states[&first] = Open;
        while (!path.empty()) {
            auto &[entry, next] = path.back();
            if (next == entry->controllers.size()) {
                states[entry] = Done;
                order.push_back(entry);
                path.pop_back();
                continue;
            }
            const auto above = m_entryOf.find(entry->controllers[next].property);
            const State state = above == m_entryOf.end() ? Done : states[above->second];
            if (state == Open) {
                leaveOut(entry->controllers[next], entry->controlled, QStringLiteral("it would close a circle"));
                entry->controllers.erase(entry->controllers.begin() + std::ptrdiff_t(next));
                continue;
            }
            ++next;
            if (state == New) {
                states[above->second] = Open;
                path.push_back({above->second, 0});
            }
        }
    }
    return order;
}

/// A value may stand outside of its limits, which act when it is written.
void Reader::attach(const Entry &entry)
{
    RyFloatProperty &property = *entry.controlled.property;
    for (const End &controller : entry.controllers)
        RyERCLink::create(controller.property, &property);
    if (RyNamedValues::isKeptRaw(property))
        return;
    const bool isClamped = property.isClamped();
    property.setIsClamped(false);
    property.setValue(entry.ownShare);
    if (std::abs(property.getValue() - entry.target) > 1e-4f * std::max(1.0f, std::abs(entry.target)))
        property.adjustValue(entry.target);
    property.setIsClamped(isClamped);
}

std::set<const RyNode *> Reader::apply()
{
    std::set<const RyNode *> nodes;
    for (const Entry *entry : inOrder()) {
        attach(*entry);
        nodes.insert(entry->controlled.node);
    }
    return nodes;
}

} // namespace

std::vector<RyLinkExtras::Link> RyLinkExtras::linksOf(const std::vector<const RyNode *> &nodes)
{
    std::vector<Link> links;
    if (RyLinkGraph::linkCount() == 0)
        return links;
    for (const RyNode *node : nodes) {
        for (const RyFloatProperty *property : RyNamedValues::propertiesOf(*node)) {
            for (const RyERCLink *link : property->getControllerLinks())
                links.push_back({property, link->getController(), property->getRawValue()});
        }
    }
    return links;
}

Json RyLinkExtras::toJson(const std::vector<const RyNode *> &figures, const RyGltfNodeIndex &nodeOf,
                          QStringList *messages)
{
    if (RyLinkGraph::linkCount() == 0)
        return Json();
    const std::vector<Holder> holders = holdersOf(figures, nodeOf);
    if (std::none_of(holders.begin(), holders.end(), [](const Holder &holder) { return isLinked(*holder.node); }))
        return Json();
    std::vector<RyNamedValues> values;
    for (const Holder &holder : holders)
        values.emplace_back(*holder.node);
    struct Place
    {
        const Holder *holder;
        const RyNamedValues::Value *value;
    };
    std::unordered_map<const RyFloatProperty *, Place> placeOf;
    for (size_t i = 0; i < holders.size(); ++i) {
        for (const RyNamedValues::Value &value : values[i].all())
            placeOf.emplace(value.property, Place{&holders[i], &value});
    }
    Json entries = Json::array();
    for (size_t i = 0; i < holders.size(); ++i) {
        for (const RyNamedValues::Value &value : values[i].all()) {
            Json from = Json::array();
            for (const RyERCLink *link : value.property->getControllerLinks()) {
                const auto place = placeOf.find(link->getController());
                if (place != placeOf.end()) {
                    from.push_back(referenceTo(*place->second.holder, *place->second.value));
                } else if (messages) {
                    messages->append(QStringLiteral("The link from %1 to %2 is not stored: the first one has no place "
                                                    "in the file")
                                         .arg(quoted(link->getController()->getFullLabel()),
                                              quoted(value.property->getFullLabel())));
                }
            }
            if (from.empty())
                continue;
            Json entry = referenceTo(holders[i], value);
            if (value.property->getRawValue() != value.property->getValue() &&
                !RyNamedValues::isKeptRaw(*value.property))
                entry["raw"] = value.property->getRawValue();
            entry["from"] = std::move(from);
            entries.push_back(std::move(entry));
        }
    }
    return entries.empty() ? Json() : entries;
}

std::set<const RyNode *> RyLinkExtras::apply(const RyGltfDocument &document, const Places &places,
                                             QStringList *messages)
{
    const Json *ours = RyExtrasJson::ours(document.json());
    const Json *links = ours ? find(*ours, "links") : nullptr;
    if (!links || !links->is_array())
        return {};
    Reader reader(document, places, messages);
    reader.read(*links);
    return reader.apply();
}
