#pragma once

#include "rycore/base/RyRefCounted.h"
#include "rycore/ui/RyBasicDialogValidator.h"

class RyJEBoneCreationDlg;
class RySkeleton;

/// Lets the bone creation dialog close when name and label are new to the skeleton of the selected bone. Otherwise it
/// says so, writes free ones into the fields and keeps the dialog open. Numbers at their ends that differ can be made
/// to agree.
class RyCreateBoneValidator : public RyBasicDialogValidator
{
public:
    /// False without a message unless a bone of a skeleton is the primary selection. Also false where dialog or
    /// skeleton went while a message was shown.
    bool validate(RyBasicDialog *dialog) override;

    /// Null unless the primary selection is a bone of one.
    static RySkeleton *findSkeletonOfSelectedBone();

private:
    // Each shows a message where there is something to ask or to say: afterwards the dialog and the skeleton may be
    // gone.
    /// Whether to go on with the name and the label as they are.
    static bool agreeOnNumbers(RyJEBoneCreationDlg *dialog, const RyRef<RySkeleton> &skeleton);
    static void fixNumbers(RyJEBoneCreationDlg *dialog, const RySkeleton *skeleton);
    static bool areFree(RyJEBoneCreationDlg *dialog, const RySkeleton *skeleton);
};
