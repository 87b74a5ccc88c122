// Makes a parametric figure of the sample figure:
//
//     ryhost --batch resources/samples/mannequin.glb --script docs/examples/parametric_figure.rsx --save parametric.glb
//
// The weights of the sample are used for one thing: each facet of the skin goes to the face group of the bone that moves it
// most. Then the figure becomes a prop, and the prop a figure whose joints have parameters instead of weights: a root and
// twenty bones below it, each placed where the sample had it. Fit Zones to Bone then lays the zones of each joint along its
// bone. Nothing is painted, and every zone can be put elsewhere by hand.

// The bones that the figure gets; what the sample has beside them (fingers) goes with the nearest one above.
var BONES = ["hip", "abdomen", "chest", "neck", "head"];
["l", "r"].forEach(function (side) {
    ["Collar", "Shldr", "Forearm", "Hand", "Thigh", "Shin", "Foot", "Toe"].forEach(function (name) {
        BONES.push(side + name);
    });
});

function check(isRight, what) {
    if (!isRight)
        throw new Error("parametric_figure: " + what);
}

// Runs an action on these nodes; the last one is the primary selection.
function run(action, nodes, fields, answers) {
    Scene.setSelection([].concat(nodes));
    var result = Actions.run(action, fields || {}, answers || {});
    check(result.ran, action + " did not run on " + [].concat(nodes).join(", ") + ": " + result.reason);
}

// ---- What the sample says: where its bones are, and which of ours each facet goes with.

var figure = Scene.getSkeletons()[0], name = figure.getName(), mesh = figure.getMesh();

// Ours, or the nearest above that is.
function keptBone(bone) {
    while (BONES.indexOf(bone.getName()) < 0)
        bone = bone.getNodeParent();
    return bone.getName();
}

var places = {}, shares = {};
BONES.forEach(function (each) {
    var bone = figure.findBone(each), parent = bone.getNodeParent();
    places[each] = {
        label: bone.getLabel(),
        order: bone.getRotationOrder(),
        origin: bone.getOrigin(),
        end: bone.getEndPoint(),
        parent: parent.getName() === name ? null : parent.getName()
    };
    shares[each] = [];
});
figure.getSkinBinding().getBoneBindings().forEach(function (binding) {
    var map = binding.getWeights(), share = shares[keptBone(binding.getBone())];
    var vertices = map.getAffectedIndices(), weights = map.getAffectedWeights();
    for (var i = 0; i < vertices.length; ++i)
        share[vertices[i]] = (share[vertices[i]] || 0) + weights[i];
});
var groups = {};
BONES.forEach(function (each) { groups[each] = []; });
for (var facet = 0; facet < mesh.getNumFacets(); ++facet) {
    var corners = mesh.getFacetVertices(facet), most = 0, owner = BONES[0];
    BONES.forEach(function (each) {
        var sum = 0;
        corners.forEach(function (vertex) { sum += shares[each][vertex] || 0; });
        if (sum > most) {
            most = sum;
            owner = each;
        }
    });
    groups[owner].push(facet);
}

// ---- A prop, and a figure with joint parameters of it.

run("RyJEConvertFigureToPropAction", name);
run("RyJEConvertPropToFigureAction", name, {
    ConvertPropToFigureInheritParentSkeletonCbx: false, // there is no parent, and only now the name may be typed
    ConvertPropToFigureRootBoneLEdit: BONES[0],
    ConvertPropToFigureLegacyRBtn: true
});
figure = Scene.getSkeletons()[0];
mesh = figure.getMesh();

BONES.forEach(function (each) {
    var at = places[each];
    if (at.parent === null) {
        run("RyJERotationOrder" + at.order + "Action", each);
        run("RyJERenameNodeAction", each, {name: each, label: at.label});
    } else {
        run("RyJECreateBoneAction", at.parent, {
            JointEditorCreateBoneNameLEdit: each,
            JointEditorCreateBoneLabelLEdit: at.label,
            JointEditorCreateBoneRotationOrderCmb: at.order
        });
    }
    var bone = figure.findBone(each);
    bone.setOrigin(at.origin);
    bone.setEndPoint(at.end);
});
run("RyJEAlignAllBonesAction", BONES[0]);

// ---- Which facets are whose, and the zones along the bones.

BONES.forEach(function (each) {
    mesh.setFaceGroup(each, groups[each]);
    figure.setFaceGroup(figure.findBone(each), each);
});
BONES.slice(1).forEach(function (each) { run("RyFitZonesToBoneAction", each); });
// Where limbs branch off, the rays of one reach the others; two ellipsoids around each keep it to itself. Their radii across the
// bone are centimetres: full weight inside the first, none outside the second.
var RADII = {neck: [9, 13], lCollar: [9, 14], rCollar: [9, 14], lThigh: [9, 12], rThigh: [9, 12]};
Object.keys(RADII).forEach(function (each) {
    var bone = figure.findBone(each), axis = "XYZ".indexOf(places[each].order[0]);
    var origin = bone.getOrigin(), end = bone.getEndPoint();
    var center = [origin.x, origin.y, origin.z], tip = [end.x, end.y, end.z];
    var length = Math.sqrt(center.reduce(function (sum, start, k) { return sum + Math.pow(tip[k] - start, 2); }, 0));
    center[axis] += (tip[axis] < center[axis] ? -0.5 : 0.5) * length;

    function ellipsoid(along, across) {
        var matrix = [];
        for (var row = 0; row < 3; ++row) {
            for (var column = 0; column < 4; ++column)
                matrix.push(row !== column ? 0 : row === axis ? along : across);
        }
        return matrix.concat(center, 1);
    }
    figure.getLegacyBinding().findJoint(bone).getParams().forEach(function (param) {
        if (param.getKind() !== "bend" || param.getDriver() !== bone)
            return;
        [param, param.getPartner()].forEach(function (side) {
            side.setDynamicMatrix(ellipsoid(0.9 * length, RADII[each][0]));
            side.setStaticMatrix(ellipsoid(1.1 * length, RADII[each][1]));
            side.setFlag("matrices", true);
        });
    });
});
Scene.selectAllNodes(false);

// ---- Is it right?

check(figure.isA("RyLegacyFigure"), name + " is no parametric figure");
check(figure.getAllBones().length === BONES.length, "there are " + figure.getAllBones().length + " bones");
var owned = 0;
BONES.forEach(function (each) {
    var bone = figure.findBone(each), at = places[each], parent = bone.getNodeParent();
    check((parent === figure ? null : parent.getName()) === at.parent, each + " hangs wrong");
    [[bone.getOrigin(), at.origin], [bone.getEndPoint(), at.end]].forEach(function (pair) {
        var far = Math.abs(pair[0].x - pair[1].x) + Math.abs(pair[0].y - pair[1].y) + Math.abs(pair[0].z - pair[1].z);
        check(far < 0.01, each + " is not where it was");
    });
    owned += mesh.getFaceGroup(figure.getFaceGroup(bone)).length;
});
check(owned === mesh.getNumFacets(), "some facets are no bone's");
