#include "numerics/Quaternion.h"

#include "numerics/LookUp.h"

namespace tavoren {

Quaternion operator*(const Quaternion& a, const Quaternion& b) {
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w,
            a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

Quaternion quaternionFromRotationVector(const Vector& v) {
    const double angle = norm(v);
    if (angle == 0.0)
        return {};
    const Vector axis = v * sin_lut(angle * 0.5) / angle;
    return {axis[0], axis[1], axis[2], cosineOf(angle * 0.5)};
}

Vector rotateByQuaternion(const Quaternion& q, const Vector& v) {
    const Vector u = {q.x, q.y, q.z};
    const Vector t = vector3CrossProduct(u, v) * 2.0;
    return v + t * q.w + vector3CrossProduct(u, t);
}

}  // namespace tavoren
