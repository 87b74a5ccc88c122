#include "ryhost/panes/ClipBar.h"

#include "rycore/scene/clips/RyClipPlayer.h"
#include "ryhost/commands/menuEntries.h"
#include "ryhost/look/HostIcons.h"

#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>

#include <algorithm>
#include <cmath>

ClipBar::ClipBar(RyClipPlayer *player, QWidget *parent)
    : QWidget(parent), m_player(player), m_slider(new QSlider(Qt::Horizontal, this)), m_frame(new QSpinBox(this)),
      m_last(new QLabel(this)), m_speed(new QComboBox(this))
{
    setObjectName(QStringLiteral("ClipBar"));
    m_play = addCommand("ClipPlay", tr("&Play Clip"), tr("Plays the clip, or holds it"), QStringLiteral("Ctrl+Space"),
                        "play");
    m_stop = addCommand("ClipStop", tr("Put Clip &Away"), tr("Shows the pose again instead of the clip"),
                        QStringLiteral("Ctrl+Shift+Space"), "stop");
    m_previous = addCommand("ClipPreviousFrame", tr("Pre&vious Frame"), tr("One frame back"), QStringLiteral("Ctrl+,"),
                            "previous-frame");
    m_next =
        addCommand("ClipNextFrame", tr("&Next Frame"), tr("One frame ahead"), QStringLiteral("Ctrl+."), "next-frame");
    m_loop = addCommand("ClipLoop", tr("&Loop Clip"), tr("Starts the clip again when it ends"), QString(), "loop");
    m_loop->setCheckable(true);
    m_loop->setChecked(true);
    player->setLoop(true);
    connect(m_play, &QAction::triggered, this, &ClipBar::playOrPause);
    connect(m_stop, &QAction::triggered, player, &RyClipPlayer::stop);
    connect(m_previous, &QAction::triggered, this, [this] { stepBy(-1); });
    connect(m_next, &QAction::triggered, this, [this] { stepBy(1); });
    connect(m_loop, &QAction::toggled, player, &RyClipPlayer::setLoop);
    makeFrames();
    makeSpeeds();

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    for (QAction *command : {m_previous, m_play, m_next, m_stop, m_loop}) {
        auto *button = new QToolButton(this);
        button->setObjectName(command->objectName() + QStringLiteral("Btn"));
        button->setDefaultAction(command);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        buttons->addWidget(button);
    }
    buttons->addStretch();
    buttons->addWidget(m_speed);
    auto *frames = new QHBoxLayout;
    frames->setSpacing(4);
    frames->addWidget(m_slider, 1);
    frames->addWidget(m_frame);
    frames->addWidget(m_last);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 4);
    rows->setSpacing(2);
    rows->addLayout(buttons);
    rows->addLayout(frames);

    connect(player, &RyClipPlayer::shownChanged, this, &ClipBar::showState);
    connect(player, &RyClipPlayer::timeChanged, this, &ClipBar::showTime);
    showState();
}

QAction *ClipBar::addCommand(const char *objectName, const QString &text, const QString &tip, const QString &keys,
                             const char *icon)
{
    auto *command = new QAction(HostIcons::icon(QString::fromLatin1(icon)), text, this);
    command->setObjectName(QString::fromLatin1(objectName));
    command->setShortcut(QKeySequence(keys));
    const QString shown = command->shortcut().toString(QKeySequence::NativeText);
    command->setData(shown.isEmpty() ? tip : tr("%1 (%2)").arg(tip, shown));
    setAvailable(command, true, QString());
    m_commands.append(command);
    return command;
}

/// What an available command does stands in its data.
void ClipBar::setAvailable(QAction *command, bool onOff, const QString &reason)
{
    setMenuEntryAvailable(command, onOff, reason, command->data().toString());
}

void ClipBar::makeFrames()
{
    m_slider->setObjectName(QStringLiteral("ClipTimeSlider"));
    m_slider->setAccessibleName(tr("Time of the clip"));
    m_frame->setObjectName(QStringLiteral("ClipFrameFld"));
    m_frame->setAccessibleName(tr("Frame"));
    m_frame->setAlignment(Qt::AlignRight);
    m_frame->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_frame->setToolTip(tr("Frame, of %1 a second").arg(RyClip::FramesPerSecond));
    m_last->setObjectName(QStringLiteral("ClipLastFrame"));
    connect(m_slider, &QSlider::valueChanged, this, &ClipBar::goTo);
    connect(m_frame, QOverload<int>::of(&QSpinBox::valueChanged), this, &ClipBar::goTo);
}

void ClipBar::makeSpeeds()
{
    m_speed->setObjectName(QStringLiteral("ClipSpeedCmb"));
    m_speed->setAccessibleName(tr("Speed of the clip"));
    m_speed->view()->setAccessibleName(m_speed->accessibleName());
    m_speed->setToolTip(tr("How fast the clip plays"));
    for (const double speed : {0.1, 0.25, 0.5, 1.0, 2.0, 4.0})
        m_speed->addItem(tr("%1 x").arg(speed), speed);
    m_speed->setCurrentIndex(m_speed->findData(m_player->speed()));
    connect(m_speed, QOverload<int>::of(&QComboBox::currentIndexChanged), m_player.data(),
            [this](int index) { m_player->setSpeed(m_speed->itemData(index).toDouble()); });
}

void ClipBar::setHasClips(bool has)
{
    m_hasClips = has;
    showState();
}

void ClipBar::playOrPause()
{
    if (!m_player->isShowing())
        emit clipWanted();
    else if (m_player->isPlaying())
        m_player->pause();
    else
        m_player->play();
}

void ClipBar::stepBy(int frames)
{
    m_player->pause();
    goTo(shownFrame() + frames);
}

void ClipBar::goTo(int frame)
{
    if (m_player->isShowing())
        m_player->setTime(m_player->clip()->secondsOf(frame));
}

int ClipBar::shownFrame() const
{
    const RyClip &clip = *m_player->clip();
    const int last = clip.lastFrame();
    return m_player->time() >= clip.end() ? last : qRound(std::min(clip.frameOf(m_player->time()), double(last)));
}

void ClipBar::showState()
{
    const bool isShowing = m_player && m_player->isShowing();
    const bool isPlaying = isShowing && m_player->isPlaying();
    m_play->setText(isPlaying ? tr("&Hold Clip") : tr("&Play Clip"));
    m_play->setIcon(HostIcons::icon(isPlaying ? QStringLiteral("pause") : QStringLiteral("play")));
    setAvailable(m_play, isShowing || m_hasClips, tr("There is no clip in the scene."));
    for (QAction *command : {m_stop, m_previous, m_next})
        setAvailable(command, isShowing, tr("No clip shows."));
    for (QWidget *each : {static_cast<QWidget *>(m_slider), static_cast<QWidget *>(m_frame)})
        each->setEnabled(isShowing);
    const int last = isShowing ? m_player->clip()->lastFrame() : 0;
    const QSignalBlocker noSlider(m_slider), noFrame(m_frame);
    m_slider->setRange(0, last);
    m_frame->setRange(0, last);
    m_last->setText(tr("/ %1").arg(last));
    showTime();
}

void ClipBar::showTime()
{
    const int frame = m_player && m_player->isShowing() ? shownFrame() : 0;
    const QSignalBlocker noSlider(m_slider), noFrame(m_frame);
    m_slider->setValue(frame);
    m_frame->setValue(frame);
}
