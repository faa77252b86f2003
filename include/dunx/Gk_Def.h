// Gk_Def tolerances and the Gk_Func comparison helpers of the older generation.
#pragma once

#include <dunx/DUNXExport.h>

/// Process-wide tolerances, modifiable by the host before a translation.
struct DUNX_EXPORT Gk_Def {
    /// Real-number tolerance, 1e-10.
    static double FuzzReal;
    /// Position tolerance, 1e-06.
    static double FuzzPos;
    /// Snapping tolerance, 0.001.
    static double FuzzSnap;
    /// Knot tolerance, 1e-10.
    static double FuzzKnot;
    /// Pi, 3.141592653589793.
    static double DUNXPI;
    /// Error level, 1.
    static int errorLevel;
};

/// Numeric helpers of the older generation.
struct DUNX_EXPORT Gk_Func {
    /// True when `tol` >= |a - b| (a negative `tol` is never met; NaN never equals).
    static bool equal(double a, double b, double tol);
};
