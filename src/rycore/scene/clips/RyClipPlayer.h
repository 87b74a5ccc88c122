#pragma once

#include "rycore/scene/clips/RyClip.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Shows one clip in a scene, at a time or running. Nodes that it moves stand where it says instead of where their pose
/// puts them, and morphs show its values; poses and values stay, and nothing is recorded.
///
/// It stands aside for every edit: the clip goes before a hold opens, a value changes, steps are undone or redone. It
/// also goes with what it moves, and with the file that it came from. Selection, cameras, tools and visibility leave
/// it alone.
class RyClipPlayer : public QObject
{
    Q_OBJECT
public:
    /// While one lives changes leave the clip where it is: what changes is no part of what the clip shows.
    class Stay
    {
    public:
        Stay() { ++s_stays; }
        ~Stay() { --s_stays; }
        Stay(const Stay &) = delete;
        Stay &operator=(const Stay &) = delete;
    };
    /// While one lives nodes stand where their poses put them, for whoever reads the scene and not the clip. Nothing
    /// is announced but the values that morphs show.
    class Aside
    {
    public:
        explicit Aside(const RyScene &scene);
        ~Aside();
        Aside(const Aside &) = delete;
        Aside &operator=(const Aside &) = delete;

    private:
        RyClipPlayer &m_player;
    };

    explicit RyClipPlayer(RyScene &scene);
    ~RyClipPlayer() override;

    /// Shows the clip standing still, instead of another one. None that has nothing in the scene.
    void show(std::shared_ptr<const RyClip> clip, double seconds);
    /// From the time that is shown; from the start where that is the end. A clip without length stands still.
    void play();
    void pause();
    /// Puts the clip away.
    void stop();
    /// Within the clip; it goes on from there when it plays.
    void setTime(double seconds);
    void setLoop(bool loop) { m_loops = loop; }
    /// A tenth to four times.
    void setSpeed(double speed);

    bool isShowing() const { return m_clip != nullptr; }
    bool isPlaying() const { return m_timer.isActive(); }
    /// Null when none shows.
    const std::shared_ptr<const RyClip> &clip() const { return m_clip; }
    double time() const { return m_time; }
    bool loops() const { return m_loops; }
    double speed() const { return m_speed; }

signals:
    /// The clip, none, or whether it plays.
    void shownChanged();
    void timeChanged();

private:
    /// The start for what is no number.
    double withinClip(double seconds) const;
    void advance();
    void startClock();
    void setPlaying(bool playing);
    void showFrame();
    void giveMaps();
    void takeMaps();
    void makeWay();

    static inline int s_stays = 0;

    RyScene &m_scene;
    std::shared_ptr<const RyClip> m_clip;
    std::unique_ptr<RyClipMotion> m_motion;
    RyClipFrame m_frame;
    int m_asides = 0;
    QTimer m_timer;
    QElapsedTimer m_clock; // runs since `m_clockStart` was shown
    double m_clockStart = 0.0;
    double m_time = 0.0;
    double m_speed = 1.0;
    bool m_loops = false;
};
