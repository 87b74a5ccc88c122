// plot_ramps FOLDER: writes the pictures of docs/parametric-joints.md into the folder.
#include "RampPlot.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyBendZone.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/parametric/RyLegacyParamZones.h"
#include "rycore/parametric/RyLegacySphereZone.h"

#include <QGuiApplication>

#include <cmath>
#include <cstdio>

namespace {

constexpr double Degree = RyFastMath::RadiansPerDegree;
const QColor First(30, 100, 200);
const QColor Second(205, 90, 20);
const QColor Third(90, 150, 60);

/// The zones of a parameter about X of a bone along X.
RyLegacyParamZones zonesOf(int type, unsigned flags, std::vector<float> values)
{
    RyLegacyRig rig;
    rig.bones.emplace_back();
    RyLegacyRig::Param param;
    param.type = type;
    param.flags = flags;
    param.driver = param.bone = 0;
    param.values = std::move(values);
    return RyLegacyParamZones(rig, param);
}

std::function<double(double)> alongX(const RyLegacyParamZones &zones)
{
    return [zones](double x) {
        const double p[3] = {x, 1, 1};
        return zones.weight(p);
    };
}

RampPlot bendPlot()
{
    const auto rayAt = [](double degrees, double radius) {
        const double angles[4] = {90 * Degree, 45 * Degree, -45 * Degree, -90 * Degree};
        const RyLegacyBendZone zone(2, angles, 30);
        const double y[3] = {radius * std::cos(degrees * Degree), radius * std::sin(degrees * Degree), 0};
        return zone.at(y);
    };
    RampPlot plot("angle about the axis, degrees", -180, 180, 45);
    plot.addCurve("weight", First, [=](double x) { return RyLegacyBendZone::weight(rayAt(x, 4)); });
    plot.addCurve("near the axis line", Second, [=](double x) { return RyLegacyBendZone::weight(rayAt(x, 0.6)); });
    plot.addCurve("bulge", Third, [=](double x) { return RyLegacyBendZone::bulge(rayAt(x, 4)); });
    return plot;
}

RampPlot spherePlot()
{
    const auto weights = [](float dynamicRadius, float staticRadius) {
        RyMatrix4 dynamicMatrix;
        dynamicMatrix.scale(dynamicRadius);
        RyMatrix4 staticMatrix;
        staticMatrix.scale(staticRadius);
        const RyLegacySphereZone zone(dynamicMatrix, staticMatrix);
        return [zone](double x) {
            const double p[3] = {x, 0, 0};
            return zone.weight(p);
        };
    };
    RampPlot plot("distance from the common centre, cm", 0, 14, 2);
    plot.addCurve("radii 4 and 12", First, weights(4, 12));
    plot.addCurve("4 and 6", Second, weights(4, 6));
    plot.addCurve("both 9", Third, weights(9, 9));
    return plot;
}

RampPlot twistPlot()
{
    RampPlot plot("coordinate on the axis, cm", 0, 30, 5);
    plot.addCurve("start 5, end 25", First,
                  alongX(zonesOf(RyLegacyJointParam::Twist, RyLegacyJointParam::ApplyBlend, {5, 25})));
    plot.addCurve("start 20, end 10", Second,
                  alongX(zonesOf(RyLegacyJointParam::Twist, RyLegacyJointParam::ApplyBlend, {20, 10})));
    return plot;
}

RampPlot smoothPlot()
{
    using Param = RyLegacyJointParam;
    const std::vector<float> zones{22, 28, 8, 2};
    RampPlot plot("coordinate on the axis, cm", 0, 30, 5);
    plot.addCurve("high 22 to 28, low 8 to 2", First,
                  alongX(zonesOf(Param::SmoothScale, Param::ApplyZones | Param::HighSide | Param::LowSide, zones)));
    const RyLegacyParamZones high =
        zonesOf(Param::SmoothScale, Param::ApplyZones | Param::HighSide, {10, 20, -24140.16f, -24384});
    plot.addCurve("high 10 to 20", Second, alongX(high));
    plot.addCurve("the child's share", Third, [=](double x) { return 1 - alongX(high)(x); });
    return plot;
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: plot_ramps FOLDER\n");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const std::pair<const char *, RampPlot> plots[] = {{"ramp-bend", bendPlot()},
                                                       {"ramp-spheres", spherePlot()},
                                                       {"ramp-twist", twistPlot()},
                                                       {"ramp-smooth", smoothPlot()}};
    for (const auto &[name, plot] : plots) {
        if (plot.save(folder + '/' + name + ".png"))
            continue;
        std::fprintf(stderr, "%s cannot be written\n", name);
        return 1;
    }
    return 0;
}
