#include "support/RyTest.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyClassFactory.h"
#include "rycore/base/RyError.h"
#include "rycore/base/RyPlugin.h"
#include "rycore/base/RyPluginManager.h"
#include "rycore/base/RyTClassFactory.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyShapeRiggingAdjuster.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyViewToolAction.h"
#include "rycore/viewport/RyPickTool.h"

#include <QLibrary>
#include <QProcess>
#include <QScriptEngine>
#include <QTemporaryDir>

namespace {

struct ClassRow
{
    const char *name;
    const char *base;
    const char *guid;
};

const ClassRow classRows[] = {
    {"RyJointEditorTool", "RyPickTool", "F84E42A0-A219-4ca5-9863-850B40E01DA8"},
    {"RyJointEditorToolAction", "RyViewToolAction", "D2E00EE9-B6BE-4714-9F55-C78632BB4DF4"},
    {"RyJECustomColorsAction", "RyJEToolAction", "64DAE081-F3DB-4b45-860D-8570A55EC404"},
    {"RyJECreateBoneAction", "RyJEToolAction", "E51D93DF-E66D-4378-A68E-69ED7F2D83B0"},
    {"RyJECreateSiblingBoneAction", "RyJEToolAction", "53278283-aa8f-42bc-a82b-9115b7989957"},
    {"RyJEDuplicateBonesAction", "RyJEToolAction", "A9C980D7-AE7A-4BB5-9DEE-4802F1434961"},
    {"RyJESplitBoneAction", "RyJEToolAction", "f04818b4-7a4a-48d7-aee7-3fd8ba528ff5"},
    {"RyJETogglePropagateTranslationAction", "RyJEToolAction", "EF9A9D1A-DE0E-4DEA-AEEF-E50565461BAC"},
    {"RyJEToggleViewBoneCreationAction", "RyJEToolAction", "9DAC738E-DED9-41A5-8683-1C18FADA69E0"},
    {"RyJEConvertPropToFigureAction", "RyJEToolAction", "AF132CA7-819D-4D33-8505-B0DA52B1F00D"},
    {"RyJEConvertFigureToPropAction", "RyJEToolAction", "947BF705-FBED-4703-A12D-297D375172AC"},
    {"RyJERenameNodeAction", "RyJEToolAction", "91E05663-CA8F-4df4-BC0E-324AE10B6255"},
    {"RyJEReparentBoneAction", "RyJEToolAction", "c5df7a66-368f-4759-84bf-034bb61533ce"},
    {"RyJEMirrorAction", "RyJEToolAction", "A82C5AE2-732A-437b-98FB-B3A46D9E3A54"},
    {"RyJEBakeRotationsAction", "RyJEToolAction", "72a79d2e-ba49-47b6-a8cc-f9edb0dbdf09"},
    {"RyJEDeleteBoneAction", "RyJEToolAction", "FCCBC073-5E95-4be1-8BFE-5318EE7D96A6"},
    {"RyJEDeleteUnusedBonesAction", "RyJEToolAction", "4AC8F0E0-B1F2-43C0-BDC9-BD28489CB71E"},
    {"RyJERotationOrderXYZAction", "RyJEToolAction", "68D3BE80-1304-4764-B35D-7630C16685EF"},
    {"RyJERotationOrderXZYAction", "RyJEToolAction", "18B615FE-36E1-4CAC-A5F2-762E53C94115"},
    {"RyJERotationOrderYXZAction", "RyJEToolAction", "7D4F3C90-5470-43FE-A643-6184C39AE002"},
    {"RyJERotationOrderYZXAction", "RyJEToolAction", "F7ADADCA-69BA-4A17-BBC8-95E8CF937510"},
    {"RyJERotationOrderZXYAction", "RyJEToolAction", "2EACAF43-6009-4F59-A865-83F814B8AE15"},
    {"RyJERotationOrderZYXAction", "RyJEToolAction", "9CE30043-26EC-4632-BA24-5AB729308D04"},
    {"RyJEToggleAutoAlignNodeAction", "RyJEToolAction", "E2663E7C-6315-4551-ABC1-A944F0403C52"},
    {"RyJEAlignNodeAction", "RyJEToolAction", "5E8048D7-7EDD-4DB6-854D-251EBBB15547"},
    {"RyJEAlignAllBonesAction", "RyJEToolAction", "09D3C843-1E65-435b-A2F0-C262687BE606"},
    {"RyJESnapCenterPointAction", "RyJEToolAction", "34C3E973-AD26-4BD5-A105-042B09ABCB2F"},
    {"RyJESnapEndPointAction", "RyJEToolAction", "A4D47052-9C0B-4C6C-A09A-3AA9C2C95E74"},
    {"RyJEToggleAutoSnapEndPointsAction", "RyJEToolAction", "4CDA7A48-E784-45A2-B907-DFE2BEC17B29"},
    {"RyJEMemorizeFigureRiggingPropertiesAction", "RyJEToolAction", "7B3B3C16-624E-4C12-B305-312B78E1C245"},
    {"RyJEMemorizeNodeRiggingPropertiesAction", "RyJEToolAction", "2e95c3a6-3772-4025-a757-7a884cd94542"},
    {"RyJERestoreFigureRiggingPropertiesAction", "RyJEToolAction", "B916F30C-9701-47D9-AFD3-2D08FCD9BD78"},
    {"RyJERestoreNodeRiggingPropertiesAction", "RyJEToolAction", "c7dfb33c-d73a-4e93-9035-c73fbc3b1da5"},
    {"RyJETransferWSRiggingAction", "RyJEToolAction", "3dd85216-d77c-44a6-94fb-53485b4bff6e"},
    {"RyJECreateDonorFigureAction", "RyJEToolAction", "CC213796-7484-4626-B024-04E1DA2239D3"},
    {"RyMVCCageAdjustRigToShapeAction", "RyAction", "12FD5B52-AD10-421E-B3D9-6FBCE97D83B5"},
    {"RyShapeRiggingAdjuster", "RyBase", "681E490E-BFDE-4592-BA6E-BB23C1787590"},
    {"RyJESelectedNodesAttributesEditAction", "RyJEToolAction", "127ADE47-07D1-44CB-90BF-978347FE3F9A"},
    {"RyJECreateControlBonesAction", "RyJEToolAction", "1165A48B-EC51-46B9-ABE7-E7420EA5361E"},
    {"RyBindingToSelectionMapBuilder", "RyBase", "AFB4161D-C008-4CC7-AA0B-B2D90E0BE2D4"},
};

struct ActionRow
{
    const char *name;
    const char *text;
    const char *description;
    bool checkable;
};

// clang-format off
const ActionRow actionRows[] = {
    {"RyJECustomColorsAction", "Customize Drawing...",
     "Customize Joint Editor Tool drawing styles.", false},
    {"RyJECreateBoneAction", "Create Child Bone...",
     "Creates a child bone to the target selected node in the scene.", false},
    {"RyJECreateSiblingBoneAction", "Create Sibling Bone",
     "Creates a sibling bone of the currently selected.", false},
    {"RyJEDuplicateBonesAction", "Duplicate Bones",
     "Creates duplicate bones of the currently selected.", false},
    {"RyJESplitBoneAction", "Split Bone",
     "Splits the currently selected bone.", false},
    {"RyJETogglePropagateTranslationAction", "Propagate Translations",
     "Enables the propagation of translation for origins and end points that exist further down the bone "
     "hierarchy.", true},
    {"RyJEToggleViewBoneCreationAction", "Interactive Mode",
     "Enables interactive bone creation within the viewport. Hold Ctrl and click in the viewport to create a new "
     "child bone.", true},
    {"RyJEConvertPropToFigureAction", "Convert Prop to Figure...",
     "Converts the selected prop to a figure.", false},
    {"RyJEConvertFigureToPropAction", "Convert Figure to Prop...",
     "Converts the selected figure to a prop.", false},
    {"RyJERenameNodeAction", "Rename Node...",
     "Rename the currently selected node.", false},
    {"RyJEReparentBoneAction", "Reparent Bone...",
     "Change the parent relationship of the selected bone.", false},
    {"RyJEMirrorAction", "Mirror Joints...",
     "Copies joint parameters from one side of the figure to the other.", false},
    {"RyJEBakeRotationsAction", "Bake Joint Rotations...",
     "Bakes the current joint rotations of a single skin figure as the new geometry base, and replaces bones "
     "accordingly.", false},
    {"RyJEDeleteBoneAction", "Delete Bone",
     "Removes the selected bone from the scene.", false},
    {"RyJEDeleteUnusedBonesAction", "Delete Unused Bones...",
     "Removes unused bones from the selected figure.", false},
    {"RyJERotationOrderXYZAction", "XYZ",
     "Modifies the rotation order of the selected node.", false},
    {"RyJERotationOrderXZYAction", "XZY",
     "Modifies the rotation order of the selected node.", false},
    {"RyJERotationOrderYXZAction", "YXZ",
     "Modifies the rotation order of the selected node.", false},
    {"RyJERotationOrderYZXAction", "YZX",
     "Modifies the rotation order of the selected node.", false},
    {"RyJERotationOrderZXYAction", "ZXY",
     "Modifies the rotation order of the selected node.", false},
    {"RyJERotationOrderZYXAction", "ZYX",
     "Modifies the rotation order of the selected node.", false},
    {"RyJEToggleAutoAlignNodeAction", "Auto Align Node",
     "Enables automatic alignment of the center and end points of nodes.", true},
    {"RyJEAlignNodeAction", "Align Node",
     "Modifies the orientation of the selected node to align the first axis of the rotation order between the center "
     "and end points.", false},
    {"RyJEAlignAllBonesAction", "Align All Bones",
     "Aligns all bones of the figure.", false},
    {"RyJESnapCenterPointAction", "Snap Center Point",
     "Snap the Center Point of the selected node to the End Point of the parent.", false},
    {"RyJESnapEndPointAction", "Snap End Point",
     "Snap the End Point of the selected node to the Center Point of its children.", false},
    {"RyJEToggleAutoSnapEndPointsAction", "Auto Snap End Points",
     "Enables automatic snapping of End Points of bones to the Center Point of their respective children.", true},
    {"RyJEMemorizeFigureRiggingPropertiesAction", "Memorize Figure Rigging",
     "Sets the current values of the rigging properties for each node of a figure as their default values.", false},
    {"RyJEMemorizeNodeRiggingPropertiesAction", "Memorize Selected Node(s) Rigging",
     "Sets the current values of the rigging properties for the selected node as the default values.", false},
    {"RyJERestoreFigureRiggingPropertiesAction", "Restore Figure Rigging",
     "Restores the rigging properties for each node of a figure to their default values.", false},
    {"RyJERestoreNodeRiggingPropertiesAction", "Restore Selected Node(s) Rigging",
     "Restores the rigging properties for the selected nodes to their default values.", false},
    {"RyJETransferWSRiggingAction", "Transfer Rigging (Figure Space)",
     "Transfers the bone positions and orientations, in figure space coordinates, from the first selected figure to "
     "the second selected figure.", false},
    {"RyJECreateDonorFigureAction", "Extract Donor Figure",
     "Extracts a duplicate of the selected weight mapped skeleton to act as donor for repositioning and "
     "transferring.", false},
    {"RyJESelectedNodesAttributesEditAction", "Selected Node(s) Attributes...",
     "Set the center, end, and orientation values of all selected nodes.", false},
    {"RyJECreateControlBonesAction", "Create Control Bone(s)...",
     "Creates one or more control bones.", false},
};
// clang-format on

bool isScriptOwned(const char *className)
{
    return qstrcmp(className, "RyShapeRiggingAdjuster") == 0 ||
           qstrcmp(className, "RyBindingToSelectionMapBuilder") == 0;
}

} // namespace

/// The library as the host sees it: loaded through its two functions, its classes made through their factories.
class RyJointToolsPluginTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void exportsTwoFunctionsOnly();
    void versionAndDefinition();
    void describesItself();
    void classesInOrder();
    void pointersAreMetaTypes();
    void createsEveryClass();
    void actionsHaveTheirTexts();
    void activatingAction();
    void scriptsSeeConstructors();
    void scriptOwnership();
    void scriptConversion();
    void scriptEnumerators();
    void hostClasses();
    void refusesAnotherVersion();
    void unloadsQuietly();
    void unloadsInAProcessOfItsOwn();

private:
    QTemporaryDir m_settings;
    std::unique_ptr<RyPluginManager> m_manager;
};

void RyJointToolsPluginTest::initTestCase()
{
    RyAppSettings::setSettingsPath(m_settings.path());
    m_manager = std::make_unique<RyPluginManager>();
    QString error;
    QVERIFY2(m_manager->loadLibrary(QStringLiteral(RY_PLUGIN_FILE), &error), qPrintable(error));
    QCOMPARE(int(m_manager->plugins().size()), 1);
}

void RyJointToolsPluginTest::cleanupTestCase()
{
    RyAppSettings::setSettingsPath(QString());
}

void RyJointToolsPluginTest::exportsTwoFunctionsOnly()
{
    QProcess nm;
    nm.start(QStringLiteral("nm"),
             {QStringLiteral("-D"), QStringLiteral("--defined-only"), QStringLiteral(RY_PLUGIN_FILE)});
    if (!nm.waitForStarted())
        QSKIP("nm is not installed");
    QVERIFY(nm.waitForFinished());
    QCOMPARE(nm.exitCode(), 0);
    QStringList names;
    const QStringList lines = QString::fromLatin1(nm.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QStringList fields = line.simplified().split(' ');
        QCOMPARE(fields.size(), 3);
        // The sanitizers export bookkeeping of their own.
        if (!fields.at(2).contains(QLatin1String("san_")))
            names.append(fields.at(1) + ' ' + fields.at(2).section('@', 0, 0));
    }
    names.sort();
    QCOMPARE(names, QStringList({"T getPluginDefinition", "T getSDKVersion"}));
}

void RyJointToolsPluginTest::versionAndDefinition()
{
    QLibrary library(QStringLiteral(RY_PLUGIN_FILE));
    const auto version = reinterpret_cast<RyVersion (*)()>(library.resolve("getSDKVersion"));
    const auto definition = reinterpret_cast<RyPlugin *(*)()>(library.resolve("getPluginDefinition"));
    QVERIFY(version);
    QVERIFY(definition);
    const RyVersion built = version();
    QCOMPARE(int(built.getMajor()), 4);
    QCOMPARE(int(built.getMinor()), 22);
    QCOMPARE(int(built.getRevision()), 0);
    QCOMPARE(int(built.getBuild()), 7);
    QVERIFY(definition());
    QCOMPARE(definition(), definition());
    QCOMPARE(definition(), m_manager->plugins().front());
}

void RyJointToolsPluginTest::describesItself()
{
    const RyPlugin *plugin = m_manager->plugins().front();
    QCOMPARE(plugin->getName(), QStringLiteral("Joint Editor Tool"));
    QVERIFY(!plugin->getAuthor().isEmpty());
    QCOMPARE(plugin->getVersion().toString(), QStringLiteral("1.15.0.15"));
    QCOMPARE(
        plugin->getDescription(),
        QStringLiteral("This plug-in provides a viewport tool that allows the manipulation of Joint Parameters on "
                       "figures and props in the scene. Joint Parameters can be accessed in the viewport with mouse "
                       "interactions or by numeric entry via properties in the Tool Settings pane."));
}

void RyJointToolsPluginTest::classesInOrder()
{
    const QList<RyClassFactory *> &factories = m_manager->plugins().front()->getClassFactories();
    QCOMPARE(factories.size(), 40);
    QCOMPARE(int(std::size(classRows)), 40);
    for (int i = 0; i < factories.size(); ++i) {
        const RyClassFactory *factory = factories.at(i);
        QCOMPARE(factory->className(), QString::fromLatin1(classRows[i].name));
        QCOMPARE(factory->metaObject()->className(), classRows[i].name);
        QCOMPARE(factory->getGuid().toString().toUpper(), QString::fromLatin1(classRows[i].guid).toUpper());
        QVERIFY(factory->metaObject()->superClass());
        QCOMPARE(factory->metaObject()->superClass()->className(), classRows[i].base);
        QCOMPARE(m_manager->findFactory(QString::fromLatin1(classRows[i].name)), factory);
    }
}

void RyJointToolsPluginTest::pointersAreMetaTypes()
{
    QSet<int> ids;
    for (const ClassRow &row : classRows) {
        const QByteArray pointer = QByteArray(row.name) + '*';
        const int id = QMetaType::type(pointer.constData());
        QVERIFY2(id > 0, row.name);
        QCOMPARE(QMetaType::metaObjectForType(id)->className(), row.name);
        // Asking once more for the registration gives the type that is there.
        using Pointer = QtMetaTypePrivate::QMetaTypeFunctionHelper<QObject *>;
        QCOMPARE(QMetaType::registerNormalizedType(pointer, Pointer::Destruct, Pointer::Construct,
                                                   int(sizeof(QObject *)), QMetaType::typeFlags(id),
                                                   QMetaType::metaObjectForType(id)),
                 id);
        ids.insert(id);
    }
    QCOMPARE(ids.size(), 40);
    QCOMPARE(qRegisterMetaType<RyShapeRiggingAdjuster *>("RyShapeRiggingAdjuster*"),
             QMetaType::type("RyShapeRiggingAdjuster*"));
}

void RyJointToolsPluginTest::createsEveryClass()
{
    for (const ClassRow &row : classRows) {
        RyClassFactory *factory = m_manager->findFactory(QString::fromLatin1(row.name));
        const std::unique_ptr<QObject> plain(factory->createInstance());
        QVERIFY2(plain, row.name);
        QCOMPARE(plain->metaObject()->className(), row.name);
        const std::unique_ptr<QObject> withArguments(factory->createInstance(QVariantList{42, "ignored"}));
        QVERIFY2(withArguments, row.name);
        QVERIFY(withArguments != plain);
        QCOMPARE(withArguments->metaObject()->className(), row.name);
        const std::unique_ptr<QObject> fromScript(factory->createInstance(static_cast<QScriptContext *>(nullptr)));
        QVERIFY2(fromScript, row.name);
        QCOMPARE(fromScript->metaObject()->className(), row.name);
    }
    const std::unique_ptr<QObject> tool(m_manager->createInstance(QStringLiteral("RyJointEditorTool")));
    QVERIFY(qobject_cast<RyPickTool *>(tool.get()));
    QCOMPARE(tool->objectName(), QStringLiteral("Joint Editor"));
}

void RyJointToolsPluginTest::actionsHaveTheirTexts()
{
    QCOMPARE(int(std::size(actionRows)), 35);
    for (const ActionRow &row : actionRows) {
        const std::unique_ptr<QObject> object(m_manager->createInstance(QString::fromLatin1(row.name)));
        const auto *action = qobject_cast<RyAction *>(object.get());
        QVERIFY2(action, row.name);
        QCOMPARE(action->text(), QString::fromLatin1(row.text));
        QCOMPARE(action->getDescription(), QString::fromLatin1(row.description));
        QCOMPARE(action->isCheckable(), row.checkable);
        QCOMPARE(action->getActionGroup(), QStringLiteral("Ostra Joint Editor"));
        const bool isException = qstrcmp(row.name, "RyJESelectedNodesAttributesEditAction") == 0;
        QCOMPARE(action->objectName(),
                 isException ? QStringLiteral("RyJESelectedNodeAttributesEditAction") : QString::fromLatin1(row.name));
    }
}

void RyJointToolsPluginTest::activatingAction()
{
    const std::unique_ptr<QObject> object(m_manager->createInstance(QStringLiteral("RyJointEditorToolAction")));
    const auto *action = qobject_cast<RyViewToolAction *>(object.get());
    QVERIFY(action);
    QCOMPARE(action->getToolClassName(), QStringLiteral("RyJointEditorTool"));
    QCOMPARE(action->getDefaultAccel(), QKeySequence(QStringLiteral("Shift+Alt+J")));
}

void RyJointToolsPluginTest::scriptsSeeConstructors()
{
    QScriptEngine engine;
    for (RyClassFactory *factory : m_manager->factories())
        factory->registerClass(&engine);
    for (const ClassRow &row : classRows) {
        const QScriptValue constructor = engine.globalObject().property(QString::fromLatin1(row.name));
        QVERIFY2(constructor.isQMetaObject(), row.name);
        QCOMPARE(constructor.toQMetaObject()->className(), row.name);
        const QScriptValue made = engine.evaluate(QStringLiteral("new %1()").arg(QString::fromLatin1(row.name)));
        QVERIFY2(!engine.hasUncaughtException(), row.name);
        const std::unique_ptr<QObject> object(made.toQObject());
        QVERIFY2(object, row.name);
        QCOMPARE(object->metaObject()->className(), row.name);
    }
}

void RyJointToolsPluginTest::scriptOwnership()
{
    QScriptEngine engine;
    for (RyClassFactory *factory : m_manager->factories())
        factory->registerClass(&engine);
    for (const ClassRow &row : classRows) {
        // The collector spares what a stale word on the stack happens to point to, so one object proves nothing.
        constexpr int made = 8;
        std::vector<QPointer<QObject>> objects;
        for (int i = 0; i < made; ++i) {
            objects.emplace_back(
                engine.evaluate(QStringLiteral("new %1()").arg(QString::fromLatin1(row.name))).toQObject());
            QVERIFY2(objects.back(), row.name);
        }
        engine.evaluate(QStringLiteral("0"));
        engine.collectGarbage();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const auto left = std::count_if(objects.begin(), objects.end(), [](const auto &o) { return !o.isNull(); });
        if (isScriptOwned(row.name))
            QVERIFY2(left < made, row.name);
        else
            QCOMPARE(int(left), made);
        for (const QPointer<QObject> &object : objects)
            delete object;
    }
}

void RyJointToolsPluginTest::scriptConversion()
{
    QScriptEngine engine;
    for (RyClassFactory *factory : m_manager->factories())
        factory->registerClass(&engine);
    RyShapeRiggingAdjuster adjuster;
    QObject other;
    const QScriptValue wrapped = engine.toScriptValue(&adjuster);
    QCOMPARE(wrapped.toQObject(), static_cast<QObject *>(&adjuster));
    QCOMPARE(qscriptvalue_cast<RyShapeRiggingAdjuster *>(wrapped), &adjuster);
    QVERIFY(!qscriptvalue_cast<RyShapeRiggingAdjuster *>(engine.newQObject(&other)));
}

void RyJointToolsPluginTest::scriptEnumerators()
{
    QScriptEngine engine;
    for (RyClassFactory *factory : m_manager->factories())
        factory->registerClass(&engine);
    engine.evaluate(QStringLiteral("var tool = new RyJointEditorTool()"));
    const std::unique_ptr<QObject> tool(engine.globalObject().property(QStringLiteral("tool")).toQObject());
    QVERIFY(tool);
    const QMetaObject *metaObject = tool->metaObject();
    for (const char *name : {"EditMode", "BoneDrawMode"}) {
        const int index = metaObject->indexOfEnumerator(name);
        QVERIFY2(index >= 0, name);
        const QMetaEnum enumerator = metaObject->enumerator(index);
        for (int i = 0; i < enumerator.keyCount(); ++i) {
            const QScriptValue value = engine.evaluate(QStringLiteral("tool.%1").arg(QLatin1String(enumerator.key(i))));
            QVERIFY2(value.isNumber(), enumerator.key(i));
            QCOMPARE(value.toInt32(), enumerator.value(i));
        }
    }
    QCOMPARE(engine.evaluate(QStringLiteral("tool.ParamMode")).toInt32(), 1);
}

void RyJointToolsPluginTest::hostClasses()
{
    const std::unique_ptr<QObject> action(m_manager->createInstance(QStringLiteral("RyMVCCageAdjustRigToShapeAction")));
    const auto *adjust = qobject_cast<RyAction *>(action.get());
    QVERIFY(adjust);
    QCOMPARE(adjust->text(), QStringLiteral("Adjust Rig to Shape"));
    QCOMPARE(adjust->getDescription(),
             QStringLiteral("Moves the center and end points of the bones to follow the current "
                            "shape of the figure."));
    const std::unique_ptr<QObject> object(m_manager->createInstance(QStringLiteral("RyShapeRiggingAdjuster")));
    auto *adjuster = qobject_cast<RyShapeRiggingAdjuster *>(object.get());
    QVERIFY(adjuster);
    QCOMPARE(adjuster->adjustRiggingToShape(nullptr).code(), 96);
    QVERIFY(!adjuster->getLastError().isEmpty());
    RyRef<RyFigure> figure(new RyFigure);
    QCOMPARE(adjuster->adjustRiggingToShape(figure.get()).code(), 96);
    QCOMPARE(adjuster->getLastError(), QStringLiteral("The figure has no facets to follow."));
}

void RyJointToolsPluginTest::refusesAnotherVersion()
{
    RyPluginManager manager;
    QString error;
    QVERIFY(!manager.loadLibrary(QStringLiteral(RY_OUTDATED_PLUGIN_FILE), &error));
    QVERIFY(!error.isEmpty());
    QVERIFY(manager.plugins().empty());
    QVERIFY(!qApp->property("outdatedPluginAsked").isValid());
}

void RyJointToolsPluginTest::unloadsQuietly()
{
    m_manager.reset();
    // Whatever still pointed into the library would be used now.
    QObject object;
    object.setObjectName(QStringLiteral("still alive"));
    QCoreApplication::processEvents();
    QScriptEngine engine;
    QVERIFY(!engine.globalObject().property(QStringLiteral("RyJointEditorTool")).isValid());
    m_manager = std::make_unique<RyPluginManager>();
    QVERIFY(m_manager->loadLibrary(QStringLiteral(RY_PLUGIN_FILE)));
    QCOMPARE(int(m_manager->factories().size()), 40);
    m_manager.reset();
}

void RyJointToolsPluginTest::unloadsInAProcessOfItsOwn()
{
    QProcess process;
    process.start(QStringLiteral(RY_UNLOADING_PROGRAM), {QStringLiteral(RY_PLUGIN_FILE)});
    QVERIFY(process.waitForStarted());
    QVERIFY(process.waitForFinished(60000));
    QVERIFY2(process.exitStatus() == QProcess::NormalExit, process.readAllStandardError().constData());
    QCOMPARE(process.readAllStandardOutput(), QByteArray("loaded 40 classes\nmapped: yes\nmapped: no\n"));
    QCOMPARE(process.exitCode(), 0);
}

RY_TEST(RyJointToolsPluginTest)

#include "tst_RyJointToolsPlugin.moc"
