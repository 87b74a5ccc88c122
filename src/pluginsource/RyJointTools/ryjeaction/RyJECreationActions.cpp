#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"

RyJECreateBoneAction::RyJECreateBoneAction() : RyJEToolAction(staticMetaObject) {}

RyJECreateSiblingBoneAction::RyJECreateSiblingBoneAction() : RyJEToolAction(staticMetaObject) {}

RyJEDuplicateBonesAction::RyJEDuplicateBonesAction() : RyJEToolAction(staticMetaObject) {}

RyJESplitBoneAction::RyJESplitBoneAction() : RyJEToolAction(staticMetaObject) {}

RyJECreateDonorFigureAction::RyJECreateDonorFigureAction() : RyJEToolAction(staticMetaObject) {}

RyJECreateControlBonesAction::RyJECreateControlBonesAction() : RyJEToolAction(staticMetaObject) {}
