#pragma once

class RyJointEditorTool;

/// The tool that the main window's viewports use; null without a window and without such a tool.
RyJointEditorTool *findJointEditorTool();
