#pragma once

#include "rycore/io/gltf/clips/RyGltfClips.h"

#include <QByteArray>
#include <QHash>

#include <map>
#include <set>
#include <span>
#include <tuple>

/// A curve that a channel of a clip is to have.
struct RyGltfClipChange
{
    static constexpr size_t isNew = size_t(-1);

    size_t clip = 0;
    int node = -1;
    RyGltfPath path = RyGltfPath::Translation;
    size_t channel = isNew; ///< its place in the clip's list, or a new one at its end
    std::shared_ptr<const RyGltfCurve> curve;
};

/// Writes curves into the clips of a document. Accessors of the file are shared by channels, clips and others: one is
/// overwritten only where all that read it get the same numbers. Equal numbers stand once.
class RyGltfClipWriter
{
public:
    /// `clips`: as they were read, with the same list of clips and channels as the document. Both must outlive it.
    RyGltfClipWriter(RyGltfDocument &document, const RyGltfClips &clips) : m_document(document), m_clips(clips) {}

    /// False with a reason when a buffer would grow too large.
    bool write(const std::vector<RyGltfClipChange> &changes, QString *error);

private:
    struct Entry
    {
        const RyGltfClipChange *change;
        const RyGltfChannel *channel; // null for a new one
        QByteArray times, values;     // as floats; times only where they are others than before
        RyGltfSampler sampler;        // to be written
    };

    void gather(const std::vector<RyGltfClipChange> &changes);
    void fill(Entry &entry) const;
    const std::vector<size_t> &samplerUses(size_t clip);
    void noteTimes(size_t clip);
    void overwrite();
    static std::tuple<int, size_t, size_t> placeOf(const Entry &entry);
    int samplersOf(std::span<Entry *const> entries);
    bool addAccessors();
    void writeClips();
    void writeClip(nlohmann::ordered_json &clip, const std::vector<const Entry *> &entries);
    void releaseOld();

    RyGltfDocument &m_document;
    const RyGltfClips &m_clips;
    std::vector<Entry> m_entries;
    QHash<QByteArray, int> m_times;               // accessors by what they hold
    std::set<size_t> m_noted;                     // clips whose times are known
    std::set<int> m_notedInputs;                  // accessors of times that are known
    std::map<size_t, std::vector<size_t>> m_uses; // of samplers, by clip and place
};
