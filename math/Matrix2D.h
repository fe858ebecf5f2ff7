// SPDX-License-Identifier: MIT
// The affine transform of the library.
#pragma once

#include "MMPoint2D.h"

#pragma GCC visibility push(default)

// Maps (x, y) to (a x + c y + e, b x + d y + f), all 16.16. It has no constructor, so that records
// holding one stay plain data; start from kIdentityMatrix. Every modifying operation applies after
// the transform that is already there. Overflow wraps; only compose reports anything.
class Matrix2D {
public:
    enum TransformTypes : uint32_t {
        Translate = 0, // tx [, ty = 0]
        Scale = 1,     // sx [, sy = sx], neither 0
        Rotate = 2,    // angle [, cx, cy]
        SkewX = 3,     // angle
        SkewY = 4,     // angle
        Matrix = 5     // a, b, c, d, e, f
    };

    // Result of compose for an item with the wrong number of values or a scale of 0.
    static constexpr uint32_t kBadTransform = 8192;

    KAVO::Fixed a;
    KAVO::Fixed b;
    KAVO::Fixed c;
    KAVO::Fixed d;
    KAVO::Fixed e;
    KAVO::Fixed f;

    // this := this, then t. t may be this matrix itself.
    Matrix2D& operator*=(const Matrix2D& t);

    // this := first, then second. Either may be this matrix itself; a null one changes nothing.
    void mul(const Matrix2D* first, const Matrix2D* second);

    void translate(KAVO::Fixed tx, KAVO::Fixed ty);
    void scale(KAVO::Fixed sx, KAVO::Fixed sy);

    // Any angle; whole turns change nothing.
    void rotate(KAVO::Degrees angle);
    void rotateCenter(KAVO::Degrees angle, KAVO::Fixed cx, KAVO::Fixed cy);
    // Within a degree of 90, where the tangent is out of range, the elements that it multiplies
    // (skewX: c and d, skewY: a and b) become 0x7FFFFFFF first.
    void skewX(KAVO::Degrees angle);
    void skewY(KAVO::Degrees angle);

    // Maps count points; dst may be src. Null points map nothing.
    void transform(MMPoint2D* dst, const MMPoint2D* src, uint16_t count) const;

    // Replaces the matrix by its inverse. The reciprocals come out one unit low for powers of two
    // (the identity inverts to a = d = 0xFFFF). Elements that would need a division by zero or
    // intermediate results beyond 32 bits become 0, so a singular matrix does no harm.
    void invert();

    // Scales all six elements so that the smallest non-zero linear one becomes about 1.0; returns
    // the factor.
    KAVO::Fixed normalize();

    // Applies one item of a transform list. Returns 0, or kBadTransform when there are no values,
    // their count does not fit the type, or a scale factor is 0. A type of 6 or more is ignored and
    // returns 0. With one value, Translate and Scale write values[1], which must exist.
    uint32_t compose(TransformTypes type, KAVO::Fixed* values, uint32_t count);
};

namespace KAVO {
constexpr Matrix2D kIdentityMatrix = {kFixedOne, 0, 0, kFixedOne, 0, 0};
}

#pragma GCC visibility pop
