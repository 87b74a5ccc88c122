#include "support/RyTest.h"

#include "RyFilledBoneDialog.h"
#include "tool/RyToolScene.h"

#include <dlfcn.h>

namespace {

/// What the scene was asked, "name prop" or "label A Prop", while somebody listens.
QStringList *questions = nullptr;

QString askScene(const char *symbol, const QString &text, const RyNode *ignore)
{
    using Query = QString (*)(const QString &, const RyNode *);
    const auto query = reinterpret_cast<Query>(dlsym(RTLD_NEXT, symbol));
    return query ? query(text, ignore) : QString();
}

} // namespace

// The program's own definitions come before the library's, for all that asks.

QString RyScene::getUniqueTopLevelName(const QString &name, const RyNode *ignore)
{
    if (questions)
        questions->append(QStringLiteral("name ") + name);
    return askScene("_ZN7RyScene21getUniqueTopLevelNameERK7QStringPK6RyNode", name, ignore);
}

QString RyScene::getUniqueTopLevelLabel(const QString &label, const RyNode *ignore)
{
    if (questions)
        questions->append(QStringLiteral("label ") + label);
    return askScene("_ZN7RyScene22getUniqueTopLevelLabelERK7QStringPK6RyNode", label, ignore);
}

/// The bone dialog asks the scene about every text that is set, also where it does not take the answer.
class RyUniqueNameQueryTest : public QObject
{
    Q_OBJECT

private slots:
    void everyTextIsAsked();
};

void RyUniqueNameQueryTest::everyTextIsAsked()
{
    RyToolScene scene;
    RyFilledBoneDialog dialog;
    QStringList asked;
    questions = &asked;
    dialog.setBoneName(QStringLiteral("prop"), false);
    dialog.setBoneName(QStringLiteral("prop"), true);
    dialog.setBoneName(QString(), true);
    dialog.setBoneLabel(QStringLiteral("prop"), false);
    dialog.setBoneLabel(QString(), false);
    dialog.setBoneLabel(QStringLiteral("other"), true);
    questions = nullptr;
    QCOMPARE(asked, QStringList({"name prop", "name prop", "label prop", "label other"}));
    QCOMPARE(dialog.getBoneName(), QStringLiteral("prop2"));
    QCOMPARE(dialog.getBoneLabel(), QStringLiteral("other"));
}

RY_TEST(RyUniqueNameQueryTest)

#include "tst_uniqueNameQuery.moc"
