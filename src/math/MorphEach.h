// The loop shared by the bulk morph paths: DUNXPoint3D::TransformArray over an
// array of point objects and DUNXMorph3D::Apply over packed coordinates.
#pragma once

#include <dunx/DUNXAffine.h>
#include <dunx/DUNXMorph.h>

namespace dunx::internal {

// Applies `morph` to `count` points, `coordsOf(i)` giving the three
// coordinates of point i, and `translation` the morph's translation. The steps and their order are
// those of DUNXPoint3D::Transform (the affine part, then the scale, then the translation, each only
// when the morph has it), so each point comes out bit for bit as one Transform call leaves it. Each
// point is loaded once and stored once, in one pass: storing after every step and loading again
// made the processor wait on every point, and a pass per step moved the whole array through memory
// once per step.
template <class CoordsOf>
void MorphEach(int count, const DUNXMorph3D& morph, const double* translation, bool noTranslation,
               CoordsOf coordsOf) {
    if (morph.isIdentity())
        return;
    // Everything read from the morph, into locals: the stores to the points
    // cannot alias them, so the loop is plain arithmetic.
    const bool affinePart = morph.isAffine();
    const bool scale = morph.isScale();
    const bool translate = !noTranslation && morph.isTranslation();
    if (!affinePart && !scale && !translate)
        return; // a pure translation, left out
    double a[9];
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            a[3 * row + column] = morph.affine().GetElement(row, column);
    const double s = morph.scaleFactor();
    const double tx = translation[0], ty = translation[1], tz = translation[2];
    for (int i = 0; i < count; ++i) {
        double* c = coordsOf(i);
        double x = c[0], y = c[1], z = c[2];
        if (affinePart) {
            const double ax = a[0] * x + a[1] * y + a[2] * z;
            const double ay = a[3] * x + a[4] * y + a[5] * z;
            z = a[6] * x + a[7] * y + a[8] * z;
            x = ax;
            y = ay;
        }
        if (scale) {
            x *= s;
            y *= s;
            z *= s;
        }
        if (translate) {
            x += tx;
            y += ty;
            z += tz;
        }
        c[0] = x;
        c[1] = y;
        c[2] = z;
    }
}

} // namespace dunx::internal
