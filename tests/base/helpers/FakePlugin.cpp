// A plug-in library in several variants, good and bad.
#include "rycore/base/RyPlugin.h"
#include "rycore/base/RyTClassFactory.h"
#include "rycore/base/RyVersion.h"

#include <QObject>

#ifndef FAKE_VERSION
#define FAKE_VERSION 4, 22, 0, 7
#endif
#define FAKE_EXPORT extern "C" __attribute__((visibility("default")))

class FakeTool : public QObject
{
    Q_OBJECT
public:
    enum Mode { Idle, Busy = 5 };
    Q_ENUM(Mode)
    Q_INVOKABLE int answer() const { return 42; }
};

class FakeHelper : public QObject
{
    Q_OBJECT
};

static RyPlugin plugin(FAKE_NAME, QString(), QString(), 1, 2, 3, 4);

static struct FakeFactories
{
    RyTClassFactory<FakeTool> tool{&FakeTool::staticMetaObject,
                                   RyGuid::fromString("F84E42A0-0000-4ca5-9863-850B40E01DA8")};
    RyTClassFactory<FakeHelper> helper{&FakeHelper::staticMetaObject,
                                       RyGuid::fromString("F84E42A1-0000-4ca5-9863-850B40E01DA8")};
    FakeFactories()
    {
        plugin.addClassFactory(&tool);
        plugin.addClassFactory(&helper);
        helper.setScriptOwnership(QScriptEngine::AutoOwnership);
    }
    ~FakeFactories() { qputenv("RY_FAKE_UNLOADED", FAKE_NAME); }
} factories;

#ifdef FAKE_UNRESOLVED
int definedNowhere();
FAKE_EXPORT int callNowhere()
{
    return definedNowhere();
}
#endif

#ifndef FAKE_NO_VERSION
FAKE_EXPORT RyVersion getSDKVersion()
{
    return RyVersion(FAKE_VERSION);
}
#endif

#ifndef FAKE_NO_DEFINITION
FAKE_EXPORT RyPlugin *getPluginDefinition()
{
    qputenv("RY_FAKE_ASKED", FAKE_NAME);
#ifdef FAKE_NULL_DEFINITION
    return nullptr;
#else
    return &plugin;
#endif
}
#endif

#include "FakePlugin.moc"
