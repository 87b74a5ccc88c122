#include "ryhost/window/GuideWindow.h"

#include "rycore/app/RyApp.h"

#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QTextBrowser>
#include <QVBoxLayout>

QString GuideWindow::guidePath()
{
    for (const char *place : {"/docs/guide.md", "/../docs/guide.md"}) {
        const QFileInfo file(RyApp::getHomePath() + QString::fromLatin1(place));
        if (file.exists())
            return file.absoluteFilePath();
    }
    return {};
}

void GuideWindow::open(QWidget *parent)
{
    const QString path = guidePath();
    if (path.isEmpty()) {
        QMessageBox::information(
            parent, tr("Guide"),
            tr("The guide is not installed: there is no docs/guide.md near %1.").arg(RyApp::getHomePath()));
        return;
    }
    auto *window = parent->findChild<GuideWindow *>();
    if (!window)
        window = new GuideWindow(path, parent);
    window->show();
    window->raise();
    window->activateWindow();
}

GuideWindow::GuideWindow(const QString &path, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("GuideWindow"));
    setWindowTitle(tr("Guide"));
    resize(820, 760);
    auto *text = new QTextBrowser(this);
    text->setObjectName(QStringLiteral("GuideText"));
    text->setOpenExternalLinks(true);
    text->setSearchPaths({QFileInfo(path).absolutePath()});
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        text->setMarkdown(QString::fromUtf8(file.readAll()));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text);
}
