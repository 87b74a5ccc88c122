#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "pointer/PointerDriver.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/look/HostIcons.h"
#include "ryhost/panes/SceneModel.h"
#include "ryhost/panes/ScenePane.h"
#include "ryhost/window/WindowFit.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QDockWidget>
#include <QHeaderView>
#include <QLineEdit>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSortFilterProxyModel>
#include <QSpinBox>
#include <QStatusBar>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

/// The window as a person sees and handles it: its place, its panes, the wheel and the look.
class WindowOnScreenTest : public QObject, private WindowStage
{
    Q_OBJECT
public:
    WindowOnScreenTest() : WindowStage(Plugins::All) {}

private slots:
    void init() { QVERIFY(open()); }
    void cleanup() { close(); }

    void placesOnTheScreen_data()
    {
        QTest::addColumn<QRect>("wanted");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("fits") << QRect(100, 80, 700, 500) << QRect(100, 80, 700, 500);
        QTest::newRow("as large as the screen") << QRect(0, 0, 1440, 900) << QRect(3, 50, 1434, 847);
        QTest::newRow("from a larger screen") << QRect(1900, 1000, 2400, 1300) << QRect(3, 50, 1434, 847);
        QTest::newRow("out at the left") << QRect(-300, -200, 600, 400) << QRect(3, 50, 600, 400);
        QTest::newRow("out at the right") << QRect(1300, 800, 600, 400) << QRect(837, 497, 600, 400);
    }

    void placesOnTheScreen()
    {
        QFETCH(QRect, wanted);
        QFETCH(QRect, expected);
        // A panel above, a title bar and thin edges about the window.
        QCOMPARE(WindowFit::fitted(wanted, QMargins(3, 22, 3, 3), QRect(0, 28, 1440, 872)), expected);
    }

    void fitsTheScreen()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QVERIFY2(screen.contains(m_window->frameGeometry()), "as it opens");
        m_window->setGeometry(screen.adjusted(200, 150, 900, 700));
        QVERIFY(m_window->close());
        QVERIFY(openAgain());
        QVERIFY2(screen.contains(m_window->frameGeometry()), "after a larger screen");
        const QWidget *bar = m_window->statusBar();
        QVERIFY(bar->isVisible());
        QVERIFY(screen.contains(QRect(bar->mapToGlobal(QPoint()), bar->size())));
    }

    void copiedTextOutlivesTheLibraries()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        for (const QClipboard::Mode mode : {QClipboard::Clipboard, QClipboard::Selection}) {
            QString literal = QStringLiteral("right;r");
            literal.detach();
            clipboard->setText(QString::fromRawData(literal.constData(), literal.size()), mode);
            m_window.reset();
            literal.fill(QLatin1Char('?'));
            QCOMPARE(clipboard->text(mode), QStringLiteral("right;r"));
            clipboard->clear(mode);
            QVERIFY(openAgain());
        }
    }

    void theViewportKeepsItsSize()
    {
        m_window->resize(1024, 700);
        settle();
        QCOMPARE(m_window->size(), QSize(1024, 700));
        QVERIFY(m_window->viewport()->width() >= 400 && m_window->viewport()->height() >= 300);
        auto *settings = m_window->findChild<QDockWidget *>(QStringLiteral("ToolSettingsDock"));
        auto *scene = m_window->findChild<QDockWidget *>(QStringLiteral("SceneDock"));
        m_window->resizeDocks({scene, settings}, {900, 900}, Qt::Horizontal);
        settle();
        QVERIFY2(m_window->viewport()->width() >= 400, qPrintable(QString::number(m_window->viewport()->width())));
        m_window->resizeDocks({scene, settings}, {220, 220}, Qt::Horizontal);
        settle();
        QVERIFY2(settings->width() <= 350, qPrintable(QString::number(settings->width())));
        // Narrow as it is, everything stands in it whole, also where it must be scrolled up and down.
        const auto stands = [&](const char *name) {
            const auto *widget = m_window->findChild<QWidget *>(QString::fromLatin1(name));
            return QRect(0, 0, settings->width(), 10000)
                .contains(QRect(widget->mapTo(settings, QPoint()), widget->size().expandedTo(widget->sizeHint())));
        };
        for (int height : {700, 520}) {
            m_window->resize(1024, height);
            settle();
            QVERIFY(m_window->viewport()->width() >= 400);
            for (const char *name : {"JointEditorEndPointXWgt", "JointEditorNodeBtn", "JointEditorTwistBlendZoneCbx"})
                QVERIFY2(stands(name), name);
        }
        QVERIFY(!m_window->findChild<QScrollArea *>(QStringLiteral("ToolSettingsScroll"))
                     ->horizontalScrollBar()
                     ->isVisible());
    }

    void deepNamesCanBeRead()
    {
        RyNode *above = m_scene->findNode(QStringLiteral("lHand"));
        for (int depth = 0; depth < 40; ++depth) {
            auto *bone = new RyBone;
            bone->setName(QStringLiteral("one of the longer names %1").arg(depth));
            above->addNodeChild(bone);
            m_scene->addNode(bone);
            above = bone;
        }
        settle();
        RyNode *figure = m_scene->findNode(QStringLiteral("mannequin"));
        for (RyNode *node : {above, figure, above}) {
            m_scene->setSelection({node});
            settle();
            QVERIFY2(isNameVisible(node), qPrintable(node->getName()));
        }
        QVERIFY(tree()->horizontalScrollBar()->isVisible());
        tree()->horizontalScrollBar()->setValue(0);
        const QRect eye = tree()->visualRect(indexOf(above).siblingAtColumn(SceneModel::VisibleColumn));
        QVERIFY(eye.left() >= 0 && eye.right() < 40);
        // A name that is longer than any pane keeps its beginning and its end.
        const int width = m_window->width();
        above->setName(QString(200, QLatin1Char('n')));
        settle();
        QCOMPARE(m_window->width(), width);
        QVERIFY(tree()->columnWidth(SceneModel::LabelColumn) < 60 * tree()->indentation() + 400);
        QCOMPARE(tree()->textElideMode(), Qt::ElideMiddle);
        QVERIFY(tree()->indentation() <= 10);
    }

    void clearingTheFilterShowsTheSelection()
    {
        RyNode *finger = m_scene->findNode(QStringLiteral("rPinky3"));
        RyNode *folded = m_scene->findNode(QStringLiteral("lHand"));
        QVERIFY(finger && folded);
        m_scene->setSelection({finger});
        tree()->collapse(indexOf(folded));
        tree()->collapse(indexOf(m_scene->findNode(QStringLiteral("rHand"))));
        m_window->scenePane()->filter()->setText(QStringLiteral("head"));
        settle();
        QVERIFY(!indexOf(finger).isValid());
        QCOMPARE(m_scene->getPrimarySelection(), finger);
        m_window->scenePane()->filter()->clear();
        settle();
        QVERIFY(tree()->selectionModel()->isSelected(indexOf(finger)));
        QVERIFY(isNameVisible(finger));
        QVERIFY(!tree()->isExpanded(indexOf(folded)));
    }

    void theWheelChangesNothingInPassing()
    {
        m_scene->setSelection({m_scene->findNode(QStringLiteral("lForearm"))});
        settle();
        auto *order = m_window->findChild<QComboBox *>(QStringLiteral("JointEditorRotationOrderCmb"));
        const int before = order->currentIndex();
        m_pointer.wheelBack(order, order->rect().center(), 2);
        QCOMPARE(order->currentIndex(), before);
        QVERIFY(!order->hasFocus());
        const RyFloatPropertyWgt *row = m_window->findChild<RyFloatPropertyWgt *>(QStringLiteral("PoseZRotate"));
        auto *slider = row->findChild<QSlider *>();
        m_pointer.wheelBack(slider, slider->rect().center(), 2);
        QCOMPARE(row->getFirstProperty()->getValue(), 0.0f);
        order->setFocus();
        m_pointer.wheelBack(order, order->rect().center(), 1);
        QCOMPARE(order->currentIndex(), before + 1);
    }

    void theWheelScrollsWhatIsAround()
    {
        QDialog dialog(m_window.get());
        auto *area = new QScrollArea(&dialog);
        auto *column = new QVBoxLayout;
        auto *content = new QWidget;
        content->setLayout(column);
        QList<QSpinBox *> fields;
        for (int i = 0; i < 20; ++i) {
            fields.append(new QSpinBox);
            fields.last()->setValue(50);
            column->addWidget(fields.last());
        }
        area->setWidget(content);
        auto *layout = new QVBoxLayout(&dialog);
        layout->addWidget(area);
        dialog.resize(200, 200);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QApplication::setActiveWindow(&dialog);
        fields.last()->setFocus();
        area->verticalScrollBar()->setValue(0);
        settle();
        m_pointer.wheelBack(fields.first(), fields.first()->rect().center() - QPoint(20, 0), 1);
        QCOMPARE(fields.first()->value(), 50);
        QVERIFY(fields.last()->hasFocus());
        QVERIFY(area->verticalScrollBar()->value() > 0);
    }

    void iconsFollowTheLook()
    {
        // Held before, as menus, buttons and lists hold them.
        const QIcon menu = action("FileOpen")->icon();
        const QIcon strip = action("Tool_RyJointEditorTool")->icon();
        // Of what has no room in the strip.
        const auto *button = m_window->findChild<QToolButton *>(QStringLiteral("qt_toolbar_ext_button"));
        QVERIFY(button);
        const QIcon more = button->icon();
        const QIcon list = indexOf(m_scene->findNode(QStringLiteral("hip"))).data(Qt::DecorationRole).value<QIcon>();
        for (bool dark : {true, false, true}) {
            m_window->setDark(dark);
            for (const QIcon &icon : {menu, strip, more, list})
                QCOMPARE(lightnessOf(icon) > 128, dark);
        }
        // What the strip shows on the screen, not only what it holds.
        const QImage shown = m_window->findChild<QWidget *>(QStringLiteral("ToolStrip"))->grab().toImage();
        m_window->setDark(false);
        settle();
        QVERIFY(m_window->findChild<QWidget *>(QStringLiteral("ToolStrip"))->grab().toImage() != shown);
        m_window->setDark(true);
    }

    void iconsAreSharpAtAnyScale()
    {
        const QIcon icon = HostIcons::icon(QStringLiteral("figure"));
        QVERIFY(!icon.isNull());
        for (int scale : {1, 2, 3}) {
            for (QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled, QIcon::Selected}) {
                QImage drawn(20 * scale, 20 * scale, QImage::Format_ARGB32_Premultiplied);
                drawn.setDevicePixelRatio(scale);
                drawn.fill(Qt::transparent);
                QPainter painter(&drawn);
                icon.paint(&painter, QRect(0, 0, 20, 20), Qt::AlignCenter, mode);
                painter.end();
                drawn.setDevicePixelRatio(1);
                QCOMPARE(drawn, icon.pixmap(QSize(20, 20) * scale, mode).toImage());
            }
        }
        QVERIFY(icon.pixmap(20, QIcon::Normal).toImage() != icon.pixmap(20, QIcon::Selected).toImage());
    }

private:
    QTreeView *tree() const { return m_window->scenePane()->tree(); }
    QModelIndex indexOf(RyNode *node) const
    {
        auto *proxy = qobject_cast<QSortFilterProxyModel *>(tree()->model());
        return proxy->mapFromSource(m_window->scenePane()->model()->indexOf(node));
    }
    /// From its first letter to its last.
    bool isNameVisible(RyNode *node) const
    {
        const QRect place = tree()->visualRect(indexOf(node));
        const int iconAndMargins = 26;
        const int end = place.left() + iconAndMargins + tree()->fontMetrics().horizontalAdvance(node->getLabel());
        return !place.isEmpty() && place.left() >= 0 && end <= tree()->viewport()->width() &&
               end <= place.right() + 1 && place.top() >= 0 && place.bottom() < tree()->viewport()->height();
    }
    /// Of what is drawn most densely, 0 to 255.
    static int lightnessOf(const QIcon &icon)
    {
        const QImage image = icon.pixmap(64, 64).toImage().convertToFormat(QImage::Format_ARGB32);
        qint64 sum = 0, count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor color = image.pixelColor(x, y);
                if (color.alpha() < 200)
                    continue;
                sum += color.lightness();
                ++count;
            }
        }
        return count ? int(sum / count) : -1;
    }

    PointerDriver m_pointer;
};

RY_TEST(WindowOnScreenTest)
#include "tst_WindowOnScreen.moc"
