#include "demo_session/ForeignStory.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/window/HostWindow.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>

#include <cmath>
#include <cstdio>

namespace {

const QString Elbow = QStringLiteral("RightForeArm");
constexpr float Step = 1.5f; // centimetres, upwards

} // namespace

void ForeignStory::play()
{
    QElapsedTimer timer;
    timer.start();
    if (openFile() && moveElbow() && saveAndReopen())
        std::printf("from the FBX file to the saved GLB: %.0f s, pictures included\n", double(timer.elapsed()) / 1000);
}

bool ForeignStory::openFile()
{
    HostWindow &window = m_stage.window();
    QElapsedTimer timer;
    m_stage.withDialog(
        [this] {
            m_stage.chooseFromMenu({QStringLiteral("File"), QStringLiteral("Open...")});
        },
        [&](QWidget *dialog) {
            m_stage.pointer().key(dialog, QStringLiteral("ctrl+a"));
            m_stage.pointer().type(dialog, m_file);
            timer.start();
            m_stage.pointer().key(dialog, QStringLiteral("Return"));
        });
    for (int waited = 0; window.files()->path() != m_file && waited < 20000; waited += 50)
        PointerDriver::wait(50);
    if (!m_stage.check(
            window.files()->path() == m_file,
            QStringLiteral("%1 opens, in %2 s").arg(QFileInfo(m_file).fileName()).arg(timer.elapsed() / 1e3)))
        return false;
    PointerDriver::wait(300);
    m_stage.picture(QStringLiteral("fbx-opened"));
    return m_stage.check(window.isWindowModified(), QStringLiteral("it counts as not saved yet"));
}

bool ForeignStory::moveElbow()
{
    HostWindow &window = m_stage.window();
    RyNode *elbow = m_stage.node(Elbow);
    if (!elbow || !m_stage.selectInTree(elbow))
        return false;
    window.viewport()->setFocus();
    m_stage.pointer().key(window.viewport(), QStringLiteral("f"));
    PointerDriver::wait(600);
    m_stage.picture(QStringLiteral("fbx-joint"));
    const auto *number = window.findChild<QWidget *>(QStringLiteral("JointEditorOriginYWgt"));
    auto *field = number ? number->findChild<QLineEdit *>() : nullptr;
    if (!m_stage.check(field, QStringLiteral("the tool settings show the elbow's center point")))
        return false;
    m_place = std::round((elbow->getOrigin().y + Step) * 10) / 10;
    m_stage.pointer().click(field, field->rect().center());
    m_stage.pointer().key(field, QStringLiteral("ctrl+a"));
    m_stage.pointer().type(field, QString::number(double(m_place)));
    m_stage.pointer().key(field, QStringLiteral("Return"));
    PointerDriver::wait(600);
    m_stage.picture(QStringLiteral("fbx-moved"));
    return m_stage.check(std::abs(elbow->getOrigin().y - m_place) < 1e-4f,
                         QStringLiteral("the elbow stands at %1").arg(double(m_place)));
}

bool ForeignStory::saveAndReopen()
{
    HostWindow &window = m_stage.window();
    const QFileInfo file(m_file);
    const QString saved = file.dir().filePath(file.completeBaseName() + QStringLiteral(".glb"));
    QFile::remove(saved);
    QString suggested;
    m_stage.withDialog(
        [&] {
            window.viewport()->setFocus();
            m_stage.pointer().key(window.viewport(), QStringLiteral("ctrl+s"));
            PointerDriver::wait(100);
        },
        [&](QWidget *dialog) {
            if (const auto *files = qobject_cast<const QFileDialog *>(dialog))
                suggested = files->selectedFiles().value(0);
            m_stage.picture(QStringLiteral("fbx-save"));
            m_stage.pointer().key(dialog, QStringLiteral("Return"));
        });
    PointerDriver::wait(300);
    m_stage.check(suggested == saved, QStringLiteral("saving suggests %1").arg(QFileInfo(saved).fileName()));
    if (!m_stage.check(QFileInfo::exists(saved), QStringLiteral("the GLB is written")) ||
        !m_stage.check(window.files()->openPath(saved), QStringLiteral("it opens")))
        return false;
    const RyNode *elbow = m_stage.node(Elbow);
    return m_stage.check(elbow && std::abs(elbow->getOrigin().y - m_place) < 1e-3f,
                         QStringLiteral("the elbow is where it was put"));
}
