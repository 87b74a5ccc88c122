#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"

#include <QAccessible>
#include <QSet>

/// What a screen reader finds in the window.
class AccessibleWindowTest : public QObject, private WindowStage
{
    Q_OBJECT
public:
    AccessibleWindowTest() : WindowStage(Plugins::All) {}

private slots:
    void everyControlHasAName()
    {
        QVERIFY(open());
        m_scene->setSelection({m_scene->findNode(QStringLiteral("lForearm"))});
        settle();
        walk(QAccessible::queryAccessibleInterface(m_window.get()), {});
        QVERIFY2(m_nameless.isEmpty(), qPrintable(QLatin1Char('\n') + m_nameless.join(QLatin1Char('\n'))));
        // The walk came as far as the tool's settings and the panes of the host.
        QVERIFY2(m_controls > 120, qPrintable(QString::number(m_controls)));
        for (const char *name : {"Node", "Selection Group", "Parameter", "Rotation Order", "Center Point X Position",
                                 "Orientation Z Rotation", "Inherit Parent Scale", "General", "Bulges", "Fold away",
                                 "Visible Bones", "Manipulators"})
            QVERIFY2(m_names.contains(QLatin1String(name)), name);
        close();
    }

private:
    static bool isControl(QAccessible::Role role)
    {
        switch (role) {
        case QAccessible::PushButton:
        case QAccessible::CheckBox:
        case QAccessible::RadioButton:
        case QAccessible::ComboBox:
        case QAccessible::EditableText:
        case QAccessible::Slider:
        case QAccessible::SpinBox:
        case QAccessible::Tree:
        case QAccessible::TreeItem:
        case QAccessible::List:
        case QAccessible::ListItem:
        case QAccessible::Table:
        case QAccessible::Cell:
        case QAccessible::ColumnHeader:
        case QAccessible::PageTab:
        case QAccessible::MenuItem:
        case QAccessible::ButtonDropDown:
        case QAccessible::ButtonMenu:
            return true;
        default:
            return false;
        }
    }
    void walk(QAccessibleInterface *control, QStringList way)
    {
        if (!control || !control->isValid() || control->state().invisible)
            return;
        const QString name = control->text(QAccessible::Name);
        const QObject *object = control->object();
        way.append(QStringLiteral("%1 \"%2\" (%3)")
                       .arg(QLatin1String(qAccessibleRoleString(control->role())), name,
                            object ? object->objectName() : QString()));
        if (isControl(control->role())) {
            ++m_controls;
            m_names.insert(name);
            if (name.trimmed().isEmpty())
                m_nameless.append(way.mid(way.size() - 4).join(QLatin1String(" / ")));
        }
        for (int i = 0; i < control->childCount(); ++i)
            walk(control->child(i), way);
    }

    int m_controls = 0;
    QSet<QString> m_names;
    QStringList m_nameless;
};

RY_TEST(AccessibleWindowTest)
#include "tst_accessibleWindow.moc"
