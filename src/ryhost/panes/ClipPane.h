#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>

class ClipBar;
class ClipList;
class RyClip;
class RyScene;

/// The clips of the scene, and what plays them. Takes no room where there are none.
class ClipPane : public QWidget
{
    Q_OBJECT
public:
    explicit ClipPane(RyScene *scene, QWidget *parent = nullptr);

    ClipList *list() const { return m_list; }
    ClipBar *bar() const { return m_bar; }

signals:
    void messagePosted(const QString &message);

private:
    void choose(const std::shared_ptr<const RyClip> &clip);

    QPointer<RyScene> m_scene;
    ClipList *m_list;
    ClipBar *m_bar;
};
