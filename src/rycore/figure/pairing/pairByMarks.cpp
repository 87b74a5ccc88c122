#include "rycore/figure/pairing/RyNameMarks.h"
#include "rycore/figure/pairing/RyPairingRig.h"

#include "rycore/scene/RyNode.h"

#include <map>

namespace {

/// Of a bone and one exchange of its marks, the nearest candidates of each kind by position, -1 for none.
struct Candidates
{
    int exactThatFits = -1;
    int looseThatFits = -1;
    int exact = -1;
    int loose = -1;
    int looseCount = 0;

    /// But for the only loose one, which has to be that for both.
    int best() const
    {
        if (exactThatFits >= 0 || looseThatFits >= 0)
            return exactThatFits >= 0 ? exactThatFits : looseThatFits;
        return exact;
    }
};

class MarkPairing
{
public:
    explicit MarkPairing(RyPairingRig &rig) : m_rig(rig)
    {
        for (int i = 0; i < int(rig.members.size()); ++i) {
            if (!rig.isFree(i))
                continue;
            const QString name = rig.members[size_t(i)].node->getName();
            m_byName[RyNameMarks::folded(name)].push_back(i);
            const RyNameMarks marks(name);
            if (marks.isEmpty())
                continue;
            m_marked.emplace_back(i, marks);
            m_byStem[RyNameMarks::folded(RyNameMarks::withoutNumber(name))].push_back(i);
        }
    }

    void run()
    {
        using Which = RyNameMarks::Which;
        for (const auto &[bone, marks] : m_marked) {
            for (const Which which : {Which::First, Which::Last, Which::All}) {
                const bool isOther = which == Which::First || marks.marks().size() > 1;
                if (!isOther || !m_rig.isFree(bone))
                    continue;
                const int found = partnerOf(bone, marks, which);
                const auto &said = which == Which::Last ? marks.marks().back() : marks.marks().front();
                if (found >= 0)
                    m_rig.join(bone, found, RyPairingRig::Stage::Marks, said.isLeft ? RySide::Left : RySide::Right);
            }
        }
    }

private:
    int partnerOf(int bone, const RyNameMarks &marks, RyNameMarks::Which which) const
    {
        const Candidates found = candidates(bone, marks.exchanged(which));
        if (found.best() >= 0 || found.looseCount != 1)
            return found.best();
        const RyNameMarks others(m_rig.members[size_t(found.loose)].node->getName());
        return candidates(found.loose, others.exchanged(which)).looseCount == 1 ? found.loose : -1;
    }

    Candidates candidates(int bone, const QString &name) const
    {
        Candidates found;
        const QString folded = RyNameMarks::folded(name);
        for (const int other : namesakes(m_byName, folded)) {
            if (!mayBe(bone, other))
                continue;
            keepNearest(bone, other, found.exact);
            if (fits(bone, other))
                keepNearest(bone, other, found.exactThatFits);
        }
        for (const int other : namesakes(m_byStem, RyNameMarks::withoutNumber(folded))) {
            if (!mayBe(bone, other))
                continue;
            ++found.looseCount;
            keepNearest(bone, other, found.loose);
            if (fits(bone, other))
                keepNearest(bone, other, found.looseThatFits);
        }
        return found;
    }

    using Names = QHash<QString, std::vector<int>>;
    static const std::vector<int> &namesakes(const Names &names, const QString &name)
    {
        static const std::vector<int> none;
        const auto found = names.constFind(name);
        return found == names.constEnd() ? none : *found;
    }

    bool mayBe(int bone, int other) const { return other != bone && m_rig.isFree(other); }

    void keepNearest(int bone, int other, int &nearest) const
    {
        if (nearest < 0 || m_rig.gap(bone, other) < m_rig.gap(bone, nearest))
            nearest = other;
    }

    /// Their parents are one, none, or each other's opposites.
    bool fits(int bone, int other) const
    {
        const int parent = m_rig.members[size_t(bone)].parent;
        const int otherParent = m_rig.members[size_t(other)].parent;
        return parent == otherParent || (parent >= 0 && m_rig.members[size_t(parent)].partner == otherParent);
    }

    RyPairingRig &m_rig;
    std::vector<std::pair<int, RyNameMarks>> m_marked; // parents first
    QHash<QString, std::vector<int>> m_byName;         // folded
    QHash<QString, std::vector<int>> m_byStem;         // of those with marks, folded and without number
};

} // namespace

void pairByMarks(RyPairingRig &rig)
{
    MarkPairing(rig).run();
}
