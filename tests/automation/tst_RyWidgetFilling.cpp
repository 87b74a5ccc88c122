#include "support/RyTest.h"

#include "rycore/automation/RyDialogFields.h"
#include "rycore/automation/RyWidgetFilling.h"
#include "rycore/ui/RyNumberField.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

/// A widget that is more than its parts.
class AngleWidget : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double angle MEMBER m_angle USER true)
public:
    double m_angle = 0.0;
};

class RyWidgetFillingTest : public QObject
{
    Q_OBJECT

    QString m_error;
    bool fill(QWidget &widget, const char *value)
    {
        m_error.clear();
        if (widget.objectName().isEmpty())
            widget.setObjectName(QStringLiteral("Field"));
        return ryFillWidget(&widget, QString::fromUtf8(value), &m_error);
    }
    bool says(std::initializer_list<const char *> words) const
    {
        return std::all_of(words.begin(), words.end(),
                           [&](const char *word) { return m_error.contains(QString::fromUtf8(word)); });
    }

private slots:
    void lineEditsHearTyping()
    {
        QLineEdit edit(QStringLiteral("old"));
        QSignalSpy edited(&edit, &QLineEdit::textEdited), finished(&edit, &QLineEdit::editingFinished);
        QVERIFY(fill(edit, "new"));
        QCOMPARE(edit.text(), QStringLiteral("new"));
        QCOMPARE(edited.count(), 1);
        QCOMPARE(finished.count(), 1);
        QVERIFY(fill(edit, ""));
        QCOMPARE(edit.text(), QString());

        QRegularExpressionValidator digits(QRegularExpression(QStringLiteral("[0-9]+")));
        edit.setValidator(&digits);
        QVERIFY(fill(edit, "12"));
        QVERIFY(!fill(edit, "a1"));
        QVERIFY2(says({"Field", "\"a1\""}), qPrintable(m_error));
        QCOMPARE(edit.text(), QStringLiteral("12"));
        edit.setMaxLength(3);
        QVERIFY(!fill(edit, "1234"));
        edit.setReadOnly(true);
        QVERIFY(!fill(edit, "1"));
        edit.setReadOnly(false);
        edit.setEnabled(false);
        QVERIFY(!fill(edit, "1"));
        QVERIFY(says({"disabled"}));
        QCOMPARE(edit.text(), QStringLiteral("12"));
    }

    void numberFieldsCalculate()
    {
        RyNumberField field;
        QSignalSpy edited(&field, &RyNumberField::valueEdited);
        QVERIFY(fill(field, "3*7"));
        QCOMPARE(edited.count(), 1);
        QCOMPARE(edited.first().first().toDouble(), 21.0);
    }

    void spinBoxes()
    {
        QSpinBox whole;
        whole.setRange(1, 10);
        QSignalSpy finished(&whole, &QSpinBox::editingFinished);
        QVERIFY(fill(whole, "7"));
        QVERIFY(fill(whole, " 8.0 "));
        QCOMPARE(whole.value(), 8);
        QCOMPARE(finished.count(), 2);
        for (const char *wrong : {"11", "0", "seven", "", "7.5", "1e300"}) {
            QVERIFY2(!fill(whole, wrong), wrong);
            QCOMPARE(whole.value(), 8);
        }
        QVERIFY(!fill(whole, "11") && says({"1 to 10", "11"}));

        QDoubleSpinBox real;
        real.setRange(-1.0, 1.0);
        real.setSuffix(QStringLiteral(" cm"));
        QVERIFY(fill(real, "-0.25"));
        QCOMPARE(real.value(), -0.25);
        QVERIFY(!fill(real, "nan"));
        QVERIFY(!fill(real, "1.5"));
        QCOMPARE(real.value(), -0.25);

        QSlider slider;
        slider.setRange(0, 100);
        QVERIFY(fill(slider, "30") && slider.value() == 30);
        QVERIFY(!fill(slider, "101") && slider.value() == 30);
    }

    void boxesToChooseFrom()
    {
        QComboBox combo;
        combo.addItems({QStringLiteral("Root Recursive"), QStringLiteral("1"), QStringLiteral("Two")});
        QSignalSpy activated(&combo, QOverload<int>::of(&QComboBox::activated));
        QVERIFY(fill(combo, "root recursive") && combo.currentIndex() == 0);
        QVERIFY(fill(combo, "1") && combo.currentIndex() == 1);
        QVERIFY(fill(combo, "2") && combo.currentIndex() == 2);
        QCOMPARE(activated.count(), 3);
        QVERIFY(!fill(combo, "Three") && combo.currentIndex() == 2);
        QVERIFY2(says({"Three", "Root Recursive", "Two"}), qPrintable(m_error));
        QVERIFY(!fill(combo, "3"));
        qobject_cast<QStandardItemModel *>(combo.model())->item(0)->setEnabled(false);
        QVERIFY(!fill(combo, "Root Recursive") && says({"disabled"}));
        combo.setEditable(true);
        QVERIFY(fill(combo, "Three"));
        QCOMPARE(combo.currentText(), QStringLiteral("Three"));
    }

    void buttons()
    {
        QCheckBox check;
        QSignalSpy clicked(&check, &QCheckBox::clicked);
        QVERIFY(fill(check, "true") && check.isChecked());
        QVERIFY(fill(check, "True") && check.isChecked());
        QCOMPARE(clicked.count(), 1);
        QVERIFY(fill(check, "0") && !check.isChecked());
        QVERIFY(!fill(check, "perhaps") && says({"perhaps", "true or false"}));

        QWidget group;
        QRadioButton one(&group), other(&group);
        QVERIFY(fill(one, "true") && fill(other, "true"));
        QVERIFY(other.isChecked() && !one.isChecked());
        QVERIFY(!fill(other, "false") && other.isChecked());

        QPushButton push;
        QSignalSpy pushed(&push, &QPushButton::clicked);
        QVERIFY(fill(push, "false"));
        QCOMPARE(pushed.count(), 0);
        QVERIFY(fill(push, "true"));
        QCOMPARE(pushed.count(), 1);

        QGroupBox box;
        box.setCheckable(true);
        box.setChecked(false);
        QVERIFY(fill(box, "true") && box.isChecked());
    }

    void lists()
    {
        QListWidget list;
        list.addItems({QStringLiteral("hip"), QStringLiteral("abdomen"), QStringLiteral("a, b")});
        QSignalSpy clicked(&list, &QListWidget::itemClicked);
        QVERIFY(fill(list, "abdomen"));
        QCOMPARE(list.currentItem()->text(), QStringLiteral("abdomen"));
        QCOMPARE(list.selectedItems().size(), 1);
        QCOMPARE(clicked.count(), 1);
        QVERIFY(!fill(list, "head"));
        QVERIFY2(says({"head", "hip", "abdomen"}), qPrintable(m_error));
        QVERIFY(!fill(list, "hip,abdomen"));
        list.setSelectionMode(QAbstractItemView::ExtendedSelection);
        QVERIFY(fill(list, "hip, abdomen"));
        QCOMPARE(list.selectedItems().size(), 2);
        QVERIFY(fill(list, "a, b"));
        QCOMPARE(list.selectedItems().size(), 1);
        QCOMPARE(list.currentItem()->text(), QStringLiteral("a, b"));
        list.item(0)->setFlags(Qt::ItemIsSelectable);
        QVERIFY(!fill(list, "hip") && says({"disabled"}));
    }

    void trees()
    {
        QTreeWidget tree;
        tree.setColumnCount(2);
        auto *hip = new QTreeWidgetItem(&tree, {QStringLiteral("hip"), QStringLiteral("Hip")});
        auto *left = new QTreeWidgetItem(hip, {QStringLiteral("left"), QStringLiteral("Left Thigh")});
        auto *foot = new QTreeWidgetItem(left, {QStringLiteral("foot"), QString()});
        auto *right = new QTreeWidgetItem(hip, {QStringLiteral("right"), QStringLiteral("Right Thigh")});
        auto *otherFoot = new QTreeWidgetItem(right, {QStringLiteral("foot"), QString()});
        QVERIFY(fill(tree, "left") && tree.currentItem() == left);
        QVERIFY(fill(tree, "Right Thigh") && tree.currentItem() == right);
        QVERIFY(!fill(tree, "foot") && tree.currentItem() == right);
        QVERIFY2(says({"hip/left/foot", "hip/right/foot"}), qPrintable(m_error));
        QVERIFY(fill(tree, "hip/left/foot") && tree.currentItem() == foot);
        QVERIFY(fill(tree, "right/foot") && tree.currentItem() == otherFoot);
        QVERIFY(left->isExpanded());
    }

    void tabsAndTexts()
    {
        QTabWidget tabs;
        tabs.addTab(new QWidget, QStringLiteral("&Colors"));
        tabs.addTab(new QWidget, QStringLiteral("Sizes"));
        QVERIFY(fill(tabs, "Sizes") && tabs.currentIndex() == 1);
        QVERIFY(fill(tabs, "Colors") && tabs.currentIndex() == 0);
        QVERIFY(!fill(tabs, "Shapes") && says({"Colors", "Sizes"}));
        QPlainTextEdit text;
        QVERIFY(fill(text, "a\nb") && text.toPlainText() == QLatin1String("a\nb"));
        text.setReadOnly(true);
        QVERIFY(!fill(text, "c") && text.toPlainText() == QLatin1String("a\nb"));
    }

    void widgetsOfParts()
    {
        AngleWidget angle;
        QVERIFY(fill(angle, "1.5"));
        QCOMPARE(angle.m_angle, 1.5);
        QVERIFY(!fill(angle, "wide"));
        QCOMPARE(angle.m_angle, 1.5);
        QWidget outer;
        QVERIFY(!fill(outer, "1"));
        auto *spin = new QSpinBox(&outer);
        QVERIFY(fill(outer, "5"));
        QCOMPARE(spin->value(), 5);
        new QLineEdit(&outer);
        QVERIFY(!fill(outer, "6"));
        QCOMPARE(spin->value(), 5);
    }

    void fieldsByName()
    {
        QWidget window;
        QLineEdit first(&window), second(&window);
        QWidget page(&window);
        QLineEdit third(&page);
        for (QLineEdit *edit : {&first, &second, &third})
            edit->setObjectName(QStringLiteral("XLed"));
        QLineEdit odd(&window);
        odd.setObjectName(QStringLiteral("odd#2"));
        QCOMPARE(RyDialogFields::find(&window, QStringLiteral("XLed")), static_cast<QWidget *>(&first));
        QCOMPARE(RyDialogFields::find(&window, QStringLiteral("XLed#1")), static_cast<QWidget *>(&first));
        QCOMPARE(RyDialogFields::find(&window, QStringLiteral("XLed#2")), static_cast<QWidget *>(&second));
        QCOMPARE(RyDialogFields::find(&window, QStringLiteral("XLed#3")), static_cast<QWidget *>(&third));
        QCOMPARE(RyDialogFields::find(&window, QStringLiteral("odd#2")), static_cast<QWidget *>(&odd));
        for (const char *wrong : {"XLed#4", "XLed#0", "xled", "", "XLed#x"})
            QVERIFY2(!RyDialogFields::find(&window, QString::fromLatin1(wrong)), wrong);
        QCOMPARE(RyDialogFields::describe(&window),
                 (QStringList{QStringLiteral("XLed (text)"), QStringLiteral("XLed#2 (text)"),
                              QStringLiteral("XLed#3 (text)"), QStringLiteral("odd#2 (text)")}));
    }
};

RY_TEST(RyWidgetFillingTest)
#include "tst_RyWidgetFilling.moc"
