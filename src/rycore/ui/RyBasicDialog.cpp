#include "rycore/ui/RyBasicDialog.h"

#include "rycore/ui/RyBasicDialogValidator.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

RyBasicDialog::RyBasicDialog(QWidget *parent)
    : QDialog(parent), m_layout(new QVBoxLayout(this)), m_buttons(new QDialogButtonBox(this)),
      m_ok(new QPushButton(tr("OK"), this)), m_apply(new QPushButton(tr("Apply"), this))
{
    auto *cancel = new QPushButton(tr("Cancel"), this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    m_buttons->setObjectName(QStringLiteral("BasicDialogButtonBox"));
    m_ok->setObjectName(QStringLiteral("BasicDialogOkBtn"));
    cancel->setObjectName(QStringLiteral("BasicDialogCancelBtn"));
    m_apply->setObjectName(QStringLiteral("BasicDialogApplyBtn"));
    m_buttons->addButton(m_ok, QDialogButtonBox::AcceptRole);
    m_buttons->addButton(cancel, QDialogButtonBox::RejectRole);
    m_buttons->addButton(m_apply, QDialogButtonBox::ApplyRole);
    for (QPushButton *button : {m_ok, cancel, m_apply})
        button->setAccessibleName(button->text());
    m_apply->setAccessibleDescription(tr("Applies the values and leaves the dialog open"));
    m_ok->setDefault(true);
    m_apply->hide();
    m_layout->setSpacing(2 * RyStandardMetrics::Margin);
    m_layout->addWidget(m_buttons);

    connect(m_buttons, &QDialogButtonBox::accepted, this, &RyBasicDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &RyBasicDialog::reject);
    connect(m_apply, &QPushButton::clicked, this, [this] { applyIfValid(); });
}

RyBasicDialog::~RyBasicDialog() = default;

void RyBasicDialog::setContentLayout(QLayout *layout)
{
    if (layout)
        m_layout->insertLayout(0, layout, 1);
}

void RyBasicDialog::setApplyVisible(bool visible)
{
    m_apply->setVisible(visible);
}

void RyBasicDialog::enableAccept(bool enable)
{
    m_ok->setEnabled(enable);
    m_apply->setEnabled(enable);
}

bool RyBasicDialog::isAcceptEnabled() const
{
    return m_ok->isEnabledTo(this);
}

void RyBasicDialog::setValidator(RyBasicDialogValidator *validator)
{
    if (validator != m_validator.get())
        m_validator.reset(validator);
}

bool RyBasicDialog::applyIfValid()
{
    if (!isAcceptEnabled() || (m_validator && !m_validator->validate(this)))
        return false;
    apply();
    return true;
}

void RyBasicDialog::accept()
{
    if (applyIfValid())
        QDialog::accept();
}

void RyBasicDialog::setVisible(bool visible)
{
    // Before the dialog looks for a widget itself: the buttons are the first in the chain.
    if (visible && !isVisible() && !focusWidget())
        focusContent();
    QDialog::setVisible(visible);
}

void RyBasicDialog::focusContent()
{
    for (QWidget *widget = nextInFocusChain(); widget != this; widget = widget->nextInFocusChain()) {
        const bool takesFocus =
            (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabledTo(this) && widget->isVisibleTo(this);
        if (takesFocus && !m_buttons->isAncestorOf(widget)) {
            widget->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}
