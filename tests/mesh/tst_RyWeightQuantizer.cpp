#include "rycore/mesh/RyWeightQuantizer.h"

#include "support/RyTest.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

using RyWeightQuantizer::LargestTakesRest;
using RyWeightQuantizer::Rounding;

/// Weights as whole numbers: the two rules against what they promise, in exact arithmetic.
class RyWeightQuantizerTest : public QObject
{
    Q_OBJECT
private slots:
    void largestTakesRest_data();
    void largestTakesRest();
    void sharesInSinglePrecision();
    void equalWeightsNeverTakeTooMuch();
    void restGoesToTheMostRounded();
    void fourAtOnceAsOneByOne();
    void knownNumbers();
};

namespace {

constexpr qint64 Full = 65535;

/// Few or many weights, with zeros and equal ones among them, and one above zero.
std::vector<quint64> randomWeights(std::mt19937 &random, size_t most)
{
    std::vector<quint64> weights(1 + random() % most);
    const quint64 limits[4] = {2, 5, 1000, 65536};
    const quint64 limit = limits[random() % 4];
    for (quint64 &weight : weights)
        weight = random() % limit;
    weights[random() % weights.size()] += 1;
    return weights;
}

template<class Weight>
std::vector<quint16> byLargest(const std::vector<Weight> &weights, Weight sum, Rounding rounding)
{
    LargestTakesRest<Weight> quantizer(sum, rounding);
    for (size_t i = 0; i < weights.size(); ++i)
        quantizer.add(i, weights[i]);
    std::vector<quint16> result(weights.size());
    for (size_t i = weights.size(); i-- > 0;)
        result[i] = quantizer.quantized(i, weights[i]);
    return result;
}

qint64 sumOf(const std::vector<quint16> &weights)
{
    return std::accumulate(weights.begin(), weights.end(), qint64(0));
}

} // namespace

void RyWeightQuantizerTest::largestTakesRest_data()
{
    QTest::addColumn<bool>("down");
    QTest::newRow("nearest") << false;
    QTest::newRow("down") << true;
}

void RyWeightQuantizerTest::largestTakesRest()
{
    QFETCH(const bool, down);
    std::mt19937 random(ryTestSeed());
    for (int round = 0; round < 5000; ++round) {
        const std::vector<quint64> weights =
            randomWeights(random, round % 2 == 0 ? 6 : RyWeightQuantizer::MostToNearest);
        const auto sum = std::accumulate(weights.begin(), weights.end(), quint64(0));
        const std::vector<quint16> result = byLargest(weights, sum, down ? Rounding::Down : Rounding::Nearest);
        QCOMPARE(sumOf(result), Full);
        const auto largest = size_t(std::max_element(weights.begin(), weights.end()) - weights.begin());
        for (size_t i = 0; i < weights.size(); ++i) {
            if (i == largest)
                continue;
            // Twice the true value, and twice what stands in its place, times the sum.
            const qint64 wanted = 2 * qint64(weights[i]) * Full;
            const qint64 got = 2 * qint64(result[i]) * qint64(sum);
            const qint64 above = wanted - got;
            if (down)
                QVERIFY(above >= 0 && above < 2 * qint64(sum));
            else
                QVERIFY(above >= -qint64(sum) && above < qint64(sum));
        }
    }
}

void RyWeightQuantizerTest::sharesInSinglePrecision()
{
    std::mt19937 random(ryTestSeed());
    std::uniform_real_distribution<float> share(0.0f, 3.0f);
    for (int round = 0; round < 2000; ++round) {
        std::vector<float> weights(1 + random() % 4);
        for (float &weight : weights)
            weight = share(random);
        weights[0] += 0.01f;
        const float sum = std::accumulate(weights.begin(), weights.end(), 0.0f);
        const std::vector<quint16> result = byLargest(weights, sum, Rounding::Nearest);
        QCOMPARE(sumOf(result), Full);
        const auto largest = size_t(std::max_element(weights.begin(), weights.end()) - weights.begin());
        for (size_t i = 0; i < weights.size(); ++i) {
            const long double wanted = static_cast<long double>(weights[i]) / sum * Full;
            QVERIFY(i == largest || std::abs(wanted - result[i]) < 0.51L);
        }
    }
}

void RyWeightQuantizerTest::equalWeightsNeverTakeTooMuch()
{
    for (size_t count = 1; count <= RyWeightQuantizer::MostToNearest; ++count) {
        const std::vector<quint64> weights(count, 7);
        const std::vector<quint16> result = byLargest(weights, quint64(7 * count), Rounding::Nearest);
        QCOMPARE(sumOf(result), Full);
        QVERIFY(std::all_of(result.begin() + 1, result.end(), [&](quint16 other) { return other == result.back(); }));
    }
}

void RyWeightQuantizerTest::restGoesToTheMostRounded()
{
    std::mt19937 random(ryTestSeed());
    for (int round = 0; round < 5000; ++round) {
        const std::vector<quint64> whole = randomWeights(random, round % 2 == 0 ? 6 : 900);
        std::vector<double> weights;
        for (const quint64 weight : whole)
            weights.push_back(double(weight) / 16.0); // without a loss
        const auto sum = std::accumulate(whole.begin(), whole.end(), quint64(0));
        std::vector<quint16> result(weights.size());
        const int largest =
            RyWeightQuantizer::spreadRest(weights.data(), int(weights.size()), double(sum) / 16.0, result.data());
        QCOMPARE(sumOf(result), Full);
        QCOMPARE(size_t(largest), size_t(std::max_element(whole.begin(), whole.end()) - whole.begin()));
        // How far above the result the true value is.
        long double highest = -2.0L, lowest = 2.0L;
        for (size_t i = 0; i < whole.size(); ++i) {
            const long double above = static_cast<long double>(whole[i]) * Full / sum - result[i];
            QVERIFY(std::abs(above) < 1.0L);
            highest = std::max(highest, above);
            lowest = std::min(lowest, above);
        }
        QVERIFY(highest - lowest <= 1.0L + 1e-9L); // nobody could give one to another and both be nearer
    }
}

void RyWeightQuantizerTest::fourAtOnceAsOneByOne()
{
    std::mt19937 random(ryTestSeed());
    std::uniform_real_distribution<float> share(0.0f, 1.0f);
    int rests = 0;
    for (int round = 0; round < 200000; ++round) {
        float weights[4];
        for (float &weight : weights) {
            switch (random() % 8) {
            case 0:
                weight = 0.0f;
                break;
            case 1:
                weight = 0.25f;
                break;
            case 2: // halves after scaling, which round to more than there is
                weight = (float(random() % 1000) + 0.5f) / 65535.0f;
                break;
            case 3:
                weight = std::ldexp(share(random), int(random() % 250) - 125);
                break;
            default:
                weight = share(random);
            }
        }
        double doubles[4];
        double sum = 0.0;
        for (int i = 0; i < 4; ++i)
            sum += doubles[i] = double(weights[i]);
        if (sum == 0.0)
            continue;
        quint16 one[4], four[4];
        const int largest = RyWeightQuantizer::spreadRest(doubles, 4, sum, one);
        QCOMPARE(RyWeightQuantizer::spreadRestOfFour(weights, four), largest);
        QVERIFY(std::equal(one, one + 4, four));
        qint64 nearest = 0;
        for (const double weight : doubles)
            nearest += qint64(weight / sum * double(Full) + 0.5);
        rests += nearest != Full;
    }
    QVERIFY(rests > 10000);
}

void RyWeightQuantizerTest::knownNumbers()
{
    // 65535 / 13 = 5041.15: five parts are 25205.8, two are 10082.3.
    const std::vector<quint64> parts{2, 5, 5, 1};
    QCOMPARE(byLargest(parts, quint64(13), Rounding::Down), (std::vector<quint16>{10082, 25207, 25205, 5041}));
    QCOMPARE(byLargest(parts, quint64(13), Rounding::Nearest), (std::vector<quint16>{10082, 25206, 25206, 5041}));
    // Ten equal ones of 6553.5 round up to five too many, which the first five give back.
    const std::vector<double> equal(10, 0.25);
    std::vector<quint16> result(10);
    QCOMPARE(RyWeightQuantizer::spreadRest(equal.data(), 10, 2.5, result.data()), 0);
    QCOMPARE(result, (std::vector<quint16>{6553, 6553, 6553, 6553, 6553, 6554, 6554, 6554, 6554, 6554}));
    QCOMPARE(byLargest(std::vector<quint64>(10, 3), quint64(30), Rounding::Nearest),
             (std::vector<quint16>{6549, 6554, 6554, 6554, 6554, 6554, 6554, 6554, 6554, 6554}));
}

RY_TEST(RyWeightQuantizerTest)
#include "tst_RyWeightQuantizer.moc"
