#include "ryhost/start/HostTranslations.h"

#include "rycore/base/RyMessageLog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTranslator>

HostTranslations::HostTranslations(const QString &folder, const QLocale &locale)
{
    const QStringList languages = locale.uiLanguages();
    const QString ofQt = QStringLiteral("qtbase");
    const QString here = findFile(folder, ofQt, languages);
    install(here.isEmpty() ? findFile(QLibraryInfo::location(QLibraryInfo::TranslationsPath), ofQt, languages) : here);
    install(findFile(folder, QStringLiteral("ryhost"), languages));
}

HostTranslations::~HostTranslations() = default;

QString HostTranslations::findFile(const QString &folder, const QString &name, const QStringList &languages)
{
    for (QString language : languages) {
        language.replace(QLatin1Char('-'), QLatin1Char('_'));
        const bool isEnglish = QLocale(language).language() == QLocale::English;
        for (; !language.isEmpty(); language = language.section(QLatin1Char('_'), 0, -2)) {
            const QString file = QDir(folder).filePath(QStringLiteral("%1_%2.qm").arg(name, language));
            if (QFileInfo(file).isFile())
                return file;
        }
        if (isEnglish)
            break;
    }
    return {};
}

void HostTranslations::install(const QString &file)
{
    if (file.isEmpty())
        return;
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(file)) {
        RyMessageLog::global().warning(
            QStringLiteral("%1 holds no translation that can be read.").arg(QDir::toNativeSeparators(file)));
        return;
    }
    QCoreApplication::installTranslator(translator.get());
    m_translators.push_back(std::move(translator));
}
