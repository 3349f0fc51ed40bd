#include "velm/CrossDotRotate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "RandomSeed.h"

namespace velm {
namespace {

using Vector = CrossDotRotate::_Vector3D;

void ExpectNear(const Vector& actual, const Vector& expected) {
    EXPECT_NEAR(actual.x, expected.x, 1e-6F);
    EXPECT_NEAR(actual.y, expected.y, 1e-6F);
    EXPECT_NEAR(actual.z, expected.z, 1e-6F);
}

TEST(CrossDotRotate, DividesByNoLengthThatIsTooShort) {
    CrossDotRotate rotate;
    Vector a = {2, 2, 0};
    Vector b = {-3, 0, 0};
    Vector zero = {0, 0, 0};
    EXPECT_NEAR(rotate.GetCosSita(&a, &b), -0.70710678F, 1e-6F);
    EXPECT_NEAR(rotate.GetSinSita(&a, &b), 0.70710678F, 1e-6F);
    EXPECT_EQ(rotate.GetCosSita(&a, &zero), 0.0F);
    EXPECT_EQ(rotate.GetSinSita(&a, &zero), 0.0F);
    Vector v = {0, 0.001F, 0};
    EXPECT_EQ(rotate.Normalize(&v), 1);
    ExpectNear(v, {0, 1, 0});
    v = {0.0005F, 0, 0};
    EXPECT_EQ(rotate.Normalize(&v), 0);
    ExpectNear(v, {0.5F, 0, 0});
}

TEST(CrossDotRotate, MakesVectorsOrthogonalOnTheSideThatTheyWereOn) {
    CrossDotRotate rotate;
    Vector a = {1, 2, 3};
    Vector b = {-2, 5, 7};
    rotate.AdjustNormalizedOrthogonalVector(&a, &b);
    EXPECT_NEAR(rotate.Dot(&a, &b), 0, 1e-6F);
    EXPECT_NEAR(rotate.Amplitude(&a), 1, 1e-6F);
    EXPECT_NEAR(rotate.Amplitude(&b), 1, 1e-6F);
    EXPECT_GT(a.x, 0.0F);
}

TEST(CrossDotRotate, TurnsOneVectorTowardsAnother) {
    // The last is what (1, 0, 0) becomes.
    const std::tuple<Vector, Vector, float, int, Vector> cases[] = {
        {{1, 0, 0}, {1, 1, 0}, -0.5F, 1, {0.89442719F, -0.44721360F, 0}},
        {{1, 0, 0}, {-1, 1, 0}, 0.0F, 1, {-1, 0, 0}},
        {{1, 0, 0}, {-2, 0, 0}, 1.0F, 0, {1, 0, 0}},  // no axis
        {{0, 0, 1}, {0, 1, 0}, 0.0F, 0, {1, 0, 0}},   // no angle
    };
    Vector center = {0, 0, 0};
    for (auto [from, to, ratio, result, turned] : cases) {
        CrossDotRotate rotate;
        Vector point = {1, 0, 0};
        rotate.Rotato(&point);  // which leaves it alone, as there is no rotation yet
        EXPECT_EQ(rotate.SetRotatoVector(&from, &to, &center, ratio), result);
        const CrossDotRotate copy = rotate;
        rotate = copy;
        rotate.Rotato(&point);
        ExpectNear(point, turned);
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
