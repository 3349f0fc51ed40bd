#include "velm/CrossDotRotate.h"

#include <gtest/gtest.h>

#include <cmath>

#include "RandomSeed.h"

namespace velm {
namespace {

using Vector = CrossDotRotate::_Vector3D;

void ExpectNear(const Vector& actual, const Vector& expected, float tolerance = 1e-6F) {
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

TEST(CrossDotRotate, ScalesVectorsThatAreTooShortWithoutCallingThemNormal) {
    static const struct {
        Vector v;
        int result;
        Vector normal;
    } kCases[] = {
        {{3, 0, 4}, 1, {0.6F, 0, 0.8F}}, {{0, 0.001F, 0}, 1, {0, 1, 0}}, {{0.0005F, 0, 0}, 0, {0.5F, 0, 0}}};
    for (const auto& at : kCases) {
        Vector v = at.v;
        EXPECT_EQ(CrossDotRotate().Normalize(&v), at.result);
        ExpectNear(v, at.normal);
    }
}

TEST(CrossDotRotate, MultipliesInTheRightHandedOrder) {
    CrossDotRotate rotate;
    Vector a = {1, 2, 3};
    Vector b = {-2, 5, 7};
    Vector out;
    EXPECT_EQ(rotate.CrossEx(&a, &b, &out), std::sqrt(1.0F + 169.0F + 81.0F));
    ExpectNear(out, {-1, -13, 9}, 0);
    EXPECT_EQ(rotate.Dot(&a, &b), 29.0F);
    rotate.Sub(&a, &b, &out);
    ExpectNear(out, {3, -3, -4}, 0);
    rotate.AdjustNormalizedOrthogonalVector(&a, &b);
    EXPECT_NEAR(rotate.Dot(&a, &b), 0, 1e-6F);
    EXPECT_NEAR(rotate.Amplitude(&a), 1, 1e-6F);
    EXPECT_NEAR(rotate.Amplitude(&b), 1, 1e-6F);
    EXPECT_GT(a.x, 0.0F);  // on the side that it was on
}

TEST(CrossDotRotate, DividesByNoZeroLength) {
    static const struct {
        Vector a, b;
        float cosine, sine;
    } kCases[] = {{{1, 1, 0}, {1, 0, 0}, 0.70710678F, 0.70710678F},
                  {{0, 2, 0}, {0, -3, 0}, -1, 0},
                  {{0, 0, 0}, {1, 0, 0}, 0, 0}};
    for (auto at : kCases) {
        EXPECT_NEAR(CrossDotRotate().GetCosSita(&at.a, &at.b), at.cosine, 1e-6F);
        EXPECT_NEAR(CrossDotRotate().GetSinSita(&at.a, &at.b), at.sine, 1e-6F);
    }
}

TEST(CrossDotRotate, TurnsOneVectorTowardsAnother) {
    static const struct {
        Vector from, to;
        float ratio;
        int result;
        Vector turned;  // what (1, 0, 0) becomes
    } kCases[] = {{{1, 0, 0}, {1, 1, 0}, -0.5F, 1, {0.89442719F, -0.44721360F, 0}},
                  {{1, 0, 0}, {-1, 1, 0}, 0, 1, {-1, 0, 0}},
                  {{1, 0, 0}, {-2, 0, 0}, 1, 0, {1, 0, 0}},  // no axis
                  {{0, 0, 1}, {0, 1, 0}, 0, 0, {1, 0, 0}}};  // no angle
    Vector center = {0, 0, 0};
    for (auto at : kCases) {
        CrossDotRotate rotate;
        EXPECT_EQ(rotate.SetRotatoVector(&at.from, &at.to, &center, at.ratio), at.result);
        const CrossDotRotate copy = rotate;
        rotate = copy;
        Vector point = {1, 0, 0};
        rotate.Rotato(&point);
        ExpectNear(point, at.turned);
    }
}

/// Against matrices in double precision, of which the single-precision result may differ by rounding only.
TEST(CrossDotRotate, AgreesWithARotationMatrix) {
    std::mt19937 random = test::SeededRandom();
    std::uniform_real_distribution<float> uniform(-1, 1);
    const auto vector = [&] { return Vector{uniform(random), uniform(random), uniform(random)}; };
    for (int round = 0; round < 1000; ++round) {
        Vector axis = vector();
        axis.z += 1.5F;
        Vector center = vector();
        Vector point = vector();
        const double length = std::hypot(axis.x, axis.y, axis.z);
        const double n[3] = {axis.x / length, axis.y / length, axis.z / length};
        const double p[3] = {point.x - center.x, point.y - center.y, point.z - center.z};
        const double angle = 3.0 * uniform(random);
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double skew[3][3] = {{0, -n[2], n[1]}, {n[2], 0, -n[0]}, {-n[1], n[0], 0}};
        double turned[3] = {center.x, center.y, center.z};
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                turned[i] += ((i == j ? c : 0) + s * skew[i][j] + (1 - c) * n[i] * n[j]) * p[j];
            }
        }
        CrossDotRotate rotate;
        ASSERT_EQ(rotate.SetParam(&axis, &center, static_cast<float>(5 * c), static_cast<float>(5 * s)), 1);
        rotate.Rotato(&point);
        EXPECT_NEAR(point.x, turned[0], 2e-6);
        EXPECT_NEAR(point.y, turned[1], 2e-6);
        EXPECT_NEAR(point.z, turned[2], 2e-6);
    }
}

}  // namespace
}  // namespace velm
