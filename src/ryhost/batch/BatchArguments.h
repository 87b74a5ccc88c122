#pragma once

#include <QList>
#include <QPair>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

/// One verb of a batch run with what belongs to it.
struct BatchStep
{
    enum Verb { Unit, Merge, Select, Property, Pose, Clip, Undo, Redo, Save, Screenshot, Dump, Report, Script, Run };
    Verb verb = Undo;
    QString value;                          // as written; empty where the verb takes none
    double number = 0.0;                    // Unit
    std::optional<double> time;             // Clip: seconds
    bool jointsOnly = false;                // Save
    QString view = QStringLiteral("front"); // Screenshot
    QSize size{1280, 900};                  // Screenshot
    QList<QPair<QString, QString>> fields;  // Run, Script: object name and value
    QList<QPair<QString, QString>> answers; // Run, Script: title and button
};

/// `--batch FILE [verb...]`: verbs run from left to right and may repeat. Everything is checked before anything runs.
class BatchArguments
{
public:
    /// `arguments` without the program's name. False with a message on wrong use.
    bool parse(const QStringList &arguments, QString *error);
    /// Whether a batch run knows the word, an option of a verb included.
    static bool isKnownVerb(const QString &name);

    QString file;
    QList<BatchStep> steps;

private:
    bool checkUnits(QString *error) const;
    bool parseVerb(const QStringList &arguments, int &at, QString *error);
    bool parsePictureOption(const QString &name, const QString &value, QString *error);
    bool parseTime(const QString &value, QString *error);
    bool parseDialogOption(const QString &name, const QString &value, QString *error);
};
