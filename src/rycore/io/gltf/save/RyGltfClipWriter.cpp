#include "rycore/io/gltf/save/RyGltfClipWriter.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <bit>
#include <limits>

using Json = RyExtrasJson::Json;

namespace {

const char *kindName(RyGltfCurve::Kind kind)
{
    return kind == RyGltfCurve::Step ? "STEP" : kind == RyGltfCurve::Cubic ? "CUBICSPLINE" : "LINEAR";
}

template<typename T>
float asFloat(T number)
{
    constexpr T Largest = std::numeric_limits<float>::max();
    return float(std::clamp(number, -Largest, Largest));
}

template<typename T>
QByteArray asFloats(const std::vector<T> &numbers)
{
    QByteArray bytes(int(numbers.size() * sizeof(float)), Qt::Uninitialized);
    std::transform(numbers.begin(), numbers.end(), reinterpret_cast<float *>(bytes.data()), asFloat<T>);
    return bytes;
}

/// Bit for bit.
bool areSameFloats(const std::vector<double> &a, const std::vector<double> &b)
{
    const auto isSame = [](double one, double other) {
        return std::bit_cast<std::uint32_t>(asFloat(one)) == std::bit_cast<std::uint32_t>(asFloat(other));
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), isSame);
}

std::span<const float> floatsOf(const QByteArray &bytes)
{
    return {reinterpret_cast<const float *>(bytes.constData()), size_t(bytes.size()) / sizeof(float)};
}

void assign(Json &sampler, const RyGltfSampler &to)
{
    sampler["input"] = to.input;
    if (to.kind != RyGltfCurve::Linear || sampler.contains("interpolation"))
        sampler["interpolation"] = kindName(to.kind);
    sampler["output"] = to.output;
}

} // namespace

bool RyGltfClipWriter::write(const std::vector<RyGltfClipChange> &changes, QString *error)
{
    if (!changes.empty()) // reading all curves takes its time
        gather(changes);
    if (m_entries.empty())
        return true;
    overwrite();
    if (!addAccessors()) {
        *error = QStringLiteral("the clips are too long for the file's buffers");
        return false;
    }
    writeClips();
    if (std::any_of(m_entries.begin(), m_entries.end(), [](const Entry &entry) { return !entry.channel; }))
        m_document.refreshClips();
    releaseOld();
    return true;
}

/// Leaves out what comes to the same floats as before.
void RyGltfClipWriter::gather(const std::vector<RyGltfClipChange> &changes)
{
    m_clips.readCurves();
    m_entries.reserve(changes.size());
    for (const RyGltfClipChange &change : changes) {
        const RyGltfClip &clip = m_clips.clips()[change.clip];
        noteTimes(change.clip);
        Entry &entry = m_entries.emplace_back(Entry{&change, nullptr, {}, {}, {}});
        if (change.channel != RyGltfClipChange::isNew) {
            entry.channel =
                &*std::lower_bound(clip.channels.begin(), clip.channels.end(), change.channel,
                                   [](const RyGltfChannel &channel, size_t wanted) { return channel.place < wanted; });
        }
    }
    constexpr size_t Grain = 64;
    RyParallel::forRanges(m_entries.size(), Grain, [this](size_t from, size_t to) {
        for (size_t i = from; i < to; ++i)
            fill(m_entries[i]);
    });
    std::erase_if(m_entries, [](const Entry &entry) { return entry.values.isEmpty(); });
}

/// What an entry writes; nothing where that is there already.
void RyGltfClipWriter::fill(Entry &entry) const
{
    const RyGltfCurve &curve = *entry.change->curve;
    entry.sampler.kind = curve.kind;
    if (entry.channel) {
        const RyGltfCurve &old = *m_clips.curve(*entry.channel);
        if (old.times == curve.times)
            entry.sampler.input = entry.channel->sampler.input;
        if (entry.sampler.input >= 0 && old.kind == curve.kind && areSameFloats(old.values, curve.values))
            return;
    }
    if (entry.sampler.input < 0)
        entry.times = asFloats(curve.times);
    entry.values = asFloats(curve.values);
}

/// New channels use key times that are there.
void RyGltfClipWriter::noteTimes(size_t clip)
{
    if (!m_noted.insert(clip).second)
        return;
    for (const RyGltfChannel &channel : m_clips.clips()[clip].channels) {
        const auto &curve = m_clips.curve(channel);
        if (!curve || !m_notedInputs.insert(channel.sampler.input).second)
            continue;
        const QByteArray times = asFloats(curve->times);
        if (!m_times.contains(times))
            m_times.insert(times, channel.sampler.input);
    }
}

/// How many channels use each sampler of a clip.
const std::vector<size_t> &RyGltfClipWriter::samplerUses(size_t clip)
{
    const auto [known, isNew] = m_uses.try_emplace(clip);
    if (!isNew)
        return known->second;
    const RyGltfDocument &document = m_document; // what may write makes it count its uses anew
    const Json &entry = RyGltfReferences::listIn(document.json(), "animations")[clip];
    known->second.resize(RyGltfReferences::listIn(entry, "samplers").size());
    for (const Json &channel : RyGltfReferences::listIn(entry, "channels")) {
        const Json *sampler = RyExtrasJson::find(channel, "sampler");
        if (sampler && RyGltfReferences::isIndex(*sampler) && sampler->get<size_t>() < known->second.size())
            ++known->second[sampler->get<size_t>()];
    }
    return known->second;
}

/// Where all samplers that read an accessor get the same numbers, its own are overwritten, or moved where others need
/// another room.
void RyGltfClipWriter::overwrite()
{
    std::vector<Entry *> known; // those of channels, by output and sampler
    for (Entry &entry : m_entries) {
        if (entry.channel)
            known.push_back(&entry);
    }
    std::sort(known.begin(), known.end(), [](const Entry *a, const Entry *b) { return placeOf(*a) < placeOf(*b); });
    const std::set<int> named = m_document.numbersInExtensions(); // any of them may be an accessor
    for (size_t from = 0, to = 0; from < known.size(); from = to) {
        const int output = known[from]->channel->sampler.output;
        while (to < known.size() && known[to]->channel->sampler.output == output)
            ++to;
        const std::span<Entry *const> entries(known.data() + from, to - from);
        const int samplers = samplersOf(entries);
        const RyGltfAccessor &form = m_document.model().accessors[size_t(output)];
        if (samplers == 0 || named.count(output) || form.componentType != 5126)
            continue;
        const std::span<const float> values = floatsOf(entries.front()->values);
        int written = -1;
        if (values.size() == form.count * size_t(form.componentCount))
            written = m_document.replaceFloats(output, values, samplers);
        else if (!named.count(form.bufferView) && m_document.resizeFloats(output, values, samplers))
            written = output;
        for (Entry *entry : entries)
            entry->sampler.output = written;
    }
}

std::tuple<int, size_t, size_t> RyGltfClipWriter::placeOf(const Entry &entry)
{
    return {entry.channel->sampler.output, entry.change->clip, entry.channel->samplerPlace};
}

/// How many samplers the entries, in order, stand for; none where one has other channels as well, or other numbers than
/// the first.
int RyGltfClipWriter::samplersOf(std::span<Entry *const> entries)
{
    int count = 0;
    for (size_t from = 0, to = 0; from < entries.size(); from = to, ++count) {
        const Entry &first = *entries[from];
        for (; to < entries.size() && placeOf(*entries[to]) == placeOf(first); ++to) {
            if (entries[to]->values != entries.front()->values)
                return 0;
        }
        if (to - from != samplerUses(first.change->clip)[first.channel->samplerPlace])
            return 0;
    }
    return count;
}

bool RyGltfClipWriter::addAccessors()
{
    QHash<QByteArray, int> known[2]; // by components: three or four
    for (Entry &entry : m_entries) {
        if (entry.sampler.input < 0) {
            const auto found = m_times.constFind(entry.times);
            entry.sampler.input =
                found != m_times.constEnd() ? *found : m_document.addFloatAccessor(floatsOf(entry.times), 1, 0, true);
            m_times.insert(entry.times, entry.sampler.input);
        }
        if (entry.sampler.output < 0) {
            const int components = entry.change->curve->components;
            const auto found = known[components - 3].constFind(entry.values);
            entry.sampler.output = found != known[components - 3].constEnd()
                                       ? *found
                                       : m_document.addFloatAccessor(floatsOf(entry.values), components, 0);
            known[components - 3].insert(entry.values, entry.sampler.output);
        }
        if (entry.sampler.input < 0 || entry.sampler.output < 0)
            return false;
    }
    return true;
}

void RyGltfClipWriter::writeClips()
{
    std::map<size_t, std::vector<const Entry *>> byClip;
    for (const Entry &entry : m_entries)
        byClip[entry.change->clip].push_back(&entry);
    for (const auto &[clip, entries] : byClip)
        writeClip(m_document.clips()[clip], entries);
}

/// A sampler that other channels use as well, or that they want otherwise, stays; a copy of it is changed.
void RyGltfClipWriter::writeClip(Json &clip, const std::vector<const Entry *> &entries)
{
    Json &channels = clip["channels"];
    Json &samplers = clip["samplers"];
    const std::vector<size_t> &uses = samplerUses(entries.front()->change->clip);
    std::map<size_t, std::map<RyGltfSampler, std::vector<const Entry *>>> wanted; // by place of the sampler
    std::map<RyGltfSampler, size_t> added;
    for (const Entry *entry : entries) {
        if (entry->channel)
            wanted[entry->channel->samplerPlace][entry->sampler].push_back(entry);
    }
    for (const auto &[place, bySampler] : wanted) {
        for (const auto &[sampler, users] : bySampler) {
            if (bySampler.size() == 1 && users.size() == uses.at(place)) {
                assign(samplers[place], sampler);
                continue;
            }
            Json copy = samplers[place];
            assign(copy, sampler);
            for (const Entry *user : users)
                channels[user->channel->place]["sampler"] = samplers.size();
            samplers.push_back(std::move(copy));
        }
    }
    for (const Entry *entry : entries) {
        if (entry->channel)
            continue;
        const auto [known, isFirst] = added.try_emplace(entry->sampler, samplers.size());
        if (isFirst) {
            Json sampler = Json::object();
            assign(sampler, entry->sampler);
            samplers.push_back(std::move(sampler));
        }
        channels.push_back(
            Json{{"sampler", known->second},
                 {"target", Json{{"node", entry->change->node}, {"path", ryGltfPathName(entry->change->path)}}}});
    }
}

void RyGltfClipWriter::releaseOld()
{
    std::set<int> old;
    for (const Entry &entry : m_entries) {
        if (entry.channel)
            old.insert({entry.channel->sampler.input, entry.channel->sampler.output});
    }
    m_document.releaseUnused({old.begin(), old.end()});
}
