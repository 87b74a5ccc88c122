#include "rycore/ui/RyScriptForm.h"

#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyBasicDialogValidator.h"
#include "rycore/ui/RyNodeLabelValidator.h"
#include "rycore/ui/RyNodeNameValidator.h"
#include "rycore/ui/RyPlainText.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScriptContext>
#include <QStyle>
#include <QVBoxLayout>

namespace {

QString captionOf(const QLineEdit *field)
{
    return field->accessibleName().isEmpty() ? field->objectName() : field->accessibleName();
}

QValidator::State stateOf(const QLineEdit *field)
{
    QString text = field->text().trimmed();
    int position = 0;
    return field->validator()->validate(text, position);
}

} // namespace

/// Asks the script.
class RyScriptForm::Validator : public RyBasicDialogValidator
{
public:
    bool validate(RyBasicDialog *dialog) override
    {
        auto *form = static_cast<RyScriptForm *>(dialog);
        form->setMessage(QString());
        form->m_isAccepting = true;
        QScriptEngine *scripts = form->engine() ? form->engine() : RyScriptEngine::current();
        QString failure;
        const auto listening = !scripts ? QMetaObject::Connection()
                                        : connect(scripts, &QScriptEngine::signalHandlerException, form,
                                                  [&](const QScriptValue &error) { failure = error.toString(); });
        emit form->accepting();
        QObject::disconnect(listening);
        form->m_isAccepting = false;
        if (!failure.isEmpty()) {
            // Nobody knows whether the values are good.
            scripts->clearExceptions();
            form->setMessage(tr("The script cannot tell whether this is right: %1").arg(failure));
        }
        return form->getMessage().isEmpty();
    }
};

RyScriptForm::RyScriptForm(QWidget *parent)
    : RyBasicDialog(parent), m_grid(new QGridLayout), m_messageRow(new QWidget(this)),
      m_message(new QLabel(m_messageRow))
{
    setObjectName(QStringLiteral("ScriptForm"));
    setValidator(new Validator);
    m_message->setObjectName(QStringLiteral("ScriptFormMessageLbl"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    auto *icon = new QLabel(m_messageRow);
    const int iconSize = fontMetrics().height();
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(iconSize, iconSize));
    auto *messageLayout = new QHBoxLayout(m_messageRow);
    messageLayout->setContentsMargins(0, 0, 0, 0);
    messageLayout->addWidget(icon, 0, Qt::AlignTop);
    messageLayout->addWidget(m_message, 1);
    QSizePolicy keepsRoom = m_messageRow->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    m_messageRow->setSizePolicy(keepsRoom);
    m_messageRow->hide();

    m_grid->setColumnStretch(1, 1);
    auto *layout = new QVBoxLayout;
    layout->setSpacing(RyStandardMetrics::Margin);
    layout->addLayout(m_grid);
    layout->addStretch(1);
    layout->addWidget(m_messageRow);
    setContentLayout(layout);
    setMinimumWidth(fontMetrics().averageCharWidth() * 44);
}

RyScriptForm::~RyScriptForm() = default;

bool RyScriptForm::refuse(const QString &reason) const
{
    if (context())
        context()->throwError(reason);
    return false;
}

QWidget *RyScriptForm::findField(const QString &key) const
{
    for (QWidget *field : m_fields) {
        if (field->objectName() == key)
            return field;
    }
    refuse(tr("The form has no field \"%1\".").arg(key));
    return nullptr;
}

const RyScriptForm::Rule *RyScriptForm::findRule(const QWidget *field) const
{
    for (const Rule &rule : m_rules) {
        if (rule.field == field)
            return &rule;
    }
    return nullptr;
}

bool RyScriptForm::addRow(const QString &key, const QString &label, QWidget *field)
{
    if (key.isEmpty() || findChild<QWidget *>(key)) {
        delete field;
        return refuse(key.isEmpty() ? tr("A field of the form needs a key.")
                                    : tr("The form already has a field \"%1\".").arg(key));
    }
    field->setObjectName(key);
    field->setAccessibleName(ryPlainText(label).remove(QLatin1Char(':')).trimmed());
    const int row = m_grid->rowCount();
    if (!qobject_cast<QCheckBox *>(field)) {
        auto *text = new QLabel(label, this);
        text->setObjectName(key + QStringLiteral("Lbl"));
        text->setBuddy(field);
        m_grid->addWidget(text, row, 0, Qt::AlignRight | Qt::AlignVCenter);
    }
    m_grid->addWidget(field, row, 1);
    m_fields.push_back(field);
    return true;
}

bool RyScriptForm::addText(const QString &key, const QString &label, const QString &text, const QString &rule)
{
    const bool isName = rule == QLatin1String("name");
    if (!rule.isEmpty() && !isName && rule != QLatin1String("label"))
        return refuse(tr("\"%1\" is no rule for texts of a form; there are \"name\" and \"label\".").arg(rule));
    auto *field = new QLineEdit(text, this);
    if (!addRow(key, label, field))
        return false;
    if (isName)
        field->setValidator(new RyNodeNameValidator(field));
    else if (!rule.isEmpty())
        field->setValidator(new RyNodeLabelValidator(field));
    if (!rule.isEmpty()) {
        m_rules.push_back({field, isName ? tr("Names are made of letters, digits, blanks and the characters _ - ( ).")
                                         : tr("Labels are made of characters that can be seen.")});
        connect(field, &QLineEdit::inputRejected, this, [this, field] { setMessage(findRule(field)->explanation); });
    }
    connect(field, &QLineEdit::textChanged, this, &RyScriptForm::checkRules);
    checkRules();
    return true;
}

bool RyScriptForm::addChoice(const QString &key, const QString &label, const QStringList &items, int current)
{
    auto *field = new QComboBox(this);
    field->addItems(items);
    field->setCurrentIndex(qBound(0, current, items.size() - 1));
    if (!addRow(key, label, field))
        return false;
    connect(field, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &RyScriptForm::checkRules);
    return true;
}

bool RyScriptForm::addCheck(const QString &key, const QString &label, bool isChecked)
{
    auto *field = new QCheckBox(label, this);
    field->setChecked(isChecked);
    if (!addRow(key, label, field))
        return false;
    connect(field, &QCheckBox::toggled, this, &RyScriptForm::checkRules);
    return true;
}

QVariant RyScriptForm::value(const QString &key) const
{
    const QWidget *field = findField(key);
    if (const auto *text = qobject_cast<const QLineEdit *>(field))
        return findRule(field) ? text->text().trimmed() : text->text();
    if (const auto *choice = qobject_cast<const QComboBox *>(field))
        return choice->currentText();
    if (const auto *check = qobject_cast<const QCheckBox *>(field))
        return check->isChecked();
    return {};
}

bool RyScriptForm::setValue(const QString &key, const QVariant &value)
{
    QWidget *field = findField(key);
    if (auto *text = qobject_cast<QLineEdit *>(field)) {
        text->setText(value.toString());
    } else if (auto *check = qobject_cast<QCheckBox *>(field)) {
        check->setChecked(value.toBool());
    } else if (auto *choice = qobject_cast<QComboBox *>(field)) {
        const int index = choice->findText(value.toString());
        if (index < 0)
            return refuse(tr("The field \"%1\" of the form has no item \"%2\".").arg(key, value.toString()));
        choice->setCurrentIndex(index);
    }
    return field != nullptr;
}

void RyScriptForm::checkRules()
{
    bool allKept = true;
    QString message;
    for (const Rule &rule : m_rules) {
        const QValidator::State state = stateOf(rule.field);
        allKept = allKept && state == QValidator::Acceptable;
        if (state != QValidator::Acceptable && message.isEmpty())
            message = rule.field->text().trimmed().isEmpty() ? tr("\"%1\" is empty.").arg(captionOf(rule.field))
                                                             : rule.explanation;
    }
    enableAccept(allKept);
    // What a script says while it corrects the values stays.
    if (!m_isAccepting)
        setMessage(message);
}

void RyScriptForm::setMessage(const QString &text)
{
    m_message->setText(text);
    m_messageRow->setVisible(!text.isEmpty());
    if (text.isEmpty())
        return;
    QAccessibleEvent event(m_message, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
    // A long message takes more lines than were kept free.
    const int needed = layout()->totalHeightForWidth(width());
    if (isVisible() && needed > height())
        resize(width(), needed);
}

QString RyScriptForm::getMessage() const
{
    return m_message->text();
}
