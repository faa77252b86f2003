#include <dunx/DUNXAffine.h>

#include <dunx/DUNXPoint.h>
#include <dunx/DUNXStreamFormatter.h>
#include <dunx/Gk_Def.h>

// --- DUNXAffine --------------------------------------------------------------------

DUNXAffine::DUNXAffine(int dimension)
    : m_Dimension(dimension), m_Elements{0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0} {}

DUNXAffine::DUNXAffine(const DUNXAffine& other)
    : m_Dimension(other.m_Dimension), m_Elements{0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0} {
    SetTo(other);
}

DUNXAffine& DUNXAffine::operator=(const DUNXAffine& other) {
    SetTo(other);
    return *this;
}

DUNXAffine::~DUNXAffine() = default;

void DUNXAffine::GetRow(int row, double* values) const {
    for (int j = 0; j < m_Dimension; ++j)
        values[j] = GetElement(row, j);
}

void DUNXAffine::SetRow(int row, const double* values) {
    for (int j = 0; j < m_Dimension; ++j)
        SetElement(row, j, values[j]);
}

void DUNXAffine::GetColumn(int column, double* values) const {
    for (int i = 0; i < m_Dimension; ++i)
        values[i] = GetElement(i, column);
}

void DUNXAffine::SetColumn(int column, const double* values) {
    for (int i = 0; i < m_Dimension; ++i)
        SetElement(i, column, values[i]);
}

void DUNXAffine::Multiply(double s) {
    for (int i = 0; i < m_Dimension; ++i)
        for (int j = 0; j < m_Dimension; ++j)
            m_Elements[3 * i + j] *= s;
}

void DUNXAffine::Divide(double d) {
    Multiply(1.0 / d);
}

void DUNXAffine::Multiply(const DUNXAffine& b, DUNXAffine& result) const {
    const int n = m_Dimension;
    double product[9] = {};
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            double sum = 0.0;
            for (int k = 0; k < n; ++k)
                sum += GetElement(i, k) * b.GetElement(k, j);
            product[3 * i + j] = sum;
        }
    result.m_Dimension = n;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            result.m_Elements[3 * i + j] = product[3 * i + j];
}

double DUNXAffine::Determinant() const {
    if (m_Dimension < 1)
        return 1.0;
    double determinant = 0.0;
    for (int j = 0; j < m_Dimension; ++j)
        determinant += GetElement(0, j) * DeterminantOfCofactor(0, j);
    return determinant;
}

double DUNXAffine::DeterminantOfCofactor(int row, int column) const {
    // The minor keeps the rows and columns other than (row, column), in order.
    const int n = m_Dimension;
    int rows[2] = {0, 0}, columns[2] = {0, 0};
    for (int i = 0, r = 0; i < n; ++i)
        if (i != row && r < 2)
            rows[r++] = i;
    for (int j = 0, c = 0; j < n; ++j)
        if (j != column && c < 2)
            columns[c++] = j;
    double minor = 1.0;
    if (n == 2)
        minor = GetElement(rows[0], columns[0]);
    else if (n == 3)
        minor = GetElement(rows[0], columns[0]) * GetElement(rows[1], columns[1]) -
                GetElement(rows[0], columns[1]) * GetElement(rows[1], columns[0]);
    return ((row + column) % 2 == 0) ? minor : -minor;
}

void DUNXAffine::GetTranspose(DUNXAffine& result) const {
    const int n = m_Dimension;
    double transposed[9] = {};
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            transposed[3 * j + i] = GetElement(i, j);
    result.m_Dimension = n;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            result.m_Elements[3 * i + j] = transposed[3 * i + j];
}

void DUNXAffine::Transpose() {
    GetTranspose(*this);
}

void DUNXAffine::GetInverse(DUNXAffine& result) const {
    // Adjugate over determinant. The cofactors are taken before result is
    // written, since result may be this map.
    const int n = m_Dimension;
    const double determinant = Determinant();
    double cofactors[9] = {};
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            cofactors[3 * i + j] = DeterminantOfCofactor(i, j);
    result.m_Dimension = n;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            result.m_Elements[3 * i + j] = cofactors[3 * i + j];
    result.Transpose();
    result.Multiply(1.0 / determinant);
}

int DUNXAffine::IsIdentity() const {
    for (int i = 0; i < m_Dimension; ++i) {
        double rowSum = 0.0;
        for (int j = 0; j < m_Dimension; ++j)
            rowSum += GetElement(i, j);
        if (!Gk_Func::equal(GetElement(i, i), 1.0, Gk_Def::FuzzReal) ||
            !Gk_Func::equal(rowSum, 1.0, Gk_Def::FuzzReal))
            return 0;
    }
    return 1;
}

void DUNXAffine::MakeIdentity() {
    for (int i = 0; i < m_Dimension; ++i)
        for (int j = 0; j < m_Dimension; ++j)
            SetElement(i, j, i == j ? 1.0 : 0.0);
}

void DUNXAffine::SetTo(const DUNXAffine& other) {
    m_Dimension = other.m_Dimension;
    for (int i = 0; i < m_Dimension; ++i)
        for (int j = 0; j < m_Dimension; ++j)
            m_Elements[3 * i + j] = other.m_Elements[3 * i + j];
}

bool DUNXAffine::operator==(const DUNXAffine& other) const {
    if (m_Dimension != other.m_Dimension)
        return false;
    for (int i = 0; i < m_Dimension; ++i)
        for (int j = 0; j < m_Dimension; ++j)
            if (!(GetElement(i, j) == other.GetElement(i, j)))
                return false;
    return true;
}

void DUNXAffine::Dump(DUNXStreamFormatter& out) const {
    for (int i = 0; i < m_Dimension; ++i) {
        out << DUNXMargin();
        for (int j = 0; j < m_Dimension; ++j)
            out << GetElement(i, j) << ' ';
        out << DUNXLineEnd();
    }
}

// --- DUNXAffine2D / DUNXAffine3D -------------------------------------------------------

DUNXAffine2D::DUNXAffine2D() : DUNXAffine(2) {}
DUNXAffine2D::DUNXAffine2D(const DUNXAffine2D& other) = default;
DUNXAffine2D& DUNXAffine2D::operator=(const DUNXAffine2D& other) {
    SetTo(other);
    return *this;
}
DUNXAffine2D::~DUNXAffine2D() = default;

void DUNXAffine2D::SetColumn(int column, const DUNXPoint2D& p) {
    const double values[2] = {p[0], p[1]};
    SetColumn(column, values);
}

DUNXAffine3D::DUNXAffine3D() : DUNXAffine(3) {}
DUNXAffine3D::DUNXAffine3D(const DUNXAffine3D& other) = default;
DUNXAffine3D& DUNXAffine3D::operator=(const DUNXAffine3D& other) {
    SetTo(other);
    return *this;
}
DUNXAffine3D::~DUNXAffine3D() = default;

void DUNXAffine3D::SetColumn(int column, const DUNXPoint3D& p) {
    const double values[3] = {p[0], p[1], p[2]};
    SetColumn(column, values);
}
