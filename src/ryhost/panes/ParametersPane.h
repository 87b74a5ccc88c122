#pragma once

#include <QPointer>
#include <QWidget>

#include <vector>

class MorphSliders;
class QLabel;
class QPushButton;
class RyFloatPropertyWgt;
class RyNode;
class RyScene;

/// The pose of the primary node: a slider for each pose control, and a way back to rest; and those of its morphs.
class ParametersPane : public QWidget
{
    Q_OBJECT
public:
    explicit ParametersPane(RyScene *scene, QWidget *parent = nullptr);

signals:
    void messagePosted(const QString &message);

private:
    void showNode(RyNode *node);
    void restoreNode();

    QPointer<RyScene> m_scene;
    QPointer<RyNode> m_node;
    QLabel *m_title;
    QPushButton *m_restore;
    std::vector<RyFloatPropertyWgt *> m_rows;
    MorphSliders *m_morphs;
};
