#pragma once

#include <QList>
#include <QPair>
#include <QSize>
#include <QString>

#include <optional>

/// One verb of a batch run with what belongs to it.
struct BatchStep
{
    enum Verb {
        Unit,
        Merge,
        Select,
        Property,
        Pose,
        Clip,
        Undo,
        Redo,
        Save,
        SaveTo,
        Screenshot,
        Dump,
        Report,
        Script,
        Run
    };
    Verb verb = Undo;
    QString value;                          // as written; empty where the verb takes none
    double number = 0.0;                    // Unit
    std::optional<double> time;             // Clip: seconds
    bool jointsOnly = false;                // Save, SaveTo
    QString format;                         // Merge, Save of "-": an ending; empty: by the first bytes, .glb
    QString view = QStringLiteral("front"); // Screenshot
    QSize size{1280, 900};                  // Screenshot
    QList<QPair<QString, QString>> fields;  // Run, Script: object name and value
    QList<QPair<QString, QString>> answers; // Run, Script: title and button

    bool readsStandardInput() const { return value == QLatin1String("-") && (verb == Merge || verb == Script); }
    bool writesStandardOutput() const
    {
        return value == QLatin1String("-") ? verb == Save || verb == Screenshot || verb == Dump || verb == Report
                                           : value.isEmpty() && (verb == Dump || verb == Report);
    }
    /// "--run RyJEAlignNodeAction", for messages.
    QString text() const;
};
