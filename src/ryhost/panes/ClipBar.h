#pragma once

#include <QPointer>
#include <QWidget>

class QAction;
class QComboBox;
class QLabel;
class QSlider;
class QSpinBox;
class RyClipPlayer;

/// Plays and stops the clip that shows, and moves through its frames. The buttons stand for actions, which have keys
/// and go into menus as well.
class ClipBar : public QWidget
{
    Q_OBJECT
public:
    explicit ClipBar(RyClipPlayer *player, QWidget *parent = nullptr);

    /// In the order of a menu.
    QList<QAction *> commands() const { return m_commands; }
    /// Whether there is a clip to play while none shows.
    void setHasClips(bool has);

signals:
    /// Play was asked for while no clip shows.
    void clipWanted();

private:
    QAction *addCommand(const char *objectName, const QString &text, const QString &tip, const QString &keys,
                        const char *icon);
    static void setAvailable(QAction *command, bool onOff, const QString &reason);
    void makeFrames();
    void makeSpeeds();
    void playOrPause();
    void stepBy(int frames);
    void goTo(int frame);
    void showState();
    void showTime();
    int shownFrame() const;

    QPointer<RyClipPlayer> m_player;
    QList<QAction *> m_commands;
    QAction *m_play;
    QAction *m_stop;
    QAction *m_previous;
    QAction *m_next;
    QAction *m_loop;
    QSlider *m_slider;
    QSpinBox *m_frame;
    QLabel *m_last;
    QComboBox *m_speed;
    bool m_hasClips = false;
};
