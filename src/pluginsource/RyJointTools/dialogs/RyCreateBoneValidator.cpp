#include "pluginsource/RyJointTools/dialogs/RyCreateBoneValidator.h"

#include "pluginsource/RyJointTools/dialogs/RyGuardedDialog.h"
#include "pluginsource/RyJointTools/dialogs/RyJEBoneCreationDlg.h"
#include "pluginsource/RyJointTools/dialogs/runMessageBox.h"

#include "rycore/app/RyApp.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <QPushButton>

bool RyCreateBoneValidator::validate(RyBasicDialog *dialog)
{
    auto *creation = qobject_cast<RyJEBoneCreationDlg *>(dialog);
    if (!creation) {
        runMessageBox(QMessageBox::Warning, RyApp::getDialogParent(), RyJEBoneCreationDlg::tr("Unexpected Error"),
                      RyJEBoneCreationDlg::tr("An unexpected error has occurred."), QMessageBox::Ok, QMessageBox::Ok);
        return false;
    }
    const RyRef<RySkeleton> skeleton(findSkeletonOfSelectedBone());
    return skeleton && agreeOnNumbers(creation, skeleton) && areFree(creation, skeleton);
}

RySkeleton *RyCreateBoneValidator::findSkeletonOfSelectedBone()
{
    const auto *bone = qobject_cast<const RyBone *>(ryScene()->getPrimarySelection());
    return bone ? bone->getSkeleton() : nullptr;
}

bool RyCreateBoneValidator::agreeOnNumbers(RyJEBoneCreationDlg *dialog, const RyRef<RySkeleton> &skeleton)
{
    const QString nameNumber = RyScene::getNameNumber(dialog->getBoneName());
    const QString labelNumber = RyScene::getNameNumber(dialog->getBoneLabel());
    if (nameNumber.isEmpty() || labelNumber.isEmpty() || nameNumber == labelNumber)
        return true;
    const QPointer<RyJEBoneCreationDlg> asked(dialog);
    RyGuardedDialog<QMessageBox> box(
        QMessageBox::Question, RyJEBoneCreationDlg::tr("Name/Label Suffix Mismatch"),
        RyJEBoneCreationDlg::tr("The suffix of the Name and Label for the new bone do not match. This can lead to "
                                "confusion later. Would you like to continue with the existing values or fix the "
                                "mismatch?"),
        QMessageBox::NoButton, dialog);
    box->setDefaultButton(box->addButton(RyJEBoneCreationDlg::tr("Yes, Continue"), QMessageBox::ActionRole));
    const QPushButton *fix = box->addButton(RyJEBoneCreationDlg::tr("No, Fix Mismatch"), QMessageBox::ActionRole);
    box.exec();
    const RySkeleton *still = findSkeletonOfSelectedBone();
    if (!asked || !box.get() || !skeleton || still != skeleton)
        return false;
    if (box->clickedButton() != fix)
        return true;
    fixNumbers(dialog, skeleton);
    return false;
}

void RyCreateBoneValidator::fixNumbers(RyJEBoneCreationDlg *dialog, const RySkeleton *skeleton)
{
    QString name = dialog->getBoneName();
    QString label = dialog->getBoneLabel();
    const QString nameFromLabel =
        QStringLiteral("%1%2").arg(RyScene::stripNameNumber(name), RyScene::getNameNumber(label));
    const QString labelFromName =
        QStringLiteral("%1 %2").arg(RyScene::stripLabelNumber(label), RyScene::getNameNumber(name));
    if (!skeleton->findBone(name) && !skeleton->findBoneByLabel(labelFromName))
        label = labelFromName;
    else if (!skeleton->findBone(nameFromLabel) && !skeleton->findBoneByLabel(label))
        name = nameFromLabel;
    dialog->setBoneName(name, false);
    dialog->setBoneLabel(label, false);
}

bool RyCreateBoneValidator::areFree(RyJEBoneCreationDlg *dialog, const RySkeleton *skeleton)
{
    const QString name = dialog->getBoneName();
    const QString label = dialog->getBoneLabel();
    QStringList messages;
    if (skeleton->findBoneByLabel(label)) {
        messages.append(RyJEBoneCreationDlg::tr("A bone labeled \"%1\" already exists in \"%2\". ")
                            .arg(label, skeleton->getLabel()));
        dialog->setBoneLabel(skeleton->getUniqueBoneLabel(label), true);
    }
    if (skeleton->findBone(name)) {
        messages.append(
            RyJEBoneCreationDlg::tr("A bone named \"%1\" already exists in \"%2\". ").arg(name, skeleton->getLabel()));
        dialog->setBoneName(skeleton->getUniqueBoneName(name), true);
    }
    if (messages.isEmpty())
        return true;
    messages.append(messages.size() == 1
                        ? RyJEBoneCreationDlg::tr("An adjustment has been made. Verify the adjustment and try again.")
                        : RyJEBoneCreationDlg::tr("Adjustments have been made. Verify the adjustments and try again."));
    runMessageBox(QMessageBox::Warning, dialog, RyJEBoneCreationDlg::tr("Input Error"),
                  messages.join(QStringLiteral("\n\n")), QMessageBox::Ok, QMessageBox::Ok, Qt::PlainText);
    return false;
}
