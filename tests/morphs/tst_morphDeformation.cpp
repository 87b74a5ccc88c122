#include "morphs/MorphedSheet.h"
#include "rycore/scene/RyShapeNormals.h"

#include <cstring>

namespace {

bool isSame(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(RyVec3)) == 0;
}

bool showsWhatItShould(const MorphedSheet &sheet)
{
    const auto [positions, normals] = sheet.expectedPoints();
    const RyShapePoints points = sheet.skeleton->getObject()->getDeformedPoints();
    return isSame(*points.positions, positions) && isSame(*points.normals, normals);
}

} // namespace

class MorphDeformationTest : public QObject
{
    Q_OBJECT

private slots:
    void currentPositionsAreBaseAndDeltas()
    {
        MorphedSheet sheet;
        QCOMPARE(&sheet.shape->getBasePositions(), &sheet.mesh->getPositions());
        RyMorph *wide = sheet.addMorph("wide", 0, 1, MorphedSheet::Vertices);
        RyMorph *few = sheet.addMorph("few", 5, 37, 40);
        QCOMPARE(&sheet.shape->getCurrentPositions(), &sheet.mesh->getPositions());
        wide->getValueControl()->setValue(0.4f);
        few->getValueControl()->setValue(0.9f);
        QVERIFY(isSame(sheet.shape->getCurrentPositions(), sheet.expectedPositions()));
        QVERIFY(!isSame(sheet.shape->getCurrentPositions(), sheet.mesh->getPositions()));
        QVERIFY(isSame(sheet.shape->getBasePositions(), sheet.mesh->getPositions()));
        // All values 0 give the base itself.
        wide->getValueControl()->setValue(0);
        few->getValueControl()->setValue(0);
        QCOMPARE(&sheet.shape->getCurrentPositions(), &sheet.mesh->getPositions());
        // The base may move meanwhile.
        few->getValueControl()->setValue(0.5f);
        sheet.shape->getCurrentPositions();
        sheet.mesh->setVertex(5, {1, 2, 3});
        QVERIFY(isSame(sheet.shape->getCurrentPositions(), sheet.expectedPositions()));
    }

    void anyWayGivesTheSamePositions()
    {
        MorphedSheet sheet;
        for (int i = 0; i < 12; ++i) {
            const int step = 1 + i % 5 * 7;
            sheet.addMorph(QString("m%1").arg(i), i * 11, step, 20 + 90 * i);
        }
        sheet.skeleton->getObject()->getDeformedPoints();
        for (int edit = 0; edit < 150; ++edit) {
            for (int changes = 1 + int(sheet.random() % 3); changes > 0; --changes) {
                RyMorph *morph = sheet.shape->getMorphs()[sheet.random() % 12];
                morph->getValueControl()->setValue(sheet.random() % 4 == 0 ? 0.0f : float(sheet.number(0, 1)));
            }
            if (edit % 7 == 0)
                sheet.pose(sheet.bones[sheet.random() % sheet.bones.size()]);
            if (edit % 31 == 0)
                sheet.poseAll();
            QVERIFY(isSame(sheet.shape->getCurrentPositions(), sheet.expectedPositions()));
            if (edit % 10 == 0)
                QVERIFY(showsWhatItShould(sheet));
        }
        QVERIFY(showsWhatItShould(sheet));
        for (RyMorph *morph : sheet.shape->getMorphs())
            morph->getValueControl()->setValue(0);
        QVERIFY(showsWhatItShould(sheet));
        QVERIFY(isSame(sheet.shape->getCurrentPositions(), sheet.mesh->getPositions()));
    }

    /// What a morph costs hangs on what it moves.
    void onlyWhatItMovesIsComputed()
    {
        MorphedSheet sheet;
        sheet.addMorph("all", 0, 1, MorphedSheet::Vertices)->getValueControl()->setValue(0.3f);
        RyMorph *run = sheet.addMorph("run", 2000, 1, 96);
        RyMorph *nothing = sheet.addMorph("nothing", 0, 1, 0);
        RyObject *object = sheet.skeleton->getObject();
        object->getDeformedPoints();
        run->getValueControl()->setValue(0.1f);
        const quint64 before = object->getDeformedPoints().revision();
        run->getValueControl()->setValue(0.2f);
        const RyShapePoints points = object->getDeformedPoints();
        QCOMPARE(sheet.shape->morphedPositions().lastTouched(), qint64(96));
        // A row above, a row below, and one vertex at each end of each row.
        const qint64 normals = sheet.shape->getNormals()->lastTouched();
        QVERIFY2(normals >= 96 && normals <= 2 * (96 + 6 * MorphedSheet::Columns),
                 qPrintable(QString::number(normals)));
        const qint64 deformed = sheet.skin->deformer().lastTouched();
        QVERIFY2(deformed >= 96 && deformed <= MorphedSheet::Vertices / 3, qPrintable(QString::number(deformed)));
        int changed = 0;
        for (const RyPointChanges::Range &range : points.changedSince(before))
            changed += range.count;
        QVERIFY2(changed >= 96 && changed < MorphedSheet::Vertices / 3, qPrintable(QString::number(changed)));
        QVERIFY(showsWhatItShould(sheet));
        // Nothing moves.
        const quint64 seen = object->getDeformedPoints().revision();
        nothing->getValueControl()->setValue(1);
        QCOMPARE(object->getDeformedPoints().changedSince(seen).size(), size_t(0));
        QCOMPARE(sheet.shape->morphedPositions().lastTouched(), qint64(0));
        // A bone and a morph at once.
        sheet.pose(sheet.bones[3]);
        run->getValueControl()->setValue(0.7f);
        QVERIFY(showsWhatItShould(sheet));
    }

    void verticesThatNoBoneMovesFollowTheirMorphs()
    {
        MorphedSheet sheet;
        RyMorph *morph = sheet.addMorph("free", 710, 1, 20);
        RyObject *object = sheet.skeleton->getObject();
        object->getDeformedPoints();
        morph->getValueControl()->setValue(0.5f);
        object->getDeformedPoints();
        QCOMPARE(object->getDeformedPositions()[712], sheet.expectedPositions()[712]);
        QVERIFY(object->getDeformedPositions()[712] != sheet.mesh->getVertex(712));
        QVERIFY(showsWhatItShould(sheet));
    }

    void boxesHoldWhatIsShown()
    {
        MorphedSheet sheet;
        auto *lift = new RyMorph("lift", {17}, {{0, 4000, 0}});
        sheet.shape->addMorph(lift);
        const float before = sheet.skeleton->getBoundingBox().getMax().y;
        lift->getValueControl()->setValue(0.5f);
        QVERIFY(before < 1000.0f);
        QVERIFY(std::abs(sheet.skeleton->getBoundingBox().getMax().y - 2000.0f - sheet.mesh->getVertex(17).y) < 1e-2f);
        lift->getValueControl()->setValue(0);
        QCOMPARE(sheet.skeleton->getBoundingBox().getMax().y, before);
    }

    void playedValuesStandBeforeTheControl()
    {
        MorphedSheet sheet;
        RyMorph *morph = sheet.addMorph("smile", 3, 3, 500);
        morph->getValueControl()->setValue(0.25f);
        const std::vector<RyVec3> own = sheet.shape->getCurrentPositions();
        QSignalSpy shown(morph, &RyMorph::shownValueChanged);
        QSignalSpy drawn(sheet.skeleton->getObject(), &RyObject::contentChanged);
        morph->setPlayedValue(1.5f);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(drawn.count(), 1);
        QCOMPARE(morph->shownValue(), 1.5f);
        QCOMPARE(morph->getValueControl()->getValue(), 0.25f);
        QVERIFY(isSame(sheet.shape->getCurrentPositions(), sheet.expectedPositions()));
        QVERIFY(!isSame(sheet.shape->getCurrentPositions(), own));
        morph->setPlayedValue(1.5f);
        morph->getValueControl()->setValue(0.5f); // not seen meanwhile
        QCOMPARE(shown.count(), 1);
        morph->setPlayedValue(std::numeric_limits<float>::quiet_NaN());
        QCOMPARE(morph->shownValue(), 0.5f);
        morph->setPlayedValue(0.5f);
        morph->setPlayedValue(std::nullopt);
        QCOMPARE(shown.count(), 2);
        morph->getValueControl()->setValue(0.25f);
        QVERIFY(isSame(sheet.shape->getCurrentPositions(), own));
    }
};

RY_TEST(MorphDeformationTest)
#include "tst_morphDeformation.moc"
