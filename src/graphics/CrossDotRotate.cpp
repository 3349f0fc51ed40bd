#include "velm/CrossDotRotate.h"

#include <algorithm>
#include <cmath>

namespace velm {
namespace {

constexpr float kShortestLength = 0.001F;
constexpr float kSmallestDivisor = 1e-9F;

}  // namespace

CrossDotRotate::CrossDotRotate()
    : m_stAxis{},
      m_fCos(0),
      m_fSin(0),
      m_fCosSinZ(0),
      m_stCenter{},
      m_bValid(0),
      m_stRelative{},
      m_stParallel{},
      m_stPerpendicular{},
      m_stCross{},
      m_stRotated{} {
    Create();
}

CrossDotRotate::CrossDotRotate(const CrossDotRotate& other) = default;
CrossDotRotate& CrossDotRotate::operator=(const CrossDotRotate& other) = default;

CrossDotRotate::~CrossDotRotate() {
    Destory();
}

void CrossDotRotate::Create() {}

void CrossDotRotate::Destory() {}

void CrossDotRotate::SetZero(_Vector3D* v) {
    *v = {};
}

float CrossDotRotate::Power(_Vector3D* v) {
    return Dot(v, v);
}

float CrossDotRotate::Amplitude(_Vector3D* v) {
    return std::sqrt(Power(v));
}

int CrossDotRotate::Normalize(_Vector3D* v) {
    float length = Amplitude(v);
    int result = 1;
    if (length < kShortestLength) {
        result = 0;
        length = kShortestLength;
    }
    Mul(v, 1.0F / length, v);
    return result;
}

float CrossDotRotate::Dot(_Vector3D* a, _Vector3D* b) {
    return a->x * b->x + a->y * b->y + a->z * b->z;
}

void CrossDotRotate::Cross(_Vector3D* a, _Vector3D* b, _Vector3D* out) {
    out->x = a->y * b->z - a->z * b->y;
    out->y = a->z * b->x - a->x * b->z;
    out->z = a->x * b->y - a->y * b->x;
}

float CrossDotRotate::CrossEx(_Vector3D* a, _Vector3D* b, _Vector3D* out) {
    Cross(a, b, out);
    return Amplitude(out);
}

void CrossDotRotate::Add(_Vector3D* a, _Vector3D* b, _Vector3D* out) {
    out->x = a->x + b->x;
    out->y = a->y + b->y;
    out->z = a->z + b->z;
}

void CrossDotRotate::Sub(_Vector3D* a, _Vector3D* b, _Vector3D* out) {
    out->x = a->x - b->x;
    out->y = a->y - b->y;
    out->z = a->z - b->z;
}

void CrossDotRotate::Mul(_Vector3D* a, float s, _Vector3D* out) {
    out->x = s * a->x;
    out->y = s * a->y;
    out->z = s * a->z;
}

void CrossDotRotate::Copy(_Vector3D* src, _Vector3D* dst) {
    *dst = *src;
}

void CrossDotRotate::AdjustNormalizedOrthogonalVector(_Vector3D* a, _Vector3D* b) {
    _Vector3D normal;
    Cross(a, b, &normal);
    Cross(b, &normal, a);
    Normalize(a);
    Normalize(b);
}

float CrossDotRotate::GetCosSita(_Vector3D* a, _Vector3D* b) {
    return Dot(a, b) / std::max(std::sqrt(Power(a) * Power(b)), kSmallestDivisor);
}

float CrossDotRotate::GetSinSita(_Vector3D* a, _Vector3D* b) {
    _Vector3D normal;
    return CrossEx(a, b, &normal) / std::max(std::sqrt(Power(a) * Power(b)), kSmallestDivisor);
}

int CrossDotRotate::SetParam(_Vector3D* axis, _Vector3D* center, float cosValue, float sinValue) {
    _Vector3D pair = {cosValue, sinValue, 0};
    m_stAxis = *axis;
    m_stCenter = *center;
    const int axisResult = Normalize(&m_stAxis);
    const int pairResult = Normalize(&pair);
    m_fCos = pair.x;
    m_fSin = pair.y;
    m_fCosSinZ = pair.z;
    m_bValid = axisResult & pairResult;
    return m_bValid;
}

int CrossDotRotate::SetRotatoVector(_Vector3D* from, _Vector3D* to, _Vector3D* center, float ratio) {
    _Vector3D axis;
    const float sinValue = CrossEx(from, to, &axis) * ratio;
    return SetParam(&axis, center, Dot(from, to), sinValue);
}

/// Rodrigues' rotation formula: the component along the axis stays, the perpendicular one is rotated.
void CrossDotRotate::Rotato(_Vector3D* point) {
    if (m_bValid == 0) {
        return;
    }
    Sub(point, &m_stCenter, &m_stRelative);
    LikeDot();
    LikeCross();
    LikeCombine();
    Add(&m_stRotated, &m_stCenter, point);
}

void CrossDotRotate::LikeDot() {
    Mul(&m_stAxis, Dot(&m_stAxis, &m_stRelative), &m_stParallel);
    Sub(&m_stRelative, &m_stParallel, &m_stPerpendicular);
}

void CrossDotRotate::LikeCross() {
    Cross(&m_stAxis, &m_stPerpendicular, &m_stCross);
}

void CrossDotRotate::LikeCombine() {
    m_stRotated.x = m_fCos * m_stPerpendicular.x + m_fSin * m_stCross.x + m_stParallel.x;
    m_stRotated.y = m_fCos * m_stPerpendicular.y + m_fSin * m_stCross.y + m_stParallel.y;
    m_stRotated.z = m_fCos * m_stPerpendicular.z + m_fSin * m_stCross.z + m_stParallel.z;
}

}  // namespace velm
