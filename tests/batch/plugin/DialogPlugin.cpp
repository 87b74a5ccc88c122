// A plug-in with one action of each kind that a run without a person must get along with.
#include "rycore/base/RyPlugin.h"
#include "rycore/base/RyTClassFactory.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyAction.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QSpinBox>
#include <QVBoxLayout>

#include <csignal>
#include <cstdio>

/// Opens a dialog whose numbers move the primary selection up.
class RyTestRaiseAction : public RyAction
{
    Q_OBJECT
public:
    RyTestRaiseAction() : RyAction(QStringLiteral("Raise..."), QStringLiteral("Raises the selected node.")) {}
    void executeAction() override
    {
        RyNode *node = ryScene()->getPrimarySelection();
        if (!node) {
            QMessageBox::warning(nullptr, QStringLiteral("Selection Error"),
                                 QStringLiteral("A node must be selected."));
            return;
        }
        QDialog dialog;
        dialog.setObjectName(QStringLiteral("RaiseDlg"));
        dialog.setWindowTitle(QStringLiteral("Raise Node"));
        auto *height = new QSpinBox(&dialog);
        height->setObjectName(QStringLiteral("HeightSpn"));
        auto *unit = new QComboBox(&dialog);
        unit->setObjectName(QStringLiteral("UnitCmb"));
        unit->addItems({QStringLiteral("Centimetres"), QStringLiteral("Metres")});
        auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
        auto *layout = new QVBoxLayout(&dialog);
        for (QWidget *widget : std::initializer_list<QWidget *>{height, unit, buttons})
            layout->addWidget(widget);
        connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
        connect(buttons, &QDialogButtonBox::accepted, &dialog, [&] {
            const bool isHigh = height->value() > 50;
            if (!isHigh ||
                QMessageBox::question(&dialog, QStringLiteral("That High?"), QStringLiteral("Really?"),
                                      QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes)
                dialog.accept();
        });
        if (dialog.exec() != QDialog::Accepted)
            return;
        RyUndoStackHold hold;
        node->adjustOrigin(node->getOrigin() +
                           RyVec3(0.0f, float(height->value()) * (unit->currentIndex() ? 100.0f : 1.0f), 0.0f));
        hold.accept(QStringLiteral("Raise Node"));
    }
};

/// Asks until it hears yes.
class RyTestInsistAction : public RyAction
{
    Q_OBJECT
public:
    RyTestInsistAction() : RyAction(QStringLiteral("Insist"), QString()) {}
    void executeAction() override
    {
        qWarning("It insists: %s", "yes is the only answer.");
        while (QMessageBox::question(nullptr, QStringLiteral("Yes?"), QString(),
                                     QMessageBox::Retry | QMessageBox::Abort,
                                     QMessageBox::Retry) != QMessageBox::Abort) {
        }
    }
};

/// Writes where only the program should.
class RyTestPrintAction : public RyAction
{
    Q_OBJECT
public:
    RyTestPrintAction() : RyAction(QStringLiteral("Print"), QString()) {}
    void executeAction() override { std::puts("printed by a library"); }
};

/// Brings the program down.
class RyTestAbortAction : public RyAction
{
    Q_OBJECT
public:
    RyTestAbortAction() : RyAction(QStringLiteral("Abort"), QString()) {}
    void executeAction() override { std::raise(SIGKILL); }
};

class RyTestDisabledAction : public RyAction
{
    Q_OBJECT
public:
    RyTestDisabledAction() : RyAction(QStringLiteral("Disabled"), QString()) { setEnabled(false); }
};

static RyPlugin plugin(QStringLiteral("Dialogs"), QString(), QString(), 1, 0, 0, 0);

static struct Factories
{
    RyTClassFactory<RyTestRaiseAction> raise{
        &RyTestRaiseAction::staticMetaObject,
        RyGuid::fromString(QStringLiteral("0A4E42A0-0000-4ca5-9863-850B40E01DA1"))};
    RyTClassFactory<RyTestInsistAction> insist{
        &RyTestInsistAction::staticMetaObject,
        RyGuid::fromString(QStringLiteral("0A4E42A0-0000-4ca5-9863-850B40E01DA2"))};
    RyTClassFactory<RyTestDisabledAction> disabled{
        &RyTestDisabledAction::staticMetaObject,
        RyGuid::fromString(QStringLiteral("0A4E42A0-0000-4ca5-9863-850B40E01DA3"))};
    RyTClassFactory<RyTestAbortAction> abort{
        &RyTestAbortAction::staticMetaObject,
        RyGuid::fromString(QStringLiteral("0A4E42A0-0000-4ca5-9863-850B40E01DA4"))};
    RyTClassFactory<RyTestPrintAction> print{
        &RyTestPrintAction::staticMetaObject,
        RyGuid::fromString(QStringLiteral("0A4E42A0-0000-4ca5-9863-850B40E01DA5"))};
    Factories()
    {
        for (RyClassFactory *factory :
             std::initializer_list<RyClassFactory *>{&raise, &insist, &disabled, &abort, &print})
            plugin.addClassFactory(factory);
    }
} factories;

extern "C" __attribute__((visibility("default"))) RyVersion getSDKVersion()
{
    return RyVersion(4, 22, 0, 7);
}

extern "C" __attribute__((visibility("default"))) RyPlugin *getPluginDefinition()
{
    return &plugin;
}

#include "DialogPlugin.moc"
