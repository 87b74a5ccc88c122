#include "recovery/AutosaveStage.h"

#include "support/RyTest.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/snapshot/RySnapshotStore.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/recovery/AutosaveSettings.h"

#include <QDir>
#include <QFileInfo>

AutosaveStage::AutosaveStage() : m_temporary(qgetenv("TMPDIR")) {}

AutosaveStage::~AutosaveStage()
{
    close();
}

bool AutosaveStage::open(const QString &file)
{
    close();
    qputenv("TMPDIR", QByteArray());
    m_folder = std::make_unique<QTemporaryDir>();
    QDir().mkpath(path(QStringLiteral("tmp")));
    qputenv("TMPDIR", path(QStringLiteral("tmp")).toLocal8Bit());
    RyAppSettings::setSettingsPath(settings());
    m_files = std::make_unique<HostFiles>(ryScene(), nullptr);
    m_messages.clear();
    const QString copy = path(QFileInfo(file.isEmpty() ? sample("mannequin.glb") : file).fileName());
    return m_folder->isValid() && QFile::copy(file.isEmpty() ? sample("mannequin.glb") : file, copy) &&
           QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner) && m_files->openPath(copy);
}

void AutosaveStage::start()
{
    m_autosave = std::make_unique<Autosave>(*ryScene(), *m_files);
    QObject::connect(m_autosave.get(), &Autosave::messagePosted,
                     [this](const QString &message) { m_messages.append(message); });
}

void AutosaveStage::reset()
{
    m_autosave.reset();
    ryScene()->clear();
    ryUndoStack()->clearAll();
    ryUndoStack()->setClean();
    m_files = std::make_unique<HostFiles>(ryScene(), nullptr);
    start();
}

void AutosaveStage::close()
{
    m_autosave.reset();
    m_files.reset();
    ryScene()->clear();
    ryUndoStack()->clearAll();
    ryUndoStack()->setClean();
    qputenv("TMPDIR", m_temporary);
}

QStringList AutosaveStage::kept() const
{
    QStringList found;
    for (const QString &parent : AutosaveSettings::global().searchedFolders()) {
        for (const QFileInfo &each : QDir(parent).entryInfoList({QStringLiteral("session-*")}, QDir::Dirs)) {
            if (RySnapshotStore::hasSnapshot(each.filePath()))
                found.append(each.filePath());
        }
    }
    return found;
}

qint64 AutosaveStage::keptAt() const
{
    qint64 latest = 0;
    for (const QString &folder : kept())
        latest = std::max(latest, QFileInfo(folder + QStringLiteral("/snapshot")).lastModified().toMSecsSinceEpoch());
    return latest;
}

void AutosaveStage::edit()
{
    RyUndoStackHold hold;
    RyFloatProperty *value = ryScene()->getNodes().back()->getXRotControl();
    value->setValue(value->getValue() + 1.0f);
    hold.accept(QStringLiteral("Turn"));
}

QString AutosaveStage::dump()
{
    return rySceneDump(*ryScene());
}

QString AutosaveStage::sample(const char *name)
{
    return QStringLiteral(RY_SOURCE_DIR "/resources/samples/") + QLatin1String(name);
}
