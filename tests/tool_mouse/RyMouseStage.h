#pragma once

#include "tool/RyParamDragScene.h"
#include "viewport/ViewportTestScene.h"

#include <QGuiApplication>
#include <QTest>

#include <cmath>
#include <functional>
#include <optional>

/// A viewport on the display whose tool tips are kept.
class RyShownViewport : public Ry3DViewport
{
    Q_OBJECT
public:
    using Ry3DViewport::Ry3DViewport;
    void setToolTipText(const QString &text) override { toolTip = text; }
    QString toolTip;
};

/// The hand with its fitted parameters in a viewport on the display, with a mouse that presses what is drawn.
struct RyMouseStage : RyParamDragScene
{
    /// A place of a handle where it can be caught, in the world.
    struct Grip
    {
        Vec place;                        // at the press
        std::function<Vec()> now;         // the same place of the handle as the values are
        std::function<Vec(double)> moved; // where it goes: so many centimetres, radians or times its arm
        double reach = 1.0;               // of a drag in that measure
        std::optional<Vec> center = {};   // that it turns about
        QPoint pixel = {};
    };

    RyMouseStage(float figureScale, float generalScale, bool isPosed, bool isTurned)
        : RyParamDragScene(figureScale, generalScale), view(manager.get()), mouse(view)
    {
        if (!isTurned)
            doll.figure->getYRotControl()->setValue(0.0f);
        for (RyBone *bone : {doll.lArm, doll.lHand}) {
            for (RyFloatProperty *control : {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()}) {
                if (!isPosed)
                    control->setValue(0.0f);
            }
        }
        ryUndoStack()->clearAll();
        view.resize(800, 600);
        view.show();
    }
    /// No display was asked for, and there may be no window.
    static bool isOffscreen() { return QGuiApplication::platformName() == QLatin1String("offscreen"); }
    bool isShown() { return QTest::qWaitForWindowExposed(&view); }

    /// Turns the view until the handle can be caught, where a whole pixel is; none when it never can.
    std::optional<Grip> findGrip(int id)
    {
        const RyVec3 joint = doll.lHand->getWSPos();
        for (const RyVec3 &way : {RyVec3(60, 55, 100), RyVec3(-70, 80, 60), RyVec3(20, -70, 100), RyVec3(100, 30, -50),
                                  RyVec3(15, 120, 30), RyVec3(-90, -20, -70)}) {
            for (int look = 0; look < 24; ++look) {
                const RyVec3 target = joint + RyVec3(0.037f, -0.023f, 0.011f) * float(look);
                view.getCamera()->lookAt(target + way * (look % 2 ? 1.1f : 0.6f), target);
                if (const auto grip = findGripInView(id))
                    return grip;
            }
        }
        return std::nullopt;
    }
    /// The pixel of a place that the grip goes to, for about so much of its unit: the one that is hit best.
    QPoint cursorAt(const Grip &grip, double share) const
    {
        QPoint best;
        double miss = 1e9;
        for (int i = -20; i <= 20; ++i) {
            const QPointF pixel = pixelOf(grip.moved(grip.reach * share * (1.0 + 0.005 * i)));
            if (distance(pixel, pixel.toPoint()) >= miss)
                continue;
            miss = distance(pixel, pixel.toPoint());
            best = pixel.toPoint();
        }
        return best;
    }
    QPointF pixelOf(const Vec &place) const
    {
        QPointF pixel;
        view.project(fromVec(place), pixel);
        return pixel;
    }
    static double distance(const QPointF &a, const QPointF &b) { return std::hypot(a.x() - b.x(), a.y() - b.y()); }

    RyShownViewport view;
    ViewportMouse mouse;

private:
    std::optional<Grip> findGripInView(int id)
    {
        for (Grip grip : grips(id)) {
            grip.pixel = pixelOf(grip.place).toPoint();
            if (distance(pixelOf(grip.place), grip.pixel) < 0.3 &&
                view.rect().adjusted(100, 100, -100, -100).contains(grip.pixel) && isWellSeen(grip) &&
                view.pickOnGizmo(grip.pixel) == id)
                return grip;
        }
        return std::nullopt;
    }
    /// Its way is not along the view and, of a ring or ray, leads around the centre on the screen as well: a way
    /// towards it would answer half a pixel of the mouse by several.
    bool isWellSeen(const Grip &grip) const
    {
        const QPointF here = pixelOf(grip.place);
        if (distance(pixelOf(grip.moved(grip.reach)), here) < 25.0 ||
            distance(pixelOf(grip.moved(-grip.reach)), here) < 25.0)
            return false;
        for (double share = -1.0; grip.center && share <= 1.0; share += 0.25) {
            const QPointF place = pixelOf(grip.moved(grip.reach * share));
            const QPointF way = pixelOf(grip.moved(grip.reach * share + 0.01)) - place;
            const QPointF arm = place - pixelOf(*grip.center);
            const double across = std::abs(way.x() * arm.y() - way.y() * arm.x());
            if (across < 0.7 * std::hypot(way.x(), way.y()) * std::hypot(arm.x(), arm.y()))
                return false;
        }
        return true;
    }
    std::vector<Grip> grips(int id) const
    {
        const RyHandle &handle = *RyHandleTable::find(id);
        switch (handle.kind) {
        case RyHandle::Ring:
            return ringGrips(handle);
        case RyHandle::AxisArrow:
            return arrowGrips(handle);
        case RyHandle::ScaleCube:
            return cubeGrips(handle);
        case RyHandle::GeneralCube:
            return generalGrips(handle);
        case RyHandle::AngleRay:
            return rayGrips(handle);
        default:
            return zoneGrips(handle);
        }
    }
    const RyLegacyJointSphere &sphereOf(const RyHandle &handle) const
    {
        const RyLegacyJointParam *param = tool->currentParam();
        return handle.target == RyHandle::DynamicSphere ? *param->getDynamicSphere() : *param->getStaticSphere();
    }
    static float radius(const RyLegacyJointSphere &sphere, int axis)
    {
        return sphere.getScaleControl()->getValue() * sphere.controls()[size_t(7 + axis)]->getValue();
    }
    static bool isDynamic(const RyHandle &handle) { return handle.target == RyHandle::DynamicSphere; }

    /// What was pressed turns with the sphere, at the distance that it has from the centre.
    std::vector<Grip> ringGrips(const RyHandle &handle) const
    {
        std::vector<Grip> found;
        const size_t first = size_t(handle.axis + 1) % 3;
        const size_t second = size_t(handle.axis + 2) % 3;
        const double a = radius(sphereOf(handle), int(first));
        const double b = radius(sphereOf(handle), int(second));
        const RyMatrix4 matrix = sphereOf(handle).getMatrix();
        for (int degrees = 3; degrees < 360; degrees += 12) {
            const double x = a * 1.01 * std::cos(degrees * M_PI / 180.0);
            const double y = b * 1.01 * std::sin(degrees * M_PI / 180.0);
            const auto turned = [=](double turn) {
                Vec unitPoint{};
                unitPoint[first] = (x * std::cos(turn) - y * std::sin(turn)) / a;
                unitPoint[second] = (x * std::sin(turn) + y * std::cos(turn)) / b;
                return unitPoint;
            };
            const auto moved = [=, this](double turn) { return place(mapped(matrix, turned(turn), true)); };
            const auto now = [=, this] { return onSphere(isDynamic(handle), turned(0.0)); };
            found.push_back({moved(0.0), now, moved, 0.6, center(isDynamic(handle))});
        }
        return found;
    }
    std::vector<Grip> arrowGrips(const RyHandle &handle) const
    {
        std::vector<Grip> found;
        const Vec along = unit(direction(axis(handle.axis)));
        for (double out = 0.4; out < 12.0; out += 0.15) {
            const auto now = [=, this] { return center(isDynamic(handle)) + along * out; };
            const Vec place = now();
            found.push_back({place, now, [=](double way) { return place + along * way; }, 8.0});
        }
        return found;
    }
    std::vector<Grip> cubeGrips(const RyHandle &handle) const
    {
        const Vec onUnitSphere = axis(handle.axis, handle.value == RyHandle::Plus ? 1.0 : -1.0);
        const auto now = [=, this] { return onSphere(isDynamic(handle), onUnitSphere); };
        const Vec center = this->center(isDynamic(handle));
        const Vec cube = now();
        return {{cube, now, [=](double more) { return center + (cube - center) * (1.0 + more); }, 0.6}};
    }
    /// They stay where they are.
    std::vector<Grip> generalGrips(const RyHandle &handle) const
    {
        const auto now = [=, this] { return center(isDynamic(handle)); };
        const Vec center = now();
        Vec sum{};
        for (int k = 0; k < 3; ++k)
            sum = sum + unit(onSphere(isDynamic(handle), axis(k)) - center);
        const Vec diagonal = unit(sum);
        return {{center, now, [=](double way) { return center + diagonal * way; }, 4.0}};
    }
    const RyFloatProperty &valueOf(const RyHandle &handle) const
    {
        const std::vector<RyFloatProperty *> &values = tool->currentParam()->controllers();
        if (handle.kind == RyHandle::AngleRay)
            return *values[size_t(handle.value - RyHandle::AngleA)];
        return *values[(handle.target == RyHandle::LowZone ? 2u : 0u) + (handle.value == RyHandle::Start ? 0u : 1u)];
    }
    /// Rays have the length of the world, whatever is scaled.
    std::vector<Grip> rayGrips(const RyHandle &handle) const
    {
        std::vector<Grip> found;
        const Vec anchor = toVec(driver().getWSPos());
        const RyQuat rotation = driver().getWSRot();
        const RyQuat orientation = driver().getOrientation();
        const int bendAxis = tool->currentParam()->getAxis();
        for (double out = 6.0; out < 45.0; out += 1.5) {
            const auto at = [=](double t) {
                const Vec rays[3] = {
                    {0, std::sin(t), -std::cos(t)}, {std::cos(t), 0, std::sin(t)}, {std::cos(t), std::sin(t), 0}};
                return anchor + turned(rotation, turned(orientation, rays[bendAxis])) * out;
            };
            const auto angle = [=, this] { return double(valueOf(handle).getValue()) * M_PI / 180.0; };
            const double start = angle();
            found.push_back(
                {at(start), [=] { return at(angle()); }, [=](double turn) { return at(start + turn); }, 0.35, anchor});
        }
        return found;
    }
    /// From the axis out along the arms of the cross.
    std::vector<Grip> zoneGrips(const RyHandle &handle) const
    {
        std::vector<Grip> found;
        const int k = tool->currentParam()->getAxis();
        const Vec along = unit(direction(axis(k)));
        for (double out = 0.0; out < 9.0; out += 0.1) {
            for (const int side : {1, 2}) {
                for (const double sign : {1.0, -1.0}) {
                    const auto now = [=, this] {
                        Vec onAxis = toVec(driver().getOrigin());
                        onAxis[size_t(k)] = double(valueOf(handle).getValue());
                        return place(onAxis + axis((k + side) % 3, sign * out));
                    };
                    const Vec place = now();
                    found.push_back({place, now, [=](double way) { return place + along * way; }, 6.0});
                }
            }
        }
        return found;
    }
};
