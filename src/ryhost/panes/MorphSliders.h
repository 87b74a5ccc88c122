#pragma once

#include <QPointer>
#include <QWidget>

#include <vector>

class QLabel;
class QLineEdit;
class QVBoxLayout;
class RyFloatProperty;
class RyFloatPropertyWgt;
class RyNode;

/// A slider for each morph of a node, with a search line where there are many. Hidden without morphs.
class MorphSliders : public QWidget
{
    Q_OBJECT
public:
    explicit MorphSliders(QWidget *parent = nullptr);

    void showNode(RyNode *node);

    /// More rows than this get the search line.
    static constexpr int SearchAbove = 20;
    /// Rows at most: the search finds the others.
    static constexpr int MostRows = 100;

signals:
    void messagePosted(const QString &message);

private:
    void readNode();
    void fillRows();
    RyFloatPropertyWgt *row(size_t index);

    QPointer<RyNode> m_node;
    std::vector<QPointer<RyFloatProperty>> m_controls;
    std::vector<RyFloatPropertyWgt *> m_rows; // those that are not needed are hidden
    QLineEdit *m_search;
    QLabel *m_rest;
    QVBoxLayout *m_column;
};
