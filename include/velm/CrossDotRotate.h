#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

/// Three-dimensional vectors in single precision, and the rotation of points about an axis through a centre.
///
/// The vector operations leave the object alone. A rotation is set up by SetParam or SetRotatoVector and then
/// applied to any number of points by Rotato. No operation takes a null address.
/// Threads: one at a time per object.
class VELM_UTIL_API CrossDotRotate {
public:
    /// A vector, or a point.
    struct _Vector3D {
        float x;  ///< the x coordinate
        float y;  ///< the y coordinate
        float z;  ///< the z coordinate
    };

    /// No rotation is set up.
    CrossDotRotate();
    /// @{
    /// Copies the rotation that is set up.
    CrossDotRotate(const CrossDotRotate& other);
    CrossDotRotate& operator=(const CrossDotRotate& other);
    /// @}
    ~CrossDotRotate();

    /// v = (0, 0, 0)
    void SetZero(_Vector3D* v);

    /// The square of the length.
    float Power(_Vector3D* v);

    /// The length.
    float Amplitude(_Vector3D* v);

    /// Scales v to unit length. The square of the length is formed in single precision: from a length of about
    /// 1.8e19 it overflows and v becomes 0, and a vector with a NaN becomes NaN; both return 1.
    /// @return 1; 0 when v is shorter than 0.001: it is then scaled by 1000
    int Normalize(_Vector3D* v);

    /// The scalar product.
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

    /// Turns a into the unit vector that is perpendicular to b, in the plane of both and on the side of a,
    /// and scales b to unit length.
    /// @param b  another vector than a
    void AdjustNormalizedOrthogonalVector(_Vector3D* a, _Vector3D* b);

    /// The cosine of the angle between a and b; 0 when one of them is zero, and too small when the product of
    /// their lengths is below 1e-9.
    float GetCosSita(_Vector3D* a, _Vector3D* b);

    /// The sine, never negative, of the angle between a and b; 0 when one of them is zero, and too small when
    /// the product of their lengths is below 1e-9.
    float GetSinSita(_Vector3D* a, _Vector3D* b);

    /// Sets up a rotation; a positive sine turns counter-clockwise, seen from the tip of the axis.
    /// @param axis  of a length from 0.001 to 1.8e19
    /// @param center  a point on the axis
    /// @param cosValue, sinValue  of the angle, or both times the same positive number; the limits of `axis`
    ///        hold for the pair
    /// @return 1; 0 when the axis or the pair is shorter than 0.001: Rotato then leaves points alone. Longer
    ///         ones and NaN are not detected: Rotato then gives the result of the arithmetic.
    int SetParam(_Vector3D* axis, _Vector3D* center, float cosValue, float sinValue);

    /// Sets up the rotation that turns the direction of one vector into that of another.
    /// @param ratio  scales the sine before sine and cosine are brought to unit length together; 1 turns all
    ///               the way, a negative ratio turns the other way
    /// @return 1; 0 when the vectors are parallel, opposite or too short, and then Rotato leaves points alone
    int SetRotatoVector(_Vector3D* from, _Vector3D* to, _Vector3D* center, float ratio);

    /// Rotates a point in place, when a rotation is set up.
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
    float m_fCosSinZ;  // 0: makes a vector of the pair, which Normalize scales
    _Vector3D m_stCenter;
    int m_bValid;
    // Of the latest rotation.
    _Vector3D m_stRelative;
    _Vector3D m_stParallel;
    _Vector3D m_stPerpendicular;
    _Vector3D m_stCross;
    _Vector3D m_stRotated;
};

}  // namespace velm
