#include "ryhost/preferences/PreferencesDialog.h"

#include "rycore/ui/RyBasicDialogValidator.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/RecoverySession.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

/// Leaves the dialog open where unsaved work could not be kept in its folder.
class PreferencesValidator : public RyBasicDialogValidator
{
public:
    bool validate(RyBasicDialog *dialog) override { return static_cast<PreferencesDialog *>(dialog)->isFolderUsable(); }
};

PreferencesDialog::PreferencesDialog(QWidget *parent)
    : RyBasicDialog(parent), m_on(new QCheckBox(tr("&Keep unsaved work, for after a crash"), this)),
      m_folder(new QLineEdit(this)), m_state(new QLabel(this))
{
    const AutosaveSettings &settings = AutosaveSettings::global();
    setObjectName(QStringLiteral("PreferencesDialog"));
    setWindowTitle(tr("Preferences"));
    m_on->setObjectName(QStringLiteral("AutosaveOn"));
    m_on->setChecked(settings.isOn());
    m_on->setToolTip(tr("A copy is made half a second after an edit, and goes when you save or quit"));
    m_folder->setObjectName(QStringLiteral("AutosaveFolder"));
    m_folder->setText(QDir::toNativeSeparators(settings.chosenFolder()));
    m_folder->setPlaceholderText(QDir::toNativeSeparators(AutosaveSettings::ordinaryFolder()));
    m_folder->setMinimumWidth(360);
    m_folder->setToolTip(tr("Empty for the ordinary place"));
    auto *label = new QLabel(tr("in the &folder"), this);
    label->setObjectName(QStringLiteral("AutosaveFolderLabel"));
    label->setBuddy(m_folder);
    auto *browse = new QPushButton(tr("&Browse..."), this);
    browse->setObjectName(QStringLiteral("AutosaveBrowse"));
    m_state->setObjectName(QStringLiteral("AutosaveState"));
    m_state->setWordWrap(true);
    auto *layout = new QGridLayout;
    layout->addWidget(m_on, 0, 0, 1, 3);
    layout->addWidget(label, 1, 0);
    layout->addWidget(m_folder, 1, 1);
    layout->addWidget(browse, 1, 2);
    layout->addWidget(m_state, 2, 0, 1, 3);
    setContentLayout(layout);
    setValidator(new PreferencesValidator);
    const auto showUse = [this, browse, label](bool onOff) {
        for (QWidget *each :
             {static_cast<QWidget *>(m_folder), static_cast<QWidget *>(browse), static_cast<QWidget *>(label)})
            each->setEnabled(onOff);
        showState();
    };
    connect(m_on, &QCheckBox::toggled, this, showUse);
    connect(m_folder, &QLineEdit::textChanged, this, &PreferencesDialog::showState);
    connect(browse, &QPushButton::clicked, this, &PreferencesDialog::browse);
    connect(&settings, &AutosaveSettings::stateChanged, this, &PreferencesDialog::showState);
    showUse(m_on->isChecked());
}

QString PreferencesDialog::folder() const
{
    return QDir::fromNativeSeparators(m_folder->text().trimmed());
}

void PreferencesDialog::browse()
{
    const QString start = folder().isEmpty() ? AutosaveSettings::ordinaryFolder() : folder();
    const QString chosen = QFileDialog::getExistingDirectory(this, tr("Folder for Unsaved Work"), start);
    if (!chosen.isEmpty())
        m_folder->setText(QDir::toNativeSeparators(chosen));
}

/// What will be, and of what is set already what really is.
void PreferencesDialog::showState()
{
    const AutosaveSettings &settings = AutosaveSettings::global();
    if (!m_on->isChecked()) {
        m_state->setText(tr("After a crash, everything since the last save is lost."));
        return;
    }
    const QString place = folder().isEmpty() ? AutosaveSettings::ordinaryFolder() : folder();
    const bool isAsSet = settings.isOn() && folder() == settings.chosenFolder();
    m_state->setText(isAsSet && !settings.state().isEmpty()
                         ? settings.state()
                         : tr("Unsaved work will be kept in %1.").arg(QDir::toNativeSeparators(place)));
}

bool PreferencesDialog::isFolderUsable()
{
    if (!m_on->isChecked() || folder().isEmpty())
        return true;
    QString reason;
    if (!QDir::isAbsolutePath(folder()))
        reason = tr("%1 does not say where it begins; write the whole path").arg(m_folder->text());
    else
        reason = RecoverySession::obstacle(folder());
    if (reason.isEmpty())
        return true;
    QMessageBox::warning(this, tr("Folder Not Usable"),
                         tr("Unsaved work cannot be kept there: %1.\n\nChoose another folder, or leave the field empty "
                            "for the ordinary place.")
                             .arg(reason));
    m_folder->setFocus();
    return false;
}

void PreferencesDialog::apply()
{
    AutosaveSettings::global().set(m_on->isChecked(), folder());
}
