#include "support/RyTest.h"

#include "RySettingsForTest.h"
#include "RyWindowScene.h"

#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolDrawingOptionsDlg.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDrawingActions.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/ui/RyColorWgt.h"
#include "rycore/ui/RyIntSlider.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

namespace {

struct Row
{
    const char *label;
    const char *labelName;
    const char *name;
    const char *items; // of a combo box, "|" between them; "color" and "percentage" for the other controls
    const char *shown; // with the tool as it starts
};

const Row rows[] = {
    {"Bone Style :", "JointEditorBoneColorStyleLbl", "JointEditorBoneColorStyleCmb", "Solid Color|Axis Colored", "1"},
    {"Selection Color :", "JointEditorDrawingSelectedColorLbl", "JointEditorDrawingSelectedColorWgt", "color",
     "#ffff00"},
    {"Dynamic Color :", "JointEditorDrawingDynamicColorLbl", "JointEditorDrawingDynamicColorWgt", "color", "#00ff00"},
    {"Static Color :", "JointEditorDrawingStaticColorLbl", "JointEditorDrawingStaticColorWgt", "color", "#ff0000"},
    {"Handle Style :", "JointEditorDrawingHandleStyleLbl", "JointEditorDrawingHandleStyleCmb", "Wireframe|Solid", "0"},
    {"Sphere Style :", "JointEditorDrawingSphereStyleLbl", "JointEditorDrawingSphereStyleCmb",
     "Axis Only|Wireframe|Solid", "0"},
    {"Sphere Opacity :", "JointEditorDrawingSphereOpacityLbl", "JointEditorDrawingSphereOpacitySldr", "percentage",
     "19"},
    {"Sphere Line Density :", "JointEditorSphereLineDensityLbl", "JointEditorSphereLineDensitySldr", "percentage",
     "16"},
    {"Weight Map Style :", "JointEditorWeightMapDrawStyleLbl", "JointEditorWeightMapDrawStyleCmb",
     "Points|Wireframe|Solid", "2"},
    {"Weight Map Opacity :", "JointEditorWeightMapOpacityLbl", "JointEditorWeightMapOpacitySldr", "percentage", "62"},
    {"Boundary Color :", "JointEditorBoundryColorLbl", "JointEditorBoundryColorWgt", "color", "#ffffff"},
    {"Boundary Style :", "JointEditorMeshBoundryDrawStyleLbl", "JointEditorMeshBoundrySrawStyleCmb", "Points|Lines",
     "1"},
};

/// The twelve values, in the order in which they are written.
QStringList valuesOf(const RyJointEditorTool *tool)
{
    const RyJointToolDisplay &display = tool->display();
    QStringList values;
    for (const QColor &color :
         {display.selectedColor, display.dynamicColor, display.staticColor, display.boundaryColor})
        values.append(color.name());
    for (int value : {display.boneColoringStyle, display.handleDrawing, display.sphereDrawing, display.weightMapMode,
                      display.boundaryStyle, display.sphereOpacity, display.sphereLineDensity, display.weightOpacity})
        values.append(QString::number(value));
    return values;
}

const QStringList startValues = {"#ffff00", "#00ff00", "#ff0000", "#ffffff", "1",  "0",
                                 "0",       "2",       "1",       "50",      "60", "160"};
/// What the shown percentages make of them.
const QStringList truncatedValues = {"#ffff00", "#00ff00", "#ff0000", "#ffffff", "1",  "0",
                                     "0",       "2",       "1",       "48",      "57", "158"};

} // namespace

class RyJointEditorToolDrawingOptionsDlgTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_scene = std::make_unique<RyToolScene>();
        m_dialog = std::make_unique<RyJointEditorToolDrawingOptionsDlg>(tool());
    }
    void cleanup()
    {
        m_dialog.reset();
        m_scene.reset();
    }

    void looks()
    {
        QCOMPARE(m_dialog->objectName(), QStringLiteral("JointEditorDrawingOptionsDlg"));
        QCOMPARE(m_dialog->windowTitle(), QStringLiteral("Joint Editor Drawing Options"));
        QCOMPARE(m_dialog->minimumWidth(), 290);
        QVERIFY(
            !m_dialog->findChild<QPushButton *>(QStringLiteral("BasicDialogApplyBtn"))->isVisibleTo(m_dialog.get()));
        const QMetaObject *meta = m_dialog->metaObject();
        QVERIFY(meta->indexOfSlot("updateTool()") >= meta->methodOffset());
    }

    void rowsInOrder()
    {
        auto *grid = m_dialog->findChild<QGridLayout *>();
        QCOMPARE(grid->rowCount(), int(std::size(rows)));
        QCOMPARE(grid->columnCount(), 2);
        QCOMPARE(grid->columnStretch(0), 0);
        QCOMPARE(grid->columnStretch(1), 1);
        for (int i = 0; i < int(std::size(rows)); ++i) {
            const Row &row = rows[i];
            auto *label = qobject_cast<QLabel *>(grid->itemAtPosition(i, 0)->widget());
            QWidget *control = grid->itemAtPosition(i, 1)->widget();
            QVERIFY(label);
            QCOMPARE(label->text(), QLatin1String(row.label));
            QCOMPARE(label->objectName(), QLatin1String(row.labelName));
            QCOMPARE(label->buddy(), control);
            QCOMPARE(control->objectName(), QLatin1String(row.name));
            QCOMPARE(shownBy(control), QLatin1String(row.shown));
            if (auto *combo = qobject_cast<QComboBox *>(control)) {
                QStringList items;
                for (int item = 0; item < combo->count(); ++item)
                    items.append(combo->itemText(item));
                QCOMPARE(items.join('|'), QLatin1String(row.items));
            }
        }
    }

    void showsTheToolsValues()
    {
        m_dialog.reset();
        const QStringList values = {"#010203", "#040506", "#070809", "#0a0b0c", "0",   "1",
                                    "2",       "1",       "0",       "255",     "360", "51"};
        write(values);
        QCOMPARE(valuesOf(tool()), values);
        m_dialog = std::make_unique<RyJointEditorToolDrawingOptionsDlg>(tool());
        QStringList shown;
        for (const Row &row : rows)
            shown.append(shownBy(control(row.name)));
        QCOMPARE(shown, (QStringList{"0", "#010203", "#040506", "#070809", "1", "2", "100", "100", "1", "20", "#0a0b0c",
                                     "0"}));
    }

    void openingChangesNothing()
    {
        m_dialog.reset();
        RySettingsRecorder recorder;
        m_dialog = std::make_unique<RyJointEditorToolDrawingOptionsDlg>(tool());
        m_dialog->show();
        QCoreApplication::processEvents();
        QCOMPARE(recorder.accesses, QStringList());
        QCOMPARE(valuesOf(tool()), startValues);
    }

    void writesInOrder()
    {
        RySettingsRecorder recorder;
        slider("JointEditorDrawingSphereOpacitySldr")->setValue(20);
        QStringList expected;
        for (const char *color : {"Selected", "Dynamic", "Static", "Boundary"}) {
            for (const char *channel : {"Red", "Green", "Blue"})
                expected.append(QLatin1String(color) + QLatin1String(channel));
        }
        expected += {"BoneColoringStyle", "DrawHandles",   "SphereDrawingEnabled", "WeightMapMode",
                     "BoundaryStyle",     "SphereOpacity", "SphereDensity",        "WeightOpacity"};
        QCOMPARE(recorder.keys("set"), expected);
    }

    void everyControlPreviews_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("index"); // among the tool's values
        QTest::addColumn<QString>("expected");
        const auto add = [](const char *name, const char *value, int index, const char *expected) {
            QTest::newRow(name) << name << value << index << expected;
        };
        add("JointEditorDrawingSelectedColorWgt", "#112233", 0, "#112233");
        add("JointEditorDrawingDynamicColorWgt", "#112233", 1, "#112233");
        add("JointEditorDrawingStaticColorWgt", "#112233", 2, "#112233");
        add("JointEditorBoundryColorWgt", "#112233", 3, "#112233");
        add("JointEditorBoneColorStyleCmb", "0", 4, "0");
        add("JointEditorDrawingHandleStyleCmb", "1", 5, "1");
        add("JointEditorDrawingSphereStyleCmb", "2", 6, "2");
        add("JointEditorWeightMapDrawStyleCmb", "1", 7, "1");
        add("JointEditorMeshBoundrySrawStyleCmb", "0", 8, "0");
        add("JointEditorDrawingSphereOpacitySldr", "33", 9, "84");
        add("JointEditorSphereLineDensitySldr", "17", 10, "61");
        add("JointEditorWeightMapOpacitySldr", "99", 11, "252");
    }
    void everyControlPreviews()
    {
        QFETCH(QString, name);
        QFETCH(QString, value);
        QFETCH(int, index);
        QFETCH(QString, expected);
        m_dialog->show();
        QStringList values = truncatedValues;
        values[index] = expected;
        operate(name, value);
        QVERIFY(m_dialog->isVisible());
        QCOMPARE(valuesOf(tool()), values);
        QCOMPARE(stored(), values);
        QCOMPARE(ryUndoStack()->count(), 0);
        // Cancel puts back all twelve, and what was stored.
        QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
        QVERIFY(!m_dialog->isVisible());
        QCOMPARE(valuesOf(tool()), startValues);
        QCOMPARE(stored(), startValues);
    }

    void densityAndOpacitiesAtTheirEnds()
    {
        RyIntSlider *density = slider("JointEditorSphereLineDensitySldr");
        density->setValue(0);
        QCOMPARE(tool()->display().sphereLineDensity, 1);
        density->setValue(100);
        QCOMPARE(tool()->display().sphereLineDensity, 360);
        for (const auto &[percentage, opacity] : {std::pair(0, 0), {1, 2}, {50, 127}, {100, 255}}) {
            slider("JointEditorDrawingSphereOpacitySldr")->setValue(percentage);
            QCOMPARE(tool()->display().sphereOpacity, opacity);
            slider("JointEditorWeightMapOpacitySldr")->setValue(percentage);
            QCOMPARE(tool()->display().weightOpacity, opacity);
        }
    }

    void okTruncates()
    {
        m_dialog->show();
        RySettingsRecorder recorder;
        m_dialog->findChild<QPushButton *>(QStringLiteral("BasicDialogOkBtn"))->click();
        QVERIFY(!m_dialog->isVisible());
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
        QCOMPARE(valuesOf(tool()), truncatedValues);
        QCOMPARE(stored(), truncatedValues);
        QCOMPARE(recorder.keys("set").count(QStringLiteral("SphereDensity")), 1);
    }

    void okWritesAfterTheDialogClosed()
    {
        // Something else changed the tool meanwhile: what the dialog shows counts.
        m_dialog->show();
        QStringList seen;
        connect(m_dialog.get(), &QDialog::accepted, this, [&] { seen = valuesOf(tool()); });
        tool()->setSphereOpacity(200);
        m_dialog->accept();
        QCOMPARE(seen.at(9), QStringLiteral("200"));
        QCOMPARE(valuesOf(tool()), truncatedValues);
    }

    void cancelRestoresAfterTheDialogClosed()
    {
        m_dialog->show();
        const QStringList changed = {"#010203", "#040506", "#070809", "#0a0b0c", "0", "1",
                                     "2",       "1",       "0",       "1",       "2", "3"};
        QStringList seen;
        connect(m_dialog.get(), &QDialog::rejected, this, [&] { seen = valuesOf(tool()); });
        write(changed);
        m_dialog->close();
        QCOMPARE(seen, changed);
        QCOMPARE(valuesOf(tool()), startValues);
        QCOMPARE(stored(), startValues);
    }

    void theToolMayGo()
    {
        m_dialog->show();
        m_scene->viewport.reset();
        m_scene->manager.reset();
        slider("JointEditorDrawingSphereOpacitySldr")->setValue(7);
        m_dialog->accept();
        RyJointEditorToolDrawingOptionsDlg(nullptr).reject();
    }

    void theAction()
    {
        // Without a window and without a tool in it nothing opens.
        RyDialogDriver driver;
        {
            RyJECustomColorsAction action;
            action.init();
            QVERIFY(action.isEnabled());
            action.trigger();
            RyMainWindow window(ryScene());
            action.trigger();
            QCOMPARE(driver.records().size(), size_t(0));
        }
        m_dialog.reset();
        m_scene.reset();
        RyWindowScene scene;
        RyJECustomColorsAction action;
        action.init();
        driver.setField(QStringLiteral("JointEditorSphereLineDensitySldr"), QStringLiteral("17"));
        QPointer<QDialog> dialog;
        connect(&driver, &RyDialogDriver::opened, this, [&](QDialog *opened) {
            dialog = opened;
            QVERIFY(opened->isModal());
            QCOMPARE(opened->parentWidget(), scene.window.get());
        });
        action.trigger();
        QCOMPARE(driver.errors(), QStringList());
        QCOMPARE(driver.records().size(), size_t(1));
        QVERIFY(!dialog);
        QCOMPARE(scene.windowTool->display().sphereLineDensity, 61);
        QCOMPARE(scene.tool->display().sphereLineDensity, 60);
    }

private:
    RyJointEditorTool *tool() const { return m_scene->tool; }
    QWidget *control(const QString &name) const { return m_dialog->findChild<QWidget *>(name); }
    RyIntSlider *slider(const char *name) const { return m_dialog->findChild<RyIntSlider *>(QLatin1String(name)); }

    static QString shownBy(QWidget *control)
    {
        if (auto *combo = qobject_cast<QComboBox *>(control))
            return QString::number(combo->currentIndex());
        if (auto *color = qobject_cast<RyColorWgt *>(control))
            return color->getColor().name();
        auto *percentage = qobject_cast<RyIntSlider *>(control);
        return percentage ? QString::number(percentage->value()) : QStringLiteral("another control");
    }
    /// As a hand would.
    void operate(const QString &name, const QString &value) const
    {
        QWidget *widget = control(name);
        if (auto *combo = qobject_cast<QComboBox *>(widget)) {
            QTest::keyClick(combo, Qt::Key_Home);
            for (int i = 0; i < value.toInt(); ++i)
                QTest::keyClick(combo, Qt::Key_Down);
        } else if (qobject_cast<RyColorWgt *>(widget)) {
            auto *field = widget->findChild<QLineEdit *>();
            field->selectAll();
            QTest::keyClicks(field, value);
            field->clearFocus();
            emit field->editingFinished();
        } else {
            auto *slider = widget->findChild<QSlider *>();
            while (slider->value() < value.toInt())
                QTest::keyClick(slider, Qt::Key_Right);
        }
    }
    void write(const QStringList &values) const
    {
        tool()->setSelectedColor(values[0]);
        tool()->setDynamicColor(values[1]);
        tool()->setStaticColor(values[2]);
        tool()->setBoundaryColor(values[3]);
        tool()->setBoneColoringStyle(values[4].toInt());
        tool()->setHandleDrawing(values[5].toInt());
        tool()->setSphereDrawing(values[6].toInt());
        tool()->setWeightMapMode(values[7].toInt());
        tool()->setBoundaryStyle(values[8].toInt());
        tool()->setSphereOpacity(values[9].toInt());
        tool()->setSphereLineDensity(values[10].toInt());
        tool()->setWeightOpacity(values[11].toInt());
    }
    /// The settings, as the tool's values.
    static QStringList stored()
    {
        const RyAppSettings settings(QStringLiteral("Joint Editor Tool"));
        QStringList values;
        for (const char *color : {"Selected", "Dynamic", "Static", "Boundary"}) {
            const auto channel = [&](const char *name) {
                return settings.getIntValue(QLatin1String(color) + QLatin1String(name), -1);
            };
            values.append(QColor(channel("Red"), channel("Green"), channel("Blue")).name());
        }
        for (const char *key : {"BoneColoringStyle", "DrawHandles", "SphereDrawingEnabled", "WeightMapMode",
                                "BoundaryStyle", "SphereOpacity", "SphereDensity", "WeightOpacity"})
            values.append(QString::number(settings.getIntValue(QLatin1String(key), -1)));
        return values;
    }

    std::unique_ptr<RyToolScene> m_scene;
    std::unique_ptr<RyJointEditorToolDrawingOptionsDlg> m_dialog;
};

RY_TEST(RyJointEditorToolDrawingOptionsDlgTest)
#include "tst_RyJointEditorToolDrawingOptionsDlg.moc"
