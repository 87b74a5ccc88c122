#include "ryhost/panes/MorphSliders.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "ryhost/look/clearButton.h"

#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>

MorphSliders::MorphSliders(QWidget *parent)
    : QWidget(parent), m_search(new QLineEdit(this)), m_rest(new QLabel(this)), m_column(new QVBoxLayout)
{
    setObjectName(QStringLiteral("MorphSliders"));
    m_search->setObjectName(QStringLiteral("ParametersSearchFld"));
    m_search->setPlaceholderText(tr("Search morphs"));
    giveClearButton(m_search);
    m_rest->setObjectName(QStringLiteral("MorphsRest"));
    m_rest->setWordWrap(true);
    auto *title = new QLabel(tr("Morphs"), this);
    title->setObjectName(QStringLiteral("MorphsTitle"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->setSpacing(3);
    layout->addWidget(title);
    layout->addWidget(m_search);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(3);
    layout->addLayout(m_column);
    layout->addWidget(m_rest);
    connect(m_search, &QLineEdit::textChanged, this, &MorphSliders::fillRows);
    readNode();
}

void MorphSliders::showNode(RyNode *node)
{
    if (m_node)
        disconnect(m_node, nullptr, this, nullptr);
    if (node != m_node)
        m_search->clear();
    m_node = node;
    if (node) {
        connect(node, &RyNode::morphsChanged, this, &MorphSliders::readNode);
        connect(node, &QObject::destroyed, this, [this] { showNode(nullptr); });
    }
    readNode();
}

void MorphSliders::readNode()
{
    m_controls.clear();
    const RyPropertyGroup *group = m_node ? m_node->getPropertyGroups()->getFirstChild() : nullptr;
    for (; group; group = group->getNextSibling()) {
        for (int i = 0; group->getName() == QLatin1String(RyObject::MorphGroup) && i < group->getNumProperties(); ++i)
            m_controls.emplace_back(qobject_cast<RyFloatProperty *>(group->getProperty(i)));
    }
    setVisible(!m_controls.empty());
    m_search->setVisible(int(m_controls.size()) > SearchAbove);
    fillRows();
}

RyFloatPropertyWgt *MorphSliders::row(size_t index)
{
    while (m_rows.size() <= index) {
        auto *widget = new RyFloatPropertyWgt(this);
        widget->setSliderRange(0, 1);
        widget->setStep(0.01f);
        connect(widget, &RyFloatPropertyWgt::messagePosted, this, &MorphSliders::messagePosted);
        m_column->addWidget(widget);
        m_rows.push_back(widget);
    }
    return m_rows[index];
}

void MorphSliders::fillRows()
{
    const QString wanted = m_search->isHidden() ? QString() : m_search->text().trimmed();
    size_t shown = 0;
    size_t found = 0;
    for (const QPointer<RyFloatProperty> &control : m_controls) {
        if (!control || !control->getLabel().contains(wanted, Qt::CaseInsensitive))
            continue;
        if (++found > size_t(MostRows))
            continue;
        RyFloatPropertyWgt *widget = row(shown++);
        widget->clearProperties();
        widget->addProperty(control);
        widget->setObjectName(QStringLiteral("Morph ") + control->getName());
        widget->show();
    }
    for (size_t i = shown; i < m_rows.size(); ++i) {
        m_rows[i]->hide();
        m_rows[i]->clearProperties();
        m_rows[i]->setObjectName(QString());
    }
    m_rest->setVisible(found > shown || (found == 0 && !wanted.isEmpty()));
    m_rest->setText(found == 0 ? tr("No morph is called so.")
                               : tr("%1 of %2 are shown. Search for the others.").arg(shown).arg(found));
}
