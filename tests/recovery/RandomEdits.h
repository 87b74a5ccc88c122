#pragma once

#include <random>

class RyBone;
class RyNode;
class RyScene;

/// Edits as artists make them, each one undo step, now and then an undo or a redo, and at times one that no step holds.
class RandomEdits
{
public:
    RandomEdits(RyScene &scene, unsigned seed) : m_scene(scene), m_random(seed) {}

    void editOnce();
    std::mt19937 &random() { return m_random; }

private:
    RyNode *pickNode();
    RyBone *pickBone();
    void changeValue();
    void moveJoint();
    void changeTree();
    void changeUnrecorded();
    float number(float low, float high);

    RyScene &m_scene;
    std::mt19937 m_random;
};
