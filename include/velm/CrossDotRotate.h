#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

/// Single-precision 3D vector operations, and rotation of points about an axis.
///
/// The vector operations do not change the object. SetParam or SetRotatoVector sets up a rotation, which
/// Rotato applies to any number of points. No pointer may be null.
/// Threads: one at a time per object.
class VELM_UTIL_API CrossDotRotate {
public:
    /// A vector, or a point.
    struct _Vector3D {
        float x;  ///< the x coordinate
        float y;  ///< the y coordinate
        float z;  ///< the z coordinate
    };

    /// Starts without a rotation.
    CrossDotRotate();
    /// @{
    /// Copies the rotation.
    CrossDotRotate(const CrossDotRotate& other);
    CrossDotRotate& operator=(const CrossDotRotate& other);
    /// @}
    ~CrossDotRotate();

    /// v = (0, 0, 0)
    void SetZero(_Vector3D* v);

    /// Returns the squared length.
    float Power(_Vector3D* v);

    /// Returns the length.
    float Amplitude(_Vector3D* v);

    /// Scales v to unit length. The squared length is computed in single precision: it overflows at a length
    /// of about 1.8e19, and v becomes 0; one NaN component makes all of them NaN. Both return 1.
    /// @return 1; 0 when v is shorter than 0.001 and is scaled by 1000 instead
    int Normalize(_Vector3D* v);

    /// Returns the dot product.
    float Dot(_Vector3D* a, _Vector3D* b);

    /// out = a x b
    /// @param out  neither a nor b
    void Cross(_Vector3D* a, _Vector3D* b, _Vector3D* out);

    /// out = a x b
    /// @param out  neither a nor b
    /// @return the length of out
    float CrossEx(_Vector3D* a, _Vector3D* b, _Vector3D* out);

    /// out = a + b
    void Add(_Vector3D* a, _Vector3D* b, _Vector3D* out);

    /// out = a - b
    void Sub(_Vector3D* a, _Vector3D* b, _Vector3D* out);

    /// out = s * a
    void Mul(_Vector3D* a, float s, _Vector3D* out);

    /// dst = src
    void Copy(_Vector3D* src, _Vector3D* dst);

    /// Replaces a by the unit vector of its component perpendicular to b, and scales b to unit length.
    /// @param b  not the same object as a
    void AdjustNormalizedOrthogonalVector(_Vector3D* a, _Vector3D* b);

    /// Returns the cosine of the angle between a and b; 0 when one of them is zero, too small when the
    /// product of their lengths is below 1e-9.
    float GetCosSita(_Vector3D* a, _Vector3D* b);

    /// Returns the sine of the angle between a and b, never negative; 0 when one of them is zero, too small
    /// when the product of their lengths is below 1e-9.
    float GetSinSita(_Vector3D* a, _Vector3D* b);

    /// Sets up a rotation; a positive sine rotates counter-clockwise, seen from the tip of the axis.
    /// @param axis  its length must be between 0.001 and 1.8e19
    /// @param center  a point on the axis
    /// @param cosValue, sinValue  of the angle, or both scaled by the same positive factor; the length limits
    ///        of `axis` apply to the pair
    /// @return 1; 0 when the axis or the pair is shorter than 0.001: Rotato then does nothing. Excessive
    ///         lengths and NaN are not detected and make Rotato's results meaningless.
    int SetParam(_Vector3D* axis, _Vector3D* center, float cosValue, float sinValue);

    /// Sets up the rotation from the direction of one vector to that of another.
    /// @param center  a point on the axis
    /// @param ratio  scales the sine before sine and cosine are normalized as a pair; 1 rotates by the full
    ///               angle, a negative ratio in the opposite direction
    /// @return 1; 0 when the vectors are parallel, opposite or too short: Rotato then does nothing
    int SetRotatoVector(_Vector3D* from, _Vector3D* to, _Vector3D* center, float ratio);

    /// Rotates a point in place; does nothing without a rotation.
    void Rotato(_Vector3D* point);

private:
    void Create();
    void Destory();
    void LikeDot();
    void LikeCross();
    void LikeCombine();

    _Vector3D m_stAxis;  // of unit length
    float m_fCos;
    float m_fSin;
    float m_fCosSinZ;  // third component of (cos, sin, 0), the vector that Normalize scales
    _Vector3D m_stCenter;
    int m_bValid;
    // Intermediate values of the latest Rotato.
    _Vector3D m_stRelative;
    _Vector3D m_stParallel;
    _Vector3D m_stPerpendicular;
    _Vector3D m_stCross;
    _Vector3D m_stRotated;
};

}  // namespace velm
