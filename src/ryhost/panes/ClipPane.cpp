#include "ryhost/panes/ClipPane.h"

#include "rycore/scene/RyScene.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "ryhost/panes/ClipBar.h"
#include "ryhost/panes/ClipList.h"

#include <QVBoxLayout>

ClipPane::ClipPane(RyScene *scene, QWidget *parent)
    : QWidget(parent), m_scene(scene), m_list(new ClipList(scene, this)),
      m_bar(new ClipBar(scene->getClipPlayer(), this))
{
    setObjectName(QStringLiteral("ClipPane"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_bar);
    connect(m_list, &ClipList::clipChosen, this, &ClipPane::choose);
    connect(m_list, &ClipList::escaped, scene->getClipPlayer(), &RyClipPlayer::stop);
    connect(m_bar, &ClipBar::clipWanted, this, [this] { choose(m_list->current()); });
    const auto follow = [this] {
        m_bar->setHasClips(!m_list->isEmpty());
        setVisible(!m_list->isEmpty());
    };
    connect(m_list, &ClipList::emptyChanged, this, follow);
    follow();
}

/// Another clip plays from its start, the one that shows is held or goes on.
void ClipPane::choose(const std::shared_ptr<const RyClip> &clip)
{
    RyClipPlayer *player = m_scene ? m_scene->getClipPlayer() : nullptr;
    if (!player || !clip)
        return;
    if (player->clip() == clip && player->isPlaying()) {
        player->pause();
        return;
    }
    if (player->clip() != clip) {
        player->show(clip, clip->start());
        emit messagePosted(
            tr("Clip %1 shows instead of the pose, which stays as it is. An edit, or a press on a handle, "
               "puts the clip away.")
                .arg(clip->name()));
    }
    player->play();
}
