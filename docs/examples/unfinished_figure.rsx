// A character that somebody left unfinished, to practise on: the sample figure with lowered arms, the left elbow too near
// to the shoulder, the bones of the right arm beside the mesh, and axes that lie along no bone.
//
//     ryhost --batch resources/samples/mannequin.glb --script docs/examples/unfinished_figure.rsx --save unfinished.glb
//
// "Fix a character in ten minutes", one of the walk-throughs, puts it right.

var LOWERED = 40; // degrees
var ELBOW_AWAY = 0.3; // of the upper arm, towards the shoulder
var ARM_AWAY = 18; // degrees, about the right shoulder

function run(action, node) {
    Scene.setSelection([node]);
    var result = Actions.run(action);
    if (!result.ran)
        throw new Error("unfinished_figure: " + action + " did not run: " + result.reason);
}

function between(a, b, share) {
    return {x: a.x + share * (b.x - a.x), y: a.y + share * (b.y - a.y), z: a.z + share * (b.z - a.z)};
}

// About an axis that looks ahead.
function turned(point, center, degrees) {
    var angle = degrees * Math.PI / 180, c = Math.cos(angle), s = Math.sin(angle);
    var x = point.x - center.x, y = point.y - center.y;
    return {x: center.x + c * x - s * y, y: center.y + s * x + c * y, z: point.z};
}

var left = Scene.find("lShldr"), right = Scene.find("rShldr");
left.setValue("zrot", -LOWERED);
right.setValue("zrot", LOWERED);
run("RyJEBakeRotationsAction", "mannequin");

var elbow = between(left.getEndPoint(), left.getOrigin(), ELBOW_AWAY);
left.setEndPoint(elbow);
Scene.find("lForearm").setOrigin(elbow);

var center = right.getOrigin();
[right].concat(right.getNodeChildren(true)).forEach(function (bone) {
    var origin = turned(bone.getOrigin(), center, ARM_AWAY), end = turned(bone.getEndPoint(), center, ARM_AWAY);
    bone.setOrigin(origin);
    bone.setEndPoint(end);
});
Scene.setSelection(["mannequin"]);
