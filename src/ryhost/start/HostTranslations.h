#pragma once

#include <QLocale>
#include <QStringList>

#include <memory>
#include <vector>

class QTranslator;

/// The texts of the program in the language of the person while this lives. Whatever shows texts is made after it.
class HostTranslations
{
public:
    /// Of the files of a folder, qtbase_LANGUAGE.qm for the texts of Qt, else those that Qt came with, and
    /// ryhost_LANGUAGE.qm for all others, plug-ins included. Without a file texts stay as they are.
    HostTranslations(const QString &folder, const QLocale &locale);
    ~HostTranslations();

    /// NAME_LANGUAGE.qm of a folder for the first of the languages ("de-AT") that has one, "de_AT" before "de". Empty
    /// where there is none, and where English, which the program speaks by itself, comes first.
    static QString findFile(const QString &folder, const QString &name, const QStringList &languages);

private:
    void install(const QString &file);

    std::vector<std::unique_ptr<QTranslator>> m_translators;
};
