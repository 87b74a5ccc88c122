#include "pluginsource/RyJointTools/pane/layOutFields.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

QVBoxLayout *makeScrollingColumn(QWidget *page, const QString &areaName, const QString &contentsName)
{
    auto *area = new QScrollArea(page);
    area->setObjectName(areaName);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus); // what has the focus is scrolled into sight
    auto *contents = new QWidget(area);
    contents->setObjectName(contentsName);
    area->setWidget(contents);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(area);
    auto *column = new QVBoxLayout(contents);
    const int margin = RyStandardMetrics::Margin;
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(margin);
    return column;
}

RyFloatPropertyWgt *makeField(QWidget *parent, const RyFieldTexts &texts)
{
    auto *field = new RyFloatPropertyWgt(parent);
    field->setObjectName(texts.name + QLatin1String("Wgt"));
    field->label()->setObjectName(texts.name + QLatin1String("Lbl"));
    field->setFullLengthTextEdit(true);
    field->setSuffix(texts.suffix);
    field->setLabelText(texts.label);
    if (!texts.spoken.isEmpty())
        field->setSpokenName(texts.spoken + QLatin1Char(' ') + texts.label);
    showMessagesOf(field);
    return field;
}

void showMessagesOf(const RyFloatPropertyWgt *field)
{
    QObject::connect(field, &RyFloatPropertyWgt::messagePosted, field, [](const QString &message) {
        if (RyMainWindow *window = RyApp::getInterface())
            window->showMessage(message);
    });
}

int widestLabel(const std::vector<RyFloatPropertyWgt *> &fields)
{
    int width = 0;
    for (const RyFloatPropertyWgt *field : fields) {
        const RyScrubLabel &label = *field->label();
        width = std::max(width, label.fontMetrics().horizontalAdvance(label.fullText()));
    }
    return width;
}
