#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/ui/RyBasicDialog.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/window/DialogPlaces.h"

#include <QLabel>
#include <QVBoxLayout>

Q_DECLARE_METATYPE(std::optional<QPoint>)

/// Dialogs with values for the figure leave it in sight.
class DialogPlacesTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup() { close(); }

    void beside_data()
    {
        QTest::addColumn<QRect>("view");
        QTest::addColumn<std::optional<QPoint>>("place");
        using Place = std::optional<QPoint>;
        QTest::newRow("right") << QRect(300, 100, 700, 600) << Place(QPoint(1000, 100));
        QTest::newRow("right, just so") << QRect(300, 100, 820, 600) << Place(QPoint(1120, 100));
        QTest::newRow("left") << QRect(320, 100, 801, 600) << Place(QPoint(0, 100));
        QTest::newRow("neither") << QRect(319, 100, 802, 600) << Place();
        QTest::newRow("not below the screen") << QRect(300, 800, 700, 300) << Place(QPoint(1000, 700));
        QTest::newRow("not behind a panel") << QRect(300, 10, 700, 600) << Place(QPoint(1000, 28));
    }
    void beside()
    {
        QFETCH(QRect, view);
        QFETCH(std::optional<QPoint>, place);
        QCOMPARE(DialogPlaces::beside(QSize(320, 200), view, QRect(0, 28, 1440, 872)), place);
    }

    void opensBesideTheView()
    {
        Form form(m_window.get());
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        QVERIFY2(!form.frameGeometry().intersects(view()), "the figure is hidden");
        QCOMPARE(form.frameGeometry().top(), view().top());
    }

    /// Where somebody has put it, it opens again; another dialog does not.
    void opensWhereItWasPut()
    {
        QPoint put = view().center();
        {
            Form form(m_window.get());
            form.show();
            QVERIFY(QTest::qWaitForWindowExposed(&form));
            form.move(put);
            settle();
            put = form.pos();
            form.reject();
        }
        Form again(m_window.get());
        again.show();
        QVERIFY(QTest::qWaitForWindowExposed(&again));
        QCOMPARE(again.pos(), put);
        Form other(m_window.get(), QStringLiteral("OtherDlg"));
        other.show();
        QVERIFY(QTest::qWaitForWindowExposed(&other));
        QVERIFY(!other.frameGeometry().intersects(view()));
    }

private:
    struct Form : RyBasicDialog
    {
        explicit Form(QWidget *parent, const QString &name = QStringLiteral("FormDlg")) : RyBasicDialog(parent)
        {
            setObjectName(name);
            auto *layout = new QVBoxLayout;
            layout->addWidget(new QLabel(QStringLiteral("Some value"), this));
            setContentLayout(layout);
        }
    };
    QRect view() const { return {m_window->viewport()->mapToGlobal(QPoint()), m_window->viewport()->size()}; }
};

RY_TEST(DialogPlacesTest)
#include "tst_DialogPlaces.moc"
