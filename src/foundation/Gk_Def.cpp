#include <dunx/Gk_Def.h>

#include <cmath>

double Gk_Def::FuzzReal = 1e-10;
double Gk_Def::FuzzPos = 1e-06;
double Gk_Def::FuzzSnap = 0.001;
double Gk_Def::FuzzKnot = 1e-10;
double Gk_Def::DUNXPI = 3.141592653589793;
int Gk_Def::errorLevel = 1;

bool Gk_Func::equal(double a, double b, double tol) {
    return tol >= std::fabs(a - b);
}
