#include "ryhost/recovery/AutosaveSettings.h"

#include "rycore/base/RyAppSettings.h"

#include <QDir>

#include <unistd.h>

namespace {

const char *const SettingsGroup = "Autosave";
const char *const FormerKey = "FormerFolders";

RyAppSettings settings()
{
    return RyAppSettings(QString::fromLatin1(SettingsGroup));
}

QStringList formerFolders()
{
    QStringList folders = settings().getStringListValue(QLatin1String(FormerKey));
    folders.removeDuplicates();
    return folders;
}

} // namespace

AutosaveSettings &AutosaveSettings::global()
{
    static AutosaveSettings settings;
    return settings;
}

bool AutosaveSettings::isOn() const
{
    return settings().getBoolValue(QStringLiteral("On"), true);
}

QString AutosaveSettings::chosenFolder() const
{
    return settings().getStringValue(QStringLiteral("Folder"), QString());
}

void AutosaveSettings::set(bool isOn, const QString &folder)
{
    // What a crash left there may still be waiting.
    const QString former = chosenFolder();
    if (!former.isEmpty() && former != folder)
        settings().setStringListValue(QLatin1String(FormerKey), formerFolders() << QDir(former).absolutePath());
    settings().setBoolValue(QStringLiteral("On"), isOn);
    settings().setStringValue(QStringLiteral("Folder"), folder);
    emit changed();
}

QString AutosaveSettings::ordinaryFolder()
{
    return RyAppSettings::settingsPath() + QStringLiteral("/autosave");
}

QStringList AutosaveSettings::folders() const
{
    QStringList folders;
    if (!chosenFolder().isEmpty())
        folders.append(QDir(chosenFolder()).absolutePath());
    folders.append(QDir(ordinaryFolder()).absolutePath());
    // The name alone would let another user put something there for us to open; RecoverySession asks for the owner.
    folders.append(QStringLiteral("%1/ryhost-autosave-%2").arg(QDir::tempPath()).arg(::getuid()));
    folders.removeDuplicates();
    return folders;
}

QStringList AutosaveSettings::searchedFolders() const
{
    QStringList all = folders() + formerFolders();
    all.removeDuplicates();
    return all;
}

void AutosaveSettings::setState(const QString &state)
{
    if (m_state == state)
        return;
    m_state = state;
    emit stateChanged();
}
