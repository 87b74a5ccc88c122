#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>

namespace {

/// Runs every action on a bone that has bones above and below where there is such a one, tells what came of each, and
/// goes back to where it was. Actions that need more than a bone get it first.
const char *const everyAction = R"(
function isBone(node) { return node !== null && node.isA('RyBone'); }
function middleBone() {
    var best = null, most = -1;
    Scene.getSkeletons().forEach(function (skeleton) {
        skeleton.getAllBones().forEach(function (bone) {
            var rank = (isBone(bone.getNodeParent()) ? 2 : 0) + (bone.getNodeChildren(false).some(isBone) ? 1 : 0);
            if (rank > most) {
                most = rank;
                best = bone;
            }
        });
    });
    return best;
}
var fields = {
    RyJECreateBoneAction: {JointEditorCreateBoneNameLEdit: 'made', JointEditorCreateBoneLabelLEdit: 'Made'},
    RyJERenameNodeAction: {name: 'renamed', label: 'Renamed'},
    RyJESelectedNodesAttributesEditAction: {NodeAttributesEditCenterXCbx: 'true', NodeAttributesEditCenterXSBox: '7'},
    RyJECreateControlBonesAction: {JointEditorControlBoneModeCmb: 'Selected and Children'},
    RyJEMirrorAction: {JointEditorMirrorNodesCmb: 'Root Recursive', JointEditorMirrorDirectionCmb: 'Left to Right'}
};
var answers = {
    RyJEDeleteUnusedBonesAction: {'Remove Unused Bones': 'Yes'},
    RyJEReparentBoneAction: {'Reparenting Warning': 'Ok'}
};
var before = {
    RyJEConvertPropToFigureAction: function () {
        var name = Scene.getPrimarySelection().getSkeleton().getName();
        if (!Actions.run('RyJEConvertFigureToPropAction').ran)
            return;
        Scene.setSelection(Scene.getNodes().filter(function (node) {
            return node.getName() === name && !node.isA('RyBone') && !node.isA('RySkeleton');
        }));
        fields.RyJEConvertPropToFigureAction = {ConvertPropToFigureInheritParentSkeletonCbx: 'false'};
    },
    RyJEDeleteUnusedBonesAction: function () {
        if (!Actions.run('RyJECreateBoneAction', fields.RyJECreateBoneAction).ran)
            throw new Error('there is no unused bone');
    },
    RyJETransferWSRiggingAction: function () {
        var target = Scene.getPrimarySelection(), count = Scene.getSkeletons().length;
        if (!Actions.run('RyJECreateDonorFigureAction').ran || Scene.getSkeletons().length !== count + 1)
            throw new Error('it gives no donor');
        Undo.step('Move', function () { target.setValue('originX', target.getValue('originX') + 1); });
        Scene.setSelection([Scene.getSkeletons()[count], target]);
    },
    RyJEReparentBoneAction: function () {
        var bone = Scene.getPrimarySelection(), above = bone.getNodeParent();
        fields.RyJEReparentBoneAction = {NodeDlgTree: (isBone(above) ? above.getNodeParent() : above).getName()};
    }
};
var place = middleBone().getPath();
print('@place|' + place);
// The selection is no part of a step.
function isBack(dump) {
    try {
        Scene.setSelection([place]);
    } catch (error) {
        return false;
    }
    return Scene.dump() === dump;
}
Actions.names().forEach(function (name) {
    if (name.indexOf('RyJE') !== 0)
        return;
    Scene.setSelection([place]);
    var bone = Scene.find(place), origin = bone.getOrigin(), end = bone.getEndPoint();
    bone.setValue('zrot', 10);
    if (origin.x === bone.getDefaultValue('originX')) {
        bone.setOrigin({x: origin.x + 0.3, y: origin.y - 0.2, z: origin.z + 0.1});
        bone.setEndPoint({x: end.x - 0.1, y: end.y + 0.3, z: end.z + 0.2});
    }
    if (name === 'RyJERotationOrder' + bone.getRotationOrder() + 'Action')
        bone.setRotationOrder(bone.getRotationOrder() === 'XYZ' ? 'ZYX' : 'XYZ');
    var dump = Scene.dump(), steps = Undo.index(), points = RestorePoints.count();
    if (before[name])
        before[name]();
    var result = Actions.run(name, fields[name] || {}, answers[name] || {}), texts = [];
    result.boxes.forEach(function (box) { texts.push(box.title + ': ' + box.text); });
    var changes = Scene.dump() !== dump;
    while (Undo.index() > steps && Undo.undo())
        ;
    if (!isBack(dump) && RestorePoints.count() > points)
        RestorePoints.restore(RestorePoints.count() - points - 1);
    print(['@' + name, result.ran ? 'ran' : result.refused ? 'refused' : 'neither', changes ? 'changes' : 'no change',
           isBack(dump) ? 'back' : 'lost', result.reason + ' ' + texts.join(' ')].join('|'));
    if (result.ran && name.indexOf('Toggle') > 0)
        Actions.run(name);
});
)";

/// Actions that have nothing to do on a file, and what they say about that.
struct Idle
{
    const char *file;
    const char *action;
    const char *says;
};
const Idle idles[] = {
    {"", "RyJECustomColorsAction", "Joint Editor Drawing Options"},
    {"", "RyJETogglePropagateTranslationAction", ""},
    {"", "RyJEToggleViewBoneCreationAction", ""},
    {"", "RyJEToggleAutoAlignNodeAction", ""},
    {"", "RyJEToggleAutoSnapEndPointsAction", ""},
    // Its sides are alike but for the bone, which lies in the middle.
    {"mannequin.glb", "RyJEMirrorAction", ""},
    // No two bones are opposites.
    {"RiggedSimple.gltf", "RyJEMirrorAction", ""},
    {"quad_10_influences.glb", "RyJEMirrorAction", ""},
    {"hand_flat_hierarchy.glb", "RyJEMirrorAction", ""},
    {"tentacle_84_skins.glb", "RyJEMirrorAction", ""},
    // The bone has no bones below.
    {"RiggedSimple.gltf", "RyJESnapEndPointAction", ""},
    {"quad_10_influences.glb", "RyJESnapEndPointAction", ""},
    {"hand_flat_hierarchy.glb", "RyJESnapEndPointAction", ""},
    {"two_armatures.dae", "RyJEMirrorAction", ""},
    {"two_armatures.dae", "RyJESnapEndPointAction", ""},
};

/// Actions that refuse a file, and how they say why.
const Idle refusals[] = {
    // It has bones and nothing that they move.
    {"mh_clip.bvh", "RyJEConvertFigureToPropAction", "A figure in the scene must be selected to continue."},
    {"mh_clip.bvh", "RyJEConvertPropToFigureAction",
     "A simple object in the scene containing geometry must be selected to continue."},
};

} // namespace

/// All actions of the joint editor on all files with rigs, by script and from the command line: each does its work, or
/// says in words that are expected why not, and is taken back.
class EveryActionTest : public QObject
{
    Q_OBJECT

    struct Record
    {
        QString outcome, change, back, said;
    };

private slots:
    void byScript_data() { addRows(); }
    void byScript()
    {
        QFETCH(QString, path);
        QFETCH(QString, action);
        const QHash<QString, Record> &records = recordsOf(path);
        QVERIFY2(records.contains(action), qPrintable(m_said));
        const Record &record = records[action];
        QVERIFY2(!record.said.contains(QLatin1String("Not available")), qPrintable(record.said));
        QCOMPARE(record.back, QStringLiteral("back"));
        const Idle *refusal = find(refusals, path, action);
        QCOMPARE(record.outcome, refusal ? QStringLiteral("refused") : QStringLiteral("ran"));
        const Idle *idle = refusal ? refusal : find(idles, path, action);
        QCOMPARE(record.change, idle ? QStringLiteral("no change") : QStringLiteral("changes"));
        if (idle)
            QVERIFY2(record.said.contains(QLatin1String(idle->says)), qPrintable(record.said));
    }

    void fromTheCommandLine_data() { addRows(); }
    /// One process for each file runs all actions, one after the other.
    void fromTheCommandLine()
    {
        QFETCH(QString, path);
        QFETCH(QString, action);
        const QHash<QString, QJsonObject> &runs = runsOf(path);
        QVERIFY2(runs.contains(action), qPrintable(m_said));
        const QJsonObject run = runs[action];
        const Idle *refusal = find(refusals, path, action);
        QCOMPARE(run.value(QStringLiteral("ran")).toBool(), !refusal);
        QCOMPARE(run.value(QStringLiteral("refused")).toBool(), bool(refusal));
        QVERIFY(!run.value(QStringLiteral("cancelled")).toBool());
        const QString reason = run.value(QStringLiteral("reason")).toString();
        QVERIFY2(refusal ? reason.contains(QLatin1String(refusal->says)) : reason.isEmpty(), qPrintable(reason));
    }

private:
    /// Null where the action is none of these on that file.
    template<size_t Count>
    static const Idle *find(const Idle (&list)[Count], const QString &path, const QString &action)
    {
        for (const Idle &entry : list) {
            const QString file = QLatin1String(entry.file);
            if (action == QLatin1String(entry.action) && (file.isEmpty() || file == QFileInfo(path).fileName()))
                return &entry;
        }
        return nullptr;
    }
    static QStringList paths()
    {
        QStringList list = {RyBatchRun::sample()};
        for (const char *name :
             {"CesiumMan.glb", "RiggedSimple.gltf", "Fox.glb", "kaykit_knight.glb", "mh_default_rig.glb",
              "mh_large.glb", "quad_10_influences.glb", "hand_flat_hierarchy.glb", "tentacle_84_skins.glb"}) {
            if (!ryModel(QLatin1String(name)).isEmpty())
                list.append(ryModel(QLatin1String(name)));
        }
        if (!QFileInfo::exists(QStringLiteral(RY_BINARY_DIR "/lib/ryforeign")))
            return list; // a build without the reader of such files
        for (const char *name :
             {"arnaud.fbx", "two_armatures.dae", "foreign/mh_clip_morph.fbx", "foreign/mh_clip.bvh"}) {
            if (!ryModel(QLatin1String(name)).isEmpty())
                list.append(ryModel(QLatin1String(name)));
        }
        return list;
    }
    void addRows()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("action");
        const QStringList actions = recordsOf(RyBatchRun::sample()).keys();
        QVERIFY2(actions.size() == 35, qPrintable(m_said));
        for (const QString &path : paths()) {
            for (const QString &action : actions)
                QTest::addRow("%s: %s", qPrintable(QFileInfo(path).fileName()), qPrintable(action)) << path << action;
        }
    }
    /// Runs the script on a file, once.
    const QHash<QString, Record> &recordsOf(const QString &path)
    {
        QHash<QString, Record> &records = m_records[path];
        if (!records.isEmpty())
            return records;
        const auto result =
            m_run.run({QStringLiteral("--batch"), path, QStringLiteral("--script"),
                       m_run.write(QStringLiteral("every.rsx"), everyAction), QStringLiteral("--report")});
        m_said = QString::fromUtf8(result.err);
        for (const QJsonValue &message : result.json().value(QStringLiteral("messages")).toArray()) {
            const QStringList words = message.toString().split(QLatin1Char('|'));
            if (words[0] == QLatin1String("@place"))
                m_places[path] = words.value(1);
            if (words.size() >= 5 && words[0].startsWith(QLatin1Char('@')))
                records[words[0].mid(1)] = {words[1], words[2], words[3], QStringList(words.mid(4)).join('|')};
        }
        if (result.code != 0)
            records.clear();
        return records;
    }

    /// All actions in an order in which none takes away what a later one needs.
    static QStringList inOrder(QStringList actions)
    {
        actions.sort();
        for (const char *last :
             {"RyJEReparentBoneAction", "RyJERenameNodeAction", "RyJEDeleteBoneAction", "RyJEBakeRotationsAction",
              "RyJEDeleteUnusedBonesAction", "RyJEConvertFigureToPropAction", "RyJEConvertPropToFigureAction"}) {
            if (actions.removeOne(QLatin1String(last)))
                actions.append(QLatin1String(last));
        }
        return actions;
    }
    /// What a person writes for an action on a bone; reparented it hangs one higher, and then it is renamed.
    static QStringList verbsOf(const QString &action, const QString &place)
    {
        const QString figure = place.section(QLatin1Char('/'), 0, 0);
        const bool isTop = place.count(QLatin1Char('/')) == 1;
        const QString above = isTop ? figure : place.section(QLatin1Char('/'), 0, -3);
        const QHash<QString, QString> selections = {
            {QStringLiteral("RyJETransferWSRiggingAction"), QStringLiteral("Donor_%1,%2").arg(figure, place)},
            {QStringLiteral("RyJERenameNodeAction"), above + place.mid(place.lastIndexOf(QLatin1Char('/')))},
            {QStringLiteral("RyJEDeleteBoneAction"), above + QStringLiteral("/renamed")},
            {QStringLiteral("RyJEBakeRotationsAction"), figure},
            {QStringLiteral("RyJEDeleteUnusedBonesAction"), figure},
            {QStringLiteral("RyJEConvertFigureToPropAction"), figure},
            {QStringLiteral("RyJEConvertPropToFigureAction"), figure}};
        const QHash<QString, QStringList> answers = {
            {QStringLiteral("RyJECreateBoneAction"),
             {"--set", "JointEditorCreateBoneNameLEdit=made", "--set", "JointEditorCreateBoneLabelLEdit=Made"}},
            {QStringLiteral("RyJERenameNodeAction"), {"--set", "name=renamed", "--set", "label=Renamed"}},
            {QStringLiteral("RyJESelectedNodesAttributesEditAction"),
             {"--set", "NodeAttributesEditCenterXCbx=true", "--set", "NodeAttributesEditCenterXSBox=7"}},
            {QStringLiteral("RyJEReparentBoneAction"),
             isTop ? QStringList{"--set", "NodeDlgTree=" + above}
                   : QStringList{"--set", "NodeDlgTree=" + above, "--answer", "Reparenting Warning=Ok"}},
            {QStringLiteral("RyJEDeleteUnusedBonesAction"), {"--answer", "Remove Unused Bones=Yes"}}};
        return QStringList{"--select", selections.value(action, place), "--run", action} + answers.value(action);
    }
    /// Runs actions from the command line, once. One that refuses ends its process, so that it gets its own.
    const QHash<QString, QJsonObject> &runsOf(const QString &path)
    {
        QHash<QString, QJsonObject> &runs = m_runs[path];
        if (!runs.isEmpty())
            return runs;
        QStringList verbs;
        const QStringList actions = inOrder(recordsOf(path).keys());
        for (const QString &action : actions) {
            if (find(refusals, path, action))
                note(runs, path, verbsOf(action, m_places[path]), 3);
            else
                verbs += verbsOf(action, m_places[path]);
        }
        note(runs, path, verbs, 0);
        return runs;
    }
    void note(QHash<QString, QJsonObject> &runs, const QString &path, const QStringList &verbs, int code)
    {
        const auto result =
            m_run.run(QStringList{QStringLiteral("--batch"), path} + verbs + QStringList{QStringLiteral("--report")});
        m_said = QString::fromUtf8(result.err);
        if (result.code != code)
            return;
        for (const QJsonValue &run : result.json().value(QStringLiteral("runs")).toArray())
            runs[run.toObject().value(QStringLiteral("action")).toString()] = run.toObject();
    }

    RyBatchRun m_run;
    QHash<QString, QString> m_places; // of the bone, by file
    QHash<QString, QHash<QString, Record>> m_records;
    QHash<QString, QHash<QString, QJsonObject>> m_runs;
    QString m_said;
};

RY_TEST(EveryActionTest)

#include "tst_every_action.moc"
