#include "rycore/scene/RyBone.h"
#include "rycore/scene/assets/RyAssetIOMgr.h"
#include "rycore/scene/assets/RyAssetLoadScope.h"
#include "support/RyTest.h"

#include <QStringList>

namespace {

class RyWatchedAssetIOMgr : public RyAssetIOMgr
{
public:
    QStringList calls;
    void doScopedLoad(RyAssetLoadScope &scope, bool isolated) override
    {
        calls << (isolated ? QStringLiteral("open isolated") : QStringLiteral("open joined"));
        RyAssetIOMgr::doScopedLoad(scope, isolated);
    }

protected:
    void loadFinished(RyAssetLoadScope &) override { calls << QStringLiteral("finish"); }
};

} // namespace

class RyAssetIOMgrTest : public QObject
{
    Q_OBJECT

private slots:
    void everyOpenedScopeIsFinishedOnce()
    {
        RyWatchedAssetIOMgr manager;
        {
            RyAssetLoadScope never;
            RyAssetLoadScope byHand, byDestructor;
            QVERIFY(!byHand.isOpen() && !byHand.getAssets());
            manager.doScopedLoad(byHand, true);
            QVERIFY(byHand.isOpen() && byHand.getAssets());
            manager.doScopedLoad(byDestructor, true);
            QVERIFY(byHand.getAssets() != byDestructor.getAssets());
            QCOMPARE(manager.getNumOpenScopes(), 2);
            byHand.finishLoad();
            byHand.finishLoad();
            QVERIFY(!byHand.isOpen() && !byHand.getAssets());
            QCOMPARE(manager.getNumOpenScopes(), 1);
        }
        QCOMPARE(manager.getNumOpenScopes(), 0);
        QCOMPARE(manager.calls, (QStringList{"open isolated", "open isolated", "finish", "finish"}));
    }

    void assetsLiveUntilTheScopeIsFinished()
    {
        RyAssetIOMgr manager;
        RyAssetLoadScope scope;
        manager.doScopedLoad(scope, true);
        const QPointer<RyBone> lost = new RyBone;
        const RyRef<RyBone> kept(new RyBone);
        scope.getAssets()->add(lost);
        scope.getAssets()->add(kept.get());
        scope.getAssets()->add(nullptr);
        QCOMPARE(scope.getAssets()->count(), 2);
        QVERIFY(scope.getAssets()->contains(lost) && !scope.getAssets()->contains(nullptr));
        scope.finishLoad();
        QVERIFY(!lost);
        QVERIFY(kept);
        QCOMPARE(kept->refCount(), 1);
    }

    void joinedScopesShareAList()
    {
        RyAssetIOMgr manager;
        RyAssetLoadScope inner;
        const QPointer<RyBone> bone = new RyBone;
        {
            RyAssetLoadScope outer;
            manager.doScopedLoad(outer, true);
            manager.doScopedLoad(inner, false);
            QCOMPARE(inner.getAssets(), outer.getAssets());
            inner.getAssets()->add(bone);
            manager.doScopedLoad(inner, true); // open already
            QCOMPARE(inner.getAssets(), outer.getAssets());
        }
        QVERIFY(!bone);
        QVERIFY(inner.isOpen());
        inner.getAssets()->add(nullptr);
        QCOMPARE(inner.getAssets()->count(), 0);
    }

    void scopeOutlivesItsManager()
    {
        RyAssetLoadScope scope;
        {
            RyAssetIOMgr manager;
            manager.doScopedLoad(scope, true);
        }
        QVERIFY(!scope.isOpen() && !scope.getAssets());
        scope.finishLoad();
    }
};

RY_TEST(RyAssetIOMgrTest)
#include "tst_RyAssetIOMgr.moc"
