#include "ClipEdits.h"
#include "ClipSessions.h"
#include "RigEdits.h"
#include "SketchTest.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <algorithm>

/// A new bone goes on as the one that gave it its weights, whatever happens to both and to others before it is saved.
class WeightGiversTest : public SketchTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
        m_sketch->bind();
        for (const char *interpolation : {"LINEAR", "CUBICSPLINE"})
            m_sketch->driveAll(m_sketch->addClip(interpolation), interpolation);
        open();
        m_givers.clear();
        m_choice = {};
        m_choice.frames = 60;
        m_dumps = QStringList(rySceneDump(m_character->scene));
        m_first = savedBytes();
    }
    void cleanup() { ryUndoStack()->clearAll(); }

    void everyOrder_data()
    {
        QTest::addColumn<QStringList>("edits");
        QTest::addColumn<int>("deleted");
        const std::pair<const char *, int> deleted[] = {{"the one split", ClipSketch::Spine},
                                                        {"the one with a sibling", ClipSketch::LeftArm},
                                                        {"one below", ClipSketch::LeftHand},
                                                        {"another", ClipSketch::RightArm}};
        for (const auto &[name, node] : deleted) {
            QStringList edits{QStringLiteral("delete"), QStringLiteral("sibling"), QStringLiteral("split")};
            do {
                const bool isGoneBefore =
                    (node == ClipSketch::Spine && edits.indexOf("delete") < edits.indexOf("split")) ||
                    (node == ClipSketch::LeftArm && edits.indexOf("delete") < edits.indexOf("sibling"));
                if (!isGoneBefore)
                    QTest::addRow("%s, %s", qPrintable(edits.join(QStringLiteral(", "))), name) << edits << node;
            } while (std::next_permutation(edits.begin(), edits.end()));
        }
    }
    void everyOrder()
    {
        QFETCH(QStringList, edits);
        QFETCH(int, deleted);
        for (const QString &edit : qAsConst(edits)) {
            if (edit == QLatin1String("split"))
                split(boneOf(ClipSketch::Spine), ClipSketch::Spine);
            else if (edit == QLatin1String("sibling"))
                addSibling(boneOf(ClipSketch::LeftArm), ClipSketch::LeftArm);
            else
                remove(boneOf(deleted));
        }
        checkAll();
    }

    void heirsOfHeirs()
    {
        RyBone *second = addSibling(boneOf(ClipSketch::LeftArm), ClipSketch::LeftArm);
        RyBone *third = split(second, ClipSketch::LeftArm);
        addSibling(third, ClipSketch::LeftArm);
        m_givers.erase(second);
        remove(second);
        remove(boneOf(ClipSketch::LeftArm));
        checkAll();
    }

    void hungElsewhere_data()
    {
        QTest::addColumn<bool>("isSplit");
        QTest::addColumn<int>("above");
        QTest::addColumn<bool>("isDeleted");
        for (const bool isSplit : {false, true}) {
            for (const bool isDeleted : {false, true}) {
                for (const auto &[name, above] :
                     {std::pair("above", ClipSketch::Hips), std::pair("below", ClipSketch::LeftHand),
                      std::pair("elsewhere", ClipSketch::RightHand)}) {
                    if (above != ClipSketch::LeftHand || !isSplit) // it hangs below the new one then
                        QTest::addRow("%s, %s%s", isSplit ? "split" : "sibling", name, isDeleted ? ", deleted" : "")
                            << isSplit << int(above) << isDeleted;
                }
            }
        }
    }
    void hungElsewhere()
    {
        QFETCH(bool, isSplit);
        QFETCH(int, above);
        QFETCH(bool, isDeleted);
        RyBone *giver = boneOf(ClipSketch::LeftArm);
        RyBone *fresh = isSplit ? split(giver, ClipSketch::LeftArm) : addSibling(giver, ClipSketch::LeftArm);
        step([&] { RigEdits::reparent(fresh, boneOf(above), true); });
        if (isDeleted)
            remove(giver);
        checkAll();
    }

    /// What was edited later does not tell otherwise: neither the rest of both nor other weights.
    void editedLater()
    {
        RyBone *fresh = addSibling(boneOf(ClipSketch::LeftArm), ClipSketch::LeftArm);
        step([&] {
            ClipEdits::moveOrigins(m_character->bones(), 5.0, m_random);
            ClipEdits::turnAtRandom(m_character->bones(), m_random);
        });
        split(fresh, ClipSketch::LeftArm);
        checkAll();
        RigEdits::shiftWeights(m_character->scene, 9000);
        QCOMPARE(strayed(GltfEvaluator(save())), QString());
    }

    /// Where nobody said whose weights they are, the weights tell.
    void unknownGivers()
    {
        RyBone *fresh = addSibling(boneOf(ClipSketch::LeftArm), ClipSketch::LeftArm);
        fresh->setWeightGiver(nullptr);
        const GltfEvaluator after(save());
        QCOMPARE(strayed(after), QString());
        showsTheSame(after, {});
    }

private:
    template<typename Edit>
    void step(const Edit &edit)
    {
        RyUndoStackHold hold;
        edit();
        hold.accept(QStringLiteral("Edit"));
        m_dumps.append(rySceneDump(m_character->scene));
    }

    /// A bone that an edit makes, which is to move as a joint of the file.
    template<typename Edit>
    RyBone *make(int giver, const Edit &edit)
    {
        const std::vector<RyBone *> before = m_character->bones();
        step(edit);
        for (RyBone *bone : m_character->bones()) {
            if (std::find(before.begin(), before.end(), bone) == before.end()) {
                m_givers[bone] = giver;
                return bone;
            }
        }
        throw std::runtime_error("no bone was made");
    }
    RyBone *split(RyBone *bone, int giver)
    {
        return make(giver, [&] { ClipEdits::splitEvenly(*m_character, bone); });
    }
    RyBone *addSibling(RyBone *bone, int giver)
    {
        return make(giver, [&] { ClipEdits::addEvenSibling(*m_character, bone); });
    }
    /// Its channels go, and its vertices follow another one.
    void remove(RyBone *bone)
    {
        const int node = m_character->nodeOf(bone);
        step([&] { ClipEdits::deleteInPlace(*m_character, bone, m_choice); });
        if (node >= 0)
            m_choice.goneNodes.insert(node);
    }

    QByteArray savedBytes() { return bytesOf(QString::fromStdString(save())); }

    static Eigen::Matrix4d skinning(const GltfEvaluator &file, int node, const std::vector<Eigen::Matrix4d> &worlds)
    {
        const std::vector<int> &joints = file.joints(0);
        const auto place = std::find(joints.begin(), joints.end(), node);
        if (place == joints.end())
            throw std::runtime_error("no joint of the skin");
        return worlds[size_t(node)] * file.inverseBindMatrices(0)[size_t(place - joints.begin())];
    }

    /// New joints that do not carry every vertex of the mesh where their givers did, at some time of some clip.
    QString strayed(const GltfEvaluator &after) const
    {
        const GltfEvaluator &before = m_character->file;
        const std::vector<Eigen::Vector3d> places = before.restPositions(before.primitives().front());
        const double height = shownHeight(before);
        QStringList list;
        for (const auto &[bone, giver] : m_givers) {
            const int node = after.node(bone->getName().toStdString());
            double worst = 0.0;
            for (int clip = 0; clip < clipCount(before); ++clip) {
                const GltfClipEvaluator then(before, clip), now(after, clip);
                for (const double time : gltfFrameTimes(then.keyTimes(), 60)) {
                    const Eigen::Matrix4d a = skinning(before, giver, before.worldMatrices(then.pose(time)));
                    const Eigen::Matrix4d b = skinning(after, node, after.worldMatrices(now.pose(time)));
                    for (const Eigen::Vector3d &place : places)
                        worst = std::max(worst, ((a - b) * place.homogeneous()).norm() / height);
                }
            }
            if (!(worst <= ClipSessions::Tolerance))
                list.append(QStringLiteral("%1 by %2").arg(bone->getName()).arg(worst));
        }
        return list.join(QStringLiteral(", "));
    }

    void checkFile(const QString &path) const
    {
        const GltfEvaluator after(path.toStdString());
        QCOMPARE(strayed(after), QString());
        const ClipDifference difference = largestClipDifference(m_character->file, after, m_choice);
        QVERIFY2(difference.distance <= ClipSessions::Tolerance, qPrintable(difference.text()));
    }

    /// What is saved; the same after all was undone and redone, through a snapshot, and without a history.
    void checkAll()
    {
        QVERIFY(!m_givers.empty());
        const QByteArray bytes = savedBytes();
        checkFile(m_saved);
        for (int at = m_dumps.size() - 1; at > 0; --at) {
            QCOMPARE(rySceneDump(m_character->scene), m_dumps[at]);
            ryUndoStack()->undo();
        }
        QCOMPARE(rySceneDump(m_character->scene), m_dumps[0]);
        QVERIFY(savedBytes() == m_first);
        for (int at = 1; at < m_dumps.size(); ++at) {
            ryUndoStack()->redo();
            QCOMPARE(rySceneDump(m_character->scene), m_dumps[at]);
        }
        QVERIFY(savedBytes() == bytes);
        checkRecovered();
        // What no step holds any more is known all the same.
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(savedBytes() == bytes);
    }

    void checkRecovered() const
    {
        QString error;
        const std::optional<RySceneSnapshot> taken = RySceneSnapshot::take(m_character->scene, false, &error);
        const auto snapshot = taken ? RySceneSnapshot::fromParts(taken->parts(), &error) : taken;
        QVERIFY2(snapshot, qPrintable(error));
        RyScene again;
        QVERIFY2(snapshot->restore(again, path(), &error, nullptr), qPrintable(error));
        const QString recovered = m_folder.filePath(QStringLiteral("recovered.gltf"));
        QVERIFY2(RySceneFile::save(&again, recovered, &error), qPrintable(error));
        checkFile(recovered);
    }

    std::map<const RyBone *, int> m_givers; // of new bones: joints of the file
    ClipChoice m_choice;
    QStringList m_dumps; // before all edits, and after each
    QByteArray m_first;
};

RY_TEST(WeightGiversTest)
#include "tst_weight_givers.moc"
