#include "ryhost/menus/ScriptsMenu.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "ryhost/commands/ScriptRun.h"
#include "ryhost/commands/menuText.h"

#include <QDir>
#include <QDirIterator>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

ScriptsMenu::ScriptsMenu(RyMainWindow *window, QObject *parent)
    : QObject(parent), m_window(window), m_menu(window->menuBar()->addMenu(tr("&Scripts")))
{
    m_menu->setObjectName(QStringLiteral("ScriptsMenu"));
    connect(m_menu, &QMenu::aboutToShow, this, &ScriptsMenu::fill);
    fill();
}

void ScriptsMenu::fill()
{
    m_menu->clear();
    QAction *choose = m_menu->addAction(tr("&Run Script..."));
    choose->setStatusTip(tr("Run a script file"));
    connect(choose, &QAction::triggered, this, [this] {
        const QString path =
            QFileDialog::getOpenFileName(m_window, tr("Run Script"), RyApp::getHomePath(), tr("Scripts (*.rsx)"));
        if (!path.isEmpty())
            ScriptRun(m_window).run(path);
    });
    QStringList paths;
    QDirIterator walk(RyApp::getHomePath() + QStringLiteral("/scripts"), {QStringLiteral("*.rsx")}, QDir::Files,
                      QDirIterator::Subdirectories);
    while (walk.hasNext())
        paths.append(walk.next());
    paths.sort();
    if (!paths.isEmpty())
        m_menu->addSeparator();
    for (const QString &path : paths) {
        QAction *action = m_menu->addAction(menuTextOf(QFileInfo(path).completeBaseName()));
        action->setStatusTip(tr("Run %1; Escape stops it").arg(QDir::toNativeSeparators(path)));
        connect(action, &QAction::triggered, this, [this, path] { ScriptRun(m_window).run(path); });
    }
}
