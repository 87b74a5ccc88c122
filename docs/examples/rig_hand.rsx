// Rigs a bare hand with nothing but actions, as an artist would with the menus:
//
//     ryhost --batch resources/samples/hand.obj --script docs/examples/rig_hand.rsx --save hand.glb
//
// The mesh lies with its back up, the fingers along X, the thumb at Z; places are centimetres. What comes out are a forearm, a
// hand and five fingers of three bones, named, aligned, each moving what is its own.
//
// Where the weights come from. Convert Prop to Figure gives every vertex to the root bone. A child bone starts without any
// weights. A sibling and the outer half of a split bone get a copy of the weights of the bone they come from, and all are then
// brought down to a whole again: each vertex is shared evenly, wherever it lies. So up to the last action the root alone
// moves the hand. That action, Bind to Nearest Bones, weighs each vertex by the bones it lies at and softens the borders
// along the surface. Nothing is painted: a rigger would still go over the web of the thumb.

// The joints: root or knuckle, the two joints that follow, the tip.
var WRIST = [6, 2.04, 6];
var ELBOW_SIDE = [2, 2.04, 6];
var FINGERS = {
    index: [[14.8, 2.29, 8.75], [18.95, 1.99, 9.25], [21.4, 1.54, 9.45], [23.35, 1.04, 9.5]],
    mid: [[15, 2.39, 6.75], [19.6, 2.14, 6.85], [22.35, 1.64, 6.85], [24.4, 1.09, 6.8]],
    ring: [[14.5, 2.29, 4.8], [18.75, 2.04, 4.45], [21.3, 1.54, 4.2], [23.25, 1.04, 4]],
    pinky: [[13.7, 2.09, 3.05], [17, 1.84, 2.25], [18.95, 1.44, 1.8], [20.65, 1.04, 1.5]],
    thumb: [[7.4, 1.69, 8.2], [10.9, 1.29, 11.25], [13.65, 1.09, 13.3], [16.2, 0.89, 14.95]]
};
var LABELS = {index: "Index", mid: "Middle", ring: "Ring", pinky: "Little", thumb: "Thumb"};

function check(isRight, what) {
    if (!isRight)
        throw new Error("rig_hand: " + what);
}

// Runs an action on these nodes; the last one is the primary selection.
function run(action, nodes, fields, answers) {
    Scene.setSelection([].concat(nodes));
    var result = Actions.run(action, fields || {}, answers || {});
    check(result.ran, action + " did not run on " + [].concat(nodes).join(", ") + ": " + result.reason);
}

// Selected Node(s) Attributes...: center and end point of a bone.
function place(bone, center, end) {
    var fields = {}, axes = "XYZ";
    for (var k = 0; k < 3; ++k) {
        if (center) {
            fields["NodeAttributesEditCenter" + axes[k] + "Cbx"] = true;
            fields["NodeAttributesEditCenter" + axes[k] + "SBox"] = center[k];
        }
        fields["NodeAttributesEditEnd" + axes[k] + "Cbx"] = true;
        fields["NodeAttributesEditEnd" + axes[k] + "SBox"] = end[k];
    }
    run("RyJESelectedNodesAttributesEditAction", bone, fields);
}

function createChild(parent, name, label) {
    run("RyJECreateBoneAction", parent, {
        JointEditorCreateBoneNameLEdit: name,
        JointEditorCreateBoneLabelLEdit: label,
        JointEditorCreateBoneRotationOrderCmb: "XYZ"
    });
}

// ---- A figure with one bone, the part of the forearm that is there.

run("RyJEConvertPropToFigureAction", "hand", {
    ConvertPropToFigureInheritParentSkeletonCbx: false, // there is no parent, and only now the name may be typed
    ConvertPropToFigureRootBoneLEdit: "forearm",
    ConvertPropToFigureGeneralRBtn: true
});
var figure = Scene.getSkeletons()[0];
run("RyJERenameNodeAction", "forearm", {name: "forearm", label: "Forearm"});
place("forearm", ELBOW_SIDE, WRIST);

// ---- The palm and the first bones of the four fingers: one child, and siblings of it, which all get their own names.

createChild("forearm", "palm", "Palm");
place("palm", null, FINGERS.mid[0]);
createChild("palm", "index1", "Index 1");
place("index1", FINGERS.index[0], FINGERS.index[3]);
["mid", "ring", "pinky"].forEach(function (finger) {
    run("RyJECreateSiblingBoneAction", "index1");
    run("RyJERenameNodeAction", "index2", {name: finger + "1", label: LABELS[finger] + " 1"});
    place(finger + "1", FINGERS[finger][0], FINGERS[finger][3]);
});
// The palm ends in the middle between the four knuckles.
run("RyJESnapEndPointAction", "palm");

// ---- The thumb grows out near the wrist, where the forearm ends; then it goes below the palm, one level deeper.

createChild("forearm", "thumb1", "Thumb 1");
place("thumb1", FINGERS.thumb[0], FINGERS.thumb[3]);
run("RyJEReparentBoneAction", "thumb1", {NodeDlgSearchLEdit: "palm"}, {"Reparenting Warning": "OK"});

// ---- Three bones for each finger: splitting twice names the halves by themselves, then the joints go where they belong.

Object.keys(FINGERS).forEach(function (finger) {
    var joints = FINGERS[finger];
    run("RyJESplitBoneAction", finger + "1");
    run("RyJESplitBoneAction", finger + "2");
    place(finger + "1", null, joints[1]);
    run("RyJESnapCenterPointAction", finger + "2"); // onto the end of the bone before
    place(finger + "2", null, joints[2]);
    run("RyJESnapCenterPointAction", finger + "3");
});

// ---- Axes along the bones, and each vertex to the bones it lies at.

run("RyJEAlignAllBonesAction", "forearm");
run("RyBindToNearestBonesAction", "forearm");
Scene.selectAllNodes(false);

// ---- Is it right?

function distance(point, place) {
    var d = [point.x - place[0], point.y - place[1], point.z - place[2]];
    return Math.sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
}

var bones = figure.getAllBones();
check(bones.length === 17, "there are " + bones.length + " bones");
check(figure.findBone("forearm").getNodeParent() === figure, "the forearm is the root");
check(figure.findBone("palm").getNodeParent() === figure.findBone("forearm"), "the palm hangs on the forearm");
check(distance(figure.findBone("palm").getOrigin(), WRIST) < 0.01, "the palm begins at the wrist");
Object.keys(FINGERS).forEach(function (finger) {
    for (var i = 1; i <= 3; ++i) {
        var bone = figure.findBone(finger + i);
        check(bone, "there is no " + finger + i);
        check(bone.getLabel() === LABELS[finger] + " " + i, finger + i + " is labelled " + bone.getLabel());
        check(bone.getNodeParent() === figure.findBone(i === 1 ? "palm" : finger + (i - 1)), finger + i + " hangs wrong");
        check(distance(bone.getOrigin(), FINGERS[finger][i - 1]) < 0.01, finger + i + " does not begin at its joint");
        check(distance(bone.getEndPoint(), FINGERS[finger][i]) < 0.01, finger + i + " does not end at the next joint");
    }
});

// The first axis, X, turned about the fixed axes Y and Z by the orientation, points along the bone.
bones.forEach(function (bone) {
    var y = bone.getValue("orientY") * Math.PI / 180, z = bone.getValue("orientZ") * Math.PI / 180;
    var axis = [Math.cos(y) * Math.cos(z), Math.cos(y) * Math.sin(z), -Math.sin(y)];
    var a = bone.getOrigin(), b = bone.getEndPoint();
    var along = ((b.x - a.x) * axis[0] + (b.y - a.y) * axis[1] + (b.z - a.z) * axis[2]) / distance(a, [b.x, b.y, b.z]);
    check(bone.getRotationOrder() === "XYZ" && along > 0.99999, "the axis of " + bone.getName() + " is off its bone");
});

// All vertices have all of their weight, and each bone holds some of them alone or nearly so.
var sums = [];
figure.getSkinBinding().getBoneBindings().forEach(function (binding) {
    var vertices = binding.getWeights().getAffectedIndices(), weights = binding.getWeights().getAffectedWeights();
    var own = 0;
    for (var i = 0; i < vertices.length; ++i) {
        sums[vertices[i]] = (sums[vertices[i]] || 0) + weights[i];
        own += weights[i] > 52428 ? 1 : 0; // four fifths
    }
    check(own >= 16, binding.getBone().getName() + " moves hardly a vertex of its own");
});
check(sums.length === figure.getNumVertices(), "a vertex without weights");
sums.forEach(function (sum, vertex) { check(sum === 65535, "the weights of vertex " + vertex + " sum to " + sum); });
print("rig_hand: 17 bones, " + sums.length + " vertices");
