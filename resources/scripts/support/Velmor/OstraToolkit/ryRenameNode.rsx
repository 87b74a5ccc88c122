// Asks for a name and a label of the selected node and gives it both in one undo step.

(function () {
    var node = Scene.getPrimarySelection();
    if (!node)
        return;
    var oldName = node.getName();
    var oldLabel = node.getLabel();

    // What is wrong with a name that somebody types; "" when nothing is.
    function mistakeIn(name) {
        var probe = new RyScriptForm("");
        probe.addText("name", "", name, "name");
        return probe.getMessage();
    }

    // Names are unique within a figure, or else below one top-level node, and among the top-level nodes.
    function nodeCalled(name) {
        var root = node;
        while (root.getNodeParent() && (root === node || root !== node.getSkeleton()))
            root = root.getNodeParent();
        var others = root === node ? Scene.getTopLevelNodes() : root.getNodeChildren(true);
        for (var i = 0; i < others.length; ++i) {
            if (others[i] !== node && others[i].getName() === name)
                return others[i];
        }
        return null;
    }

    var form = new RyScriptForm("Rename Node");
    // A name that came with a file may hold what nobody may type, and is kept for the sake of the label.
    form.addText("name", "Name:", oldName, mistakeIn(oldName) ? "" : "name");
    form.addText("label", "Label:", oldLabel, "label");
    form.accepting.connect(function () {
        var name = form.value("name");
        if (name === oldName)
            return;
        var other = nodeCalled(name);
        if (name === "")
            form.setMessage("A node cannot be without a name.");
        else if (mistakeIn(name))
            form.setMessage(mistakeIn(name));
        else if (other)
            form.setMessage("The name \"" + name + "\" is taken: it belongs to " + other.getPath() + ".");
    });
    if (!form.exec())
        return;
    var newName = form.value("name");
    var newLabel = form.value("label");
    if (newName === oldName && newLabel === oldLabel)
        return;
    Undo.step("Rename Node", function () {
        node.setName(newName);
        // A node without a label of its own shows its name.
        if (node.getLabel() !== newLabel)
            node.setLabel(newLabel);
    });
})();
