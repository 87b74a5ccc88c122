#include "support/RyTest.h"

#include "ryhost/batch/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

/// The text is the one that QJsonDocument writes.
class JsonTextTest : public QObject
{
    Q_OBJECT

    static QByteArray textOf(const QJsonValue &value)
    {
        JsonText json;
        json.add(value);
        return json.takeText();
    }
    static QByteArray textOf(double number)
    {
        JsonText json;
        json.beginArray();
        json.add(number);
        json.endArray();
        return json.takeText();
    }
    static QByteArray expected(double number) { return QJsonDocument(QJsonArray{number}).toJson(); }

private slots:
    void numbers()
    {
        std::vector<double> numbers{0.0,
                                    -0.0,
                                    1.0,
                                    -1.0,
                                    0.5,
                                    1e-3,
                                    9.999e-4,
                                    1e-4,
                                    1e-5,
                                    1e-300,
                                    1e5,
                                    99999,
                                    1e6,
                                    1e9,
                                    -1e9,
                                    1e10,
                                    1e15,
                                    1e16,
                                    1e17,
                                    1e21,
                                    1e22,
                                    1e300,
                                    4.5e15,
                                    1.0e-7,
                                    99999.5,
                                    100000.5,
                                    12345678,
                                    1e9 - 1,
                                    2147483648.0,
                                    9007199254740993.0,
                                    18446744073709551616.0,
                                    0.1,
                                    double(0.1f),
                                    1.0 / 3.0,
                                    123456.789,
                                    std::nextafter(1e5, 0.0),
                                    std::nextafter(1e-3, 0.0),
                                    std::numeric_limits<double>::infinity(),
                                    std::numeric_limits<double>::quiet_NaN(),
                                    std::numeric_limits<double>::denorm_min(),
                                    std::numeric_limits<double>::max()};
        std::mt19937_64 random(ryTestSeed());
        for (int i = 0; i < 20000; ++i) {
            const quint64 bits = random();
            double any;
            std::memcpy(&any, &bits, sizeof(any));
            numbers.push_back(any);
            // As single precision, which is what a scene holds, of all sizes that figures have.
            const double size = std::pow(10.0, double(bits % 1200) / 100.0 - 6.0);
            numbers.push_back(double(float(size)));
            numbers.push_back(-size);
            numbers.push_back(double(qint64(bits >> (bits % 60))));
        }
        for (const double number : numbers)
            QCOMPARE(textOf(number), expected(number));
    }

    void texts()
    {
        QStringList texts{QString(),
                          QStringLiteral(""),
                          QStringLiteral("lForearm"),
                          QStringLiteral("a \"b\" \\ /"),
                          QStringLiteral("tab\tline\nreturn\rback\bfeed\f"),
                          QStringLiteral("Gr\u00fc\u00dfe \u20ac \u9aa8"),
                          QString::fromUtf8("bone \xf0\x9f\xa6\xb4"),
                          QString(QChar(0xd83e)),
                          QString(QChar(0xdd34)) + "a",
                          QString(QChar(0x1f)),
                          QString(QChar(0)) + QChar(0x1f) + QChar(0x7f) + QChar(0x80) + QChar(0xffff)};
        for (const QString &text : texts) {
            const QJsonArray list{text, 1, text};
            QCOMPARE(textOf(list), QJsonDocument(list).toJson());
        }
    }

    void listsWithinLists()
    {
        const QJsonObject untidy{{QStringLiteral("empty list"), QJsonArray()},
                                 {QStringLiteral("empty object"), QJsonObject()},
                                 {QStringLiteral("a \"key\"\n"),
                                  QJsonArray{QJsonArray(), QJsonArray{1, true, false, QJsonValue()}, QJsonObject()}},
                                 {QStringLiteral("within"),
                                  QJsonObject{{QStringLiteral("n"), QJsonValue()},
                                              {QStringLiteral("list"), QJsonArray{QJsonObject{{"x", 0.25}}, "t"}}}}};
        QCOMPARE(textOf(untidy), QJsonDocument(untidy).toJson());
        QCOMPARE(textOf(QJsonObject()), QJsonDocument(QJsonObject()).toJson());
    }

    void valuesOneByOne()
    {
        JsonText json;
        json.beginObject();
        json.add(QLatin1String("count"), 3);
        json.key(QLatin1String("list"));
        json.beginArray();
        json.beginObject();
        json.add(QLatin1String("name"), QStringLiteral("hip"));
        json.add(QLatin1String("place"), QJsonArray{0.5, -1});
        json.endObject();
        json.beginArray();
        json.endArray();
        json.endArray();
        json.add(QLatin1String("yes"), true);
        json.endObject();
        const QJsonObject same{
            {"count", 3},
            {"list", QJsonArray{QJsonObject{{"name", "hip"}, {"place", QJsonArray{0.5, -1}}}, QJsonArray()}},
            {"yes", true}};
        QCOMPARE(json.takeText(), QJsonDocument(same).toJson());
    }
};

RY_TEST(JsonTextTest)
#include "tst_JsonText.moc"
