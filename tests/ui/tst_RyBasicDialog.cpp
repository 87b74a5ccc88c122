#include "support/RyTest.h"

#include "rycore/ui/RyBasicDialog.h"
#include "rycore/ui/RyBasicDialogValidator.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>

namespace {

class ListedDialog : public RyBasicDialog
{
    Q_OBJECT
public:
    QStringList calls;

protected:
    void apply() override { calls.append(isVisible() ? QStringLiteral("apply") : QStringLiteral("apply closed")); }
};

class ScriptedValidator : public RyBasicDialogValidator
{
public:
    explicit ScriptedValidator(int *alive) : m_alive(alive) { ++*m_alive; }
    ~ScriptedValidator() override { --*m_alive; }
    bool validate(RyBasicDialog *dialog) override
    {
        static_cast<ListedDialog *>(dialog)->calls.append(QStringLiteral("validate"));
        return agrees;
    }
    bool agrees = false;

private:
    int *m_alive;
};

} // namespace

class RyBasicDialogTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_dialog = std::make_unique<ListedDialog>();
        auto *layout = new QFormLayout;
        m_first = new QLineEdit;
        m_second = new QLineEdit;
        layout->addRow(QStringLiteral("First"), m_first);
        layout->addRow(QStringLiteral("Second"), m_second);
        m_dialog->setContentLayout(layout);
    }
    void cleanup() { m_dialog.reset(); }

    void buttons()
    {
        show();
        QVERIFY(button("Ok")->isVisible());
        QVERIFY(button("Ok")->isDefault());
        QVERIFY(button("Cancel")->isVisible());
        QVERIFY(!button("Apply")->isVisible());
        QCOMPARE(button("Ok")->accessibleName(), QStringLiteral("OK"));
        QCOMPARE(button("Cancel")->accessibleName(), QStringLiteral("Cancel"));
        m_dialog->setApplyVisible(true);
        QVERIFY(button("Apply")->isVisible());
        m_dialog->setApplyVisible(false);
        QVERIFY(!button("Apply")->isVisible());
        // The content stands above the buttons, with no margin of its own.
        QVERIFY(m_second->geometry().bottom() < button("Ok")->mapTo(m_dialog.get(), QPoint()).y());
        QCOMPARE(m_second->geometry().right(), m_dialog->width() - 1 - m_dialog->layout()->contentsMargins().right());
    }

    void acceptValidatesAppliesAndCloses()
    {
        ScriptedValidator *validator = install();
        show();
        QSignalSpy accepted(m_dialog.get(), &QDialog::accepted);
        QTest::mouseClick(button("Ok"), Qt::LeftButton);
        QCOMPARE(m_dialog->calls, QStringList{"validate"});
        QVERIFY(m_dialog->isVisible());
        QCOMPARE(accepted.count(), 0);
        validator->agrees = true;
        QTest::mouseClick(button("Ok"), Qt::LeftButton);
        QCOMPARE(m_dialog->calls, (QStringList{"validate", "validate", "apply"}));
        QVERIFY(!m_dialog->isVisible());
        QCOMPARE(accepted.count(), 1);
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
    }

    void applyLeavesTheDialogOpen()
    {
        ScriptedValidator *validator = install();
        m_dialog->setApplyVisible(true);
        show();
        button("Apply")->click();
        QCOMPARE(m_dialog->calls, QStringList{"validate"});
        validator->agrees = true;
        button("Apply")->click();
        QCOMPARE(m_dialog->calls, (QStringList{"validate", "validate", "apply"}));
        QVERIFY(m_dialog->isVisible());
    }

    void cancelAppliesNothing()
    {
        install()->agrees = true;
        for (bool byKey : {false, true}) {
            show();
            QSignalSpy rejected(m_dialog.get(), &QDialog::rejected);
            if (byKey)
                QTest::keyClick(m_first, Qt::Key_Escape);
            else
                QTest::mouseClick(button("Cancel"), Qt::LeftButton);
            QVERIFY(!m_dialog->isVisible());
            QCOMPARE(rejected.count(), 1);
            QCOMPARE(m_dialog->calls, QStringList());
        }
    }

    void nothingAcceptsWhileAcceptIsOff()
    {
        install()->agrees = true;
        m_dialog->setApplyVisible(true);
        QVERIFY(m_dialog->isAcceptEnabled());
        m_dialog->enableAccept(false);
        QVERIFY(!m_dialog->isAcceptEnabled());
        show();
        QVERIFY(!button("Ok")->isEnabled());
        QVERIFY(!button("Apply")->isEnabled());
        QVERIFY(button("Cancel")->isEnabled());
        QTest::mouseClick(button("Ok"), Qt::LeftButton);
        QTest::mouseClick(button("Apply"), Qt::LeftButton);
        QTest::keyClick(m_first, Qt::Key_Return);
        m_dialog->accept();
        QVERIFY(m_dialog->isVisible());
        QCOMPARE(m_dialog->calls, QStringList());
        m_dialog->enableAccept(true);
        QTest::keyClick(m_first, Qt::Key_Return);
        QVERIFY(!m_dialog->isVisible());
        QCOMPARE(m_dialog->calls, (QStringList{"validate", "apply"}));
    }

    void worksWithoutValidator()
    {
        m_dialog->accept();
        QCOMPARE(m_dialog->calls, QStringList{"apply closed"});
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
    }

    void ownsItsValidator()
    {
        ScriptedValidator *first = install();
        m_dialog->setValidator(first);
        QCOMPARE(m_alive, 1);
        QCOMPARE(m_dialog->getValidator(), first);
        install();
        QCOMPARE(m_alive, 1);
        m_dialog->setValidator(nullptr);
        QCOMPARE(m_alive, 0);
        QVERIFY(!m_dialog->getValidator());
        install();
        m_dialog.reset();
        QCOMPARE(m_alive, 0);
    }

    void tabReachesTheContentFirst()
    {
        // Widgets that come late count as well.
        auto *third = new QLineEdit(m_dialog.get());
        static_cast<QFormLayout *>(m_first->parentWidget()->layout()->itemAt(0)->layout())->addRow(third);
        m_dialog->setApplyVisible(true);
        show();
        // There may be no window manager that would do it.
        QApplication::setActiveWindow(m_dialog.get());
        const QList<QWidget *> order = {m_first, m_second, third, button("Ok"), button("Cancel"), button("Apply")};
        for (QWidget *widget : order) {
            QCOMPARE(m_dialog->focusWidget(), widget);
            QTest::keyClick(widget, Qt::Key_Tab);
        }
        QCOMPARE(m_dialog->focusWidget(), m_first);
        QTest::keyClick(m_first, Qt::Key_Backtab);
        QCOMPARE(m_dialog->focusWidget(), button("Apply"));
    }

    void theFirstFieldThatIsOnHasTheFocus()
    {
        m_first->setEnabled(false);
        m_second->setText(QStringLiteral("text"));
        show();
        QCOMPARE(m_dialog->focusWidget(), m_second);
        QCOMPARE(m_second->selectedText(), QStringLiteral("text"));
        // A dialog that chose otherwise is left alone.
        m_dialog->hide();
        m_first->setEnabled(true);
        button("Cancel")->setFocus();
        show();
        QCOMPARE(m_dialog->focusWidget(), button("Cancel"));
    }

    void livesWithoutContent()
    {
        RyBasicDialog dialog;
        dialog.setContentLayout(nullptr);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        dialog.accept();
        QVERIFY(!dialog.isVisible());
    }

private:
    void show()
    {
        m_dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_dialog.get()));
    }
    QPushButton *button(const char *name) const
    {
        return m_dialog->findChild<QPushButton *>(QStringLiteral("BasicDialog%1Btn").arg(QLatin1String(name)));
    }
    ScriptedValidator *install()
    {
        auto *validator = new ScriptedValidator(&m_alive);
        m_dialog->setValidator(validator);
        return validator;
    }

    int m_alive = 0;
    std::unique_ptr<ListedDialog> m_dialog;
    QLineEdit *m_first = nullptr;
    QLineEdit *m_second = nullptr;
};

RY_TEST(RyBasicDialogTest)
#include "tst_RyBasicDialog.moc"
