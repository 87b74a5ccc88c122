#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QFileInfo>
#include <QHash>
#include <QJsonArray>

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
    RyJECreateControlBonesAction: {JointEditorControlBoneModeCmb: 'Selected and Children'}
};
var answers = {
    RyJEDeleteUnusedBonesAction: {'Remove Unused Bones': 'Yes'},
    RyJEReparentBoneAction: {'Reparenting Warning': 'Ok'}
};
var before = {
    RyJEConvertPropToFigureAction: function () {
        if (!Actions.run('RyJEConvertFigureToPropAction').ran)
            throw new Error('it does not become a prop');
        // The selection went to the prop.
        fields.RyJEConvertPropToFigureAction = {ConvertPropToFigureInheritParentSkeletonCbx: 'false'};
    },
    RyJETransferWSRiggingAction: function () {
        var target = Scene.getPrimarySelection(), count = Scene.getSkeletons().length;
        if (!Actions.run('RyJECreateDonorFigureAction').ran || Scene.getSkeletons().length !== count + 1)
            throw new Error('it gives no donor');
        Scene.setSelection([Scene.getSkeletons()[count], target]);
    },
    RyJEReparentBoneAction: function () {
        var bone = Scene.getPrimarySelection(), above = bone.getNodeParent();
        fields.RyJEReparentBoneAction = {NodeDlgTree: (isBone(above) ? above.getNodeParent() : above).getName()};
    }
};
var place = middleBone().getPath();
Actions.names().forEach(function (name) {
    if (name.indexOf('RyJE') !== 0)
        return;
    Scene.setSelection([place]);
    Scene.find(place).setValue('zrot', 10);
    var dump = Scene.dump(), steps = Undo.index(), points = RestorePoints.count();
    if (before[name])
        before[name]();
    var result = Actions.run(name, fields[name] || {}, answers[name] || {}), texts = [];
    result.boxes.forEach(function (box) { texts.push(box.title + ': ' + box.text); });
    var changes = Scene.dump() !== dump;
    while (Undo.index() > steps && Undo.undo())
        ;
    while (RestorePoints.count() > points && Scene.dump() !== dump && RestorePoints.restore(0))
        points = RestorePoints.count();
    Scene.setSelection([place]);
    print(['@' + name, result.ran ? 'ran' : result.refused ? 'refused' : 'neither', changes ? 'changes' : 'no change',
           Scene.dump() === dump ? 'back' : 'lost', result.reason + ' ' + texts.join(' ')].join('|'));
    if (result.ran && name.indexOf('Toggle') > 0)
        Actions.run(name);
});
)";

/// What an action is meant to say instead of doing its work, by file.
struct Refusal
{
    const char *file;
    const char *action;
    const char *says;
};
const Refusal refusals[] = {
    {"", "", ""},
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
        qInfo("%s %s %s: %s", qPrintable(record.outcome), qPrintable(record.change), qPrintable(record.back),
              qPrintable(record.said));
        QVERIFY2(!record.said.contains(QLatin1String("Not available")), qPrintable(record.said));
        QCOMPARE(record.back, QStringLiteral("back"));
        const Refusal *refusal = refusalOf(path, action);
        QCOMPARE(record.outcome, refusal ? QStringLiteral("refused") : QStringLiteral("ran"));
        if (refusal)
            QVERIFY2(record.said.contains(QLatin1String(refusal->says)), qPrintable(record.said));
    }

private:
    static const Refusal *refusalOf(const QString &path, const QString &action)
    {
        for (const Refusal &refusal : refusals) {
            if (action == QLatin1String(refusal.action) && QFileInfo(path).fileName() == QLatin1String(refusal.file))
                return &refusal;
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
            if (words.size() >= 5 && words[0].startsWith(QLatin1Char('@')))
                records[words[0].mid(1)] = {words[1], words[2], words[3], QStringList(words.mid(4)).join('|')};
        }
        if (result.code != 0)
            records.clear();
        return records;
    }

    RyBatchRun m_run;
    QHash<QString, QHash<QString, Record>> m_records;
    QString m_said;
};

RY_TEST(EveryActionTest)

#include "tst_every_action.moc"
