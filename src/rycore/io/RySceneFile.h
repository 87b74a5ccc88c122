#pragma once

#include "rycore/io/RyFigureFits.h"

#include <QString>
#include <QStringList>

#include <functional>

class RyScene;

/// Opens and saves scenes; the format goes by the ending: .glb, .gltf, .obj. FBX, Collada and BVH (.fbx, .dae, .bvh)
/// are opened only: they become scenes that no file holds yet, which count as unsaved, and are saved as glTF.
class RySceneFile
{
public:
    struct Options
    {
        double unit = 0.0;  ///< centimetres per file unit; 0: found from the file
        bool merge = false; ///< add to the scene instead of replacing it
        /// Of a foreign file, which may take long: told often what is done, from 0 to 1; false cancels.
        std::function<bool(double done)> progress;
    };

    enum Purpose {
        Save,
        Copy,   ///< the scene counts as saved or unsaved as before
        Export, ///< a copy whose extras say nothing of ours, for other programs
    };

    struct SaveOptions
    {
        Purpose purpose = Save;
        /// Clips are written as they were, and say the old rest of joints that were edited.
        bool jointsOnly = false;
        /// Told of the fits of parametric figures, which may take long.
        RyFigureFits::Progress progress;
        /// Gets how well they fit.
        std::vector<RyFigureFits::Fit> *fits = nullptr;
        /// Gets what an export leaves out, for people; see `RyOwnExtras::takeOut`.
        QStringList *withoutExtras = nullptr;
    };

    /// Reads the whole file before the scene is touched: on refusal the scene stays as it was, and the message names
    /// the file and the reason. A scene that was replaced starts with an empty undo history.
    static bool open(RyScene *scene, const QString &path, QString *error, QStringList *messages = nullptr);
    static bool open(RyScene *scene, const QString &path, const Options &options, QString *error,
                     QStringList *messages = nullptr);
    /// Leaves an empty scene without a file, which counts as saved and starts with an empty undo history.
    static void close(RyScene *scene);
    /// Safe: the old file stays when anything fails. Marks the undo stack clean, unless `losses` gets what the format
    /// could hold and was left out all the same. What it cannot hold is a message.
    static bool save(RyScene *scene, const QString &path, QString *error, QStringList *messages = nullptr,
                     QStringList *losses = nullptr);
    static bool save(RyScene *scene, const QString &path, const SaveOptions &options, QString *error,
                     QStringList *messages = nullptr, QStringList *losses = nullptr);
    /// As a new glTF file from the scene alone, without what the file it came from held besides.
    static bool saveWithoutSource(RyScene *scene, const QString &path, QString *error, QStringList *messages = nullptr);

    static QStringList readableEndings();
    /// Whether a file of that name can be opened and not be saved.
    static bool isForeign(const QString &path);
    static QStringList writableEndings();
};
