#include "support/RyTest.h"

#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"

#include <QMetaMethod>
#include <QMetaProperty>

/// What others see of the builder through its meta-object.
class MapBuilderInterfaceTest : public QObject
{
    Q_OBJECT

private slots:
    void twoFunctions()
    {
        const QMetaObject &its = RyBindingToSelectionMapBuilder::staticMetaObject;
        QCOMPARE(its.superClass(), &RyBase::staticMetaObject);
        QStringList methods;
        for (int i = its.methodOffset(); i < its.methodCount(); ++i) {
            const QMetaMethod method = its.method(i);
            QCOMPARE(method.methodType(), QMetaMethod::Method);
            QCOMPARE(method.access(), QMetaMethod::Public);
            methods.append(QString::fromLatin1(method.typeName()) + ' ' +
                           QString::fromLatin1(method.methodSignature()));
        }
        QCOMPARE(methods, QStringList({"RyError buildSelectionMap(RyFigure*)", "QString getLastError()"}));
        QCOMPARE(its.enumeratorCount(), its.enumeratorOffset());
        QCOMPARE(its.classInfoCount(), its.classInfoOffset());
    }

    void threeProperties()
    {
        const QMetaObject &its = RyBindingToSelectionMapBuilder::staticMetaObject;
        const char *const names[] = {"allowRegrouping", "maintainExistingSelectionMappings", "respectBoneSelectable"};
        QCOMPARE(its.propertyCount() - its.propertyOffset(), 3);
        RyBindingToSelectionMapBuilder builder;
        for (int i = 0; i < 3; ++i) {
            const QMetaProperty property = its.property(its.propertyOffset() + i);
            QCOMPARE(property.name(), names[i]);
            QCOMPARE(int(property.type()), int(QMetaType::Bool));
            QVERIFY(property.isReadable() && property.isWritable());
            QCOMPARE(property.read(&builder), QVariant(true));
        }
        for (int i = 0; i < 3; ++i) {
            QVERIFY(builder.setProperty(names[i], false));
            for (int k = 0; k < 3; ++k)
                QCOMPARE(builder.property(names[k]), QVariant(k != i));
            QVERIFY(builder.setProperty(names[i], true));
            QCOMPARE(builder.property(names[i]), QVariant(true));
        }
    }

    void nothingToTellAtFirst() { QCOMPARE(RyBindingToSelectionMapBuilder().getLastError(), QString()); }
};

RY_TEST(MapBuilderInterfaceTest)

#include "tst_mapBuilderInterface.moc"
