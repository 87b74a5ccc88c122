#include "rycore/scene/clips/RyClipPlayer.h"

#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"

#include <algorithm>
#include <cmath>

RyClipPlayer::Aside::Aside(const RyScene &scene) : m_player(*scene.getClipPlayer())
{
    if (m_player.m_asides++ == 0)
        m_player.takeMaps();
}

RyClipPlayer::Aside::~Aside()
{
    if (--m_player.m_asides == 0)
        m_player.giveMaps();
}

RyClipPlayer::RyClipPlayer(RyScene &scene) : m_scene(scene)
{
    constexpr int MillisecondsPerTick = 16;
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(MillisecondsPerTick);
    connect(&m_timer, &QTimer::timeout, this, &RyClipPlayer::advance);
    connect(&scene, &RyScene::nodeRemoved, this, [this](const RyNode *node) {
        const auto isNode = [node](const auto &map) { return map.first == node; };
        if (std::any_of(m_frame.maps.begin(), m_frame.maps.end(), isNode))
            stop();
    });
    connect(&scene, &RyScene::originChanged, this, [this] {
        const RyScene::Clips clips = isShowing() ? m_scene.getClips() : RyScene::Clips();
        if (std::find(clips.begin(), clips.end(), m_clip) == clips.end())
            stop();
    });
}

RyClipPlayer::~RyClipPlayer() = default;

void RyClipPlayer::show(std::shared_ptr<const RyClip> clip, double seconds)
{
    if (!clip || clip->subjects(m_scene).empty()) {
        stop();
        return;
    }
    m_timer.stop();
    takeMaps();
    m_clip = std::move(clip);
    m_motion = m_clip->prepare(m_scene);
    m_frame = {};
    m_time = withinClip(seconds);
    connect(ryUndoStack(), &RyUndoStack::aboutToChange, this, &RyClipPlayer::makeWay, Qt::UniqueConnection);
    showFrame();
    emit shownChanged();
}

void RyClipPlayer::play()
{
    if (!isShowing() || isPlaying() || !(m_clip->length() > 0.0))
        return;
    if (m_time >= m_clip->end())
        setTime(m_clip->start());
    setPlaying(true);
}

void RyClipPlayer::pause()
{
    if (isPlaying())
        setPlaying(false);
}

void RyClipPlayer::setPlaying(bool playing)
{
    if (playing) {
        startClock();
        m_timer.start();
    } else {
        m_timer.stop();
    }
    emit shownChanged();
}

void RyClipPlayer::stop()
{
    if (!isShowing())
        return;
    if (RyUndoStack *stack = ryUndoStack())
        disconnect(stack, nullptr, this, nullptr);
    m_timer.stop();
    takeMaps();
    m_clip.reset();
    m_motion.reset();
    m_frame = {};
    m_time = 0.0;
    emit m_scene.drawnDataChanged();
    emit shownChanged();
    emit timeChanged();
}

void RyClipPlayer::setTime(double seconds)
{
    if (!isShowing())
        return;
    const double time = withinClip(seconds);
    if (time != m_time) {
        m_time = time;
        showFrame();
    }
    startClock();
}

double RyClipPlayer::withinClip(double seconds) const
{
    return std::isfinite(seconds) ? std::clamp(seconds, m_clip->start(), m_clip->end()) : m_clip->start();
}

void RyClipPlayer::setSpeed(double speed)
{
    constexpr double Slowest = 0.1, Fastest = 4.0;
    m_speed = std::clamp(speed, Slowest, Fastest);
    startClock();
}

void RyClipPlayer::startClock()
{
    m_clockStart = m_time;
    m_clock.start();
}

void RyClipPlayer::advance()
{
    constexpr double NanosecondsPerSecond = 1e9;
    double time = m_clockStart + m_speed * double(m_clock.nsecsElapsed()) / NanosecondsPerSecond;
    const bool isOver = time >= m_clip->end() && !m_loops;
    if (isOver)
        time = m_clip->end();
    else if (time >= m_clip->end())
        time = m_clip->start() + std::fmod(time - m_clip->start(), m_clip->length());
    m_time = time;
    if (isOver)
        m_timer.stop();
    showFrame();
    if (isOver)
        emit shownChanged();
}

void RyClipPlayer::showFrame()
{
    m_motion->evaluate(m_time, m_frame);
    giveMaps();
    emit m_scene.drawnDataChanged();
    emit timeChanged();
}

void RyClipPlayer::giveMaps()
{
    if (m_asides > 0)
        return;
    for (const auto &[node, map] : m_frame.maps)
        node->setPlayedMap(&map);
    for (const auto &[morph, value] : m_frame.morphs) {
        if (morph)
            morph->setPlayedValue(value);
    }
}

void RyClipPlayer::takeMaps()
{
    for (const auto &[node, map] : m_frame.maps)
        node->setPlayedMap(nullptr);
    for (const auto &[morph, value] : m_frame.morphs) {
        if (morph)
            morph->setPlayedValue(std::nullopt);
    }
}

void RyClipPlayer::makeWay()
{
    if (s_stays == 0)
        stop();
}
