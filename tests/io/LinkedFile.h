#pragma once

#include "CharacterScene.h"

class RyFloatProperty;

/// A file with a posed figure of three bones, and a thing beside it on none of them, whose values control one another.
/// Bones turn about slanted axes, currents differ from defaults, figure and thing are moved, turned and scaled.
class LinkedFile
{
public:
    /// The file itself, without a link.
    static QString write(const QString &path);

    explicit LinkedFile(const QString &path) : character(path) {}

    CharacterScene character;

    RyScene &scene() { return character.scene; }
    const RyScene &scene() const { return character.scene; }
    /// Of the first node of that name. Fails the running test without one.
    RyFloatProperty *value(const char *node, const char *name) const;
    /// Poses all of it, then makes the links: bones by bones, by the thing and by the figure, the thing and the figure
    /// by bones, rigging by poses; of one value several, in layers, not in the order of the nodes.
    void poseAndLink();
    void link(RyFloatProperty *controller, RyFloatProperty *controlled);
    /// Fails the running test when the scene cannot be saved. Gives the messages.
    QStringList save(const QString &path);
    /// The largest distance, in centimetres, between what the scene shows and what an independent reader of the file
    /// says.
    double distanceTo(const QString &path) const;
};
