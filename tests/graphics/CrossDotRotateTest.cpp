#include "velm/CrossDotRotate.h"

#include <gtest/gtest.h>

namespace velm::cross_dot_rotate_test {

using Vector = CrossDotRotate::_Vector3D;

void ExpectNear(const Vector& actual, const Vector& expected) {
    EXPECT_NEAR(actual.x, expected.x, 1e-6F);
    EXPECT_NEAR(actual.y, expected.y, 1e-6F);
    EXPECT_NEAR(actual.z, expected.z, 1e-6F);
}

TEST(CrossDotRotate, NeverDividesByShortLengths) {
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
    v = {3e19F, 0, 0};  // its square overflows
    EXPECT_EQ(rotate.Normalize(&v), 1);
    ExpectNear(v, {0, 0, 0});
    b = {0, 3, 0};
    rotate.AdjustNormalizedOrthogonalVector(&a, &b);
    ExpectNear(a, {1, 0, 0});  // on its side
    ExpectNear(b, {0, 1, 0});
}

TEST(CrossDotRotate, RotatesAPointAboutAnAxis) {
    const struct {
        const char* what;
        Vector axis, center;
        float cosValue, sinValue;
        int result;
        Vector rotated;  // from (1, 2, 3)
    } rows[] = {
        {"a third about the diagonal", {1, 1, 1}, {0, 0, 0}, -0.5F, 0.8660254F, 1, {3, 1, 2}},
        {"a quarter about z through the center", {0, 0, 2}, {3, 1, 4}, 0, 5, 1, {2, -1, 3}},
        {"half about x", {0.001F, 0, 0}, {5, 4, 3}, -7, 0, 1, {1, 6, 3}},
        {"too short an axis", {0.0005F, 0, 0}, {0, 0, 0}, 0, 1, 0, {1, 2, 3}},
        {"no angle", {0, 1, 0}, {0, 0, 0}, 0, 0, 0, {1, 2, 3}},
    };
    for (auto row : rows) {
        SCOPED_TRACE(row.what);
        CrossDotRotate rotate;
        Vector point = {1, 2, 3};
        rotate.Rotato(&point);  // no effect: no rotation is set
        EXPECT_EQ(rotate.SetParam(&row.axis, &row.center, row.cosValue, row.sinValue), row.result);
        rotate.Rotato(&point);
        ExpectNear(point, row.rotated);
    }
}

TEST(CrossDotRotate, RotatesOneVectorTowardsAnother) {
    CrossDotRotate rotate;
    Vector from = {2, 0, 0};
    Vector to = {1, 1, 0};
    Vector center = {0, 0, 0};
    Vector point = {1, 0, 0};
    EXPECT_EQ(rotate.SetRotatoVector(&from, &to, &center, -0.5F), 1);
    rotate.Rotato(&point);
    ExpectNear(point, {0.89442719F, -0.44721360F, 0});
}

}  // namespace velm::cross_dot_rotate_test
