#pragma once

#include <QColor>
#include <QString>

#include <functional>
#include <vector>

/// A picture of some curves between 0 and 1 over one axis.
class RampPlot
{
public:
    RampPlot(const QString &axis, double from, double to, double step)
        : m_axis(axis), m_from(from), m_to(to), m_step(step)
    {}
    void addCurve(const QString &name, const QColor &color, std::function<double(double)> curve);
    /// False when the file cannot be written.
    bool save(const QString &path) const;

private:
    struct Curve
    {
        QString name;
        QColor color;
        std::function<double(double)> value;
    };
    QString m_axis;
    double m_from;
    double m_to;
    double m_step; // between the marks of the axis
    std::vector<Curve> m_curves;
};
