#include "math/svd.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace orvandsp {

namespace {

// Single-precision rounding, on purpose: see the class.
constexpr double SmallElement = 1.1920928955078125e-07;

/// One singular value takes two or three QR steps. Beyond this many (only bad numbers get there) what is left beside
/// the diagonal is dropped, so that every input comes to an end.
constexpr int MaxNumSteps = 75;

/// Whether an element is negligible beside the diagonal elements around it; not a number counts as negligible.
bool IsSmall(double element, double neighbour1, double neighbour2) {
    return !(std::abs(element) > SmallElement * (std::abs(neighbour1) + std::abs(neighbour2)));
}

/// A plane rotation: (x, y) becomes (c x + s y, c y - s x).
struct Rotation {
    double c = 1.0;
    double s = 0.0;

    /// The rotation that turns (x, y) into (r, 0).
    Rotation(double x, double y, double& r) {
        r = std::hypot(x, y);
        if (r == 0.0) return;
        c = x / r;
        s = y / r;
    }

    void Turn(double& x, double& y) const {
        const double turned = c * x + s * y;
        y = c * y - s * x;
        x = turned;
    }

    void TurnColumns(MatrixDouble& m, std::size_t column1, std::size_t column2) const {
        for (unsigned int i = 0; i < m.GetNumRows(); ++i) Turn(m[i][column1], m[i][column2]);
    }
};

/// The decomposition of a matrix with at least as many rows as columns, step by step.
class GolubKahan {
public:
    GolubKahan(MatrixDouble const& matrix, bool wantsU, bool wantsV)
        : a(matrix), m(a.GetNumRows()), n(a.GetNumColumns()), diagonal(n), beside(n), wantU(wantsU), wantV(wantsV) {
        Bidiagonalise();
        if (wantU) GenerateU();
        if (wantV) GenerateV();
        for (std::size_t count = n; count > 0; --count) Isolate(count);
        MakeNonNegative();
        Sort();
    }

    MatrixDouble u, v;
    std::vector<double>& SingularValues() { return diagonal; }

private:
    // A reflection I - w transpose(w) / w[0] is kept as its vector w: those from the left in the columns of a from the
    // diagonal down, those from the right in the rows right of the diagonal. w[0] = 0 stands for no reflection.

    /// Reflects rows row.. of a column (of any matrix with m rows) by the left reflection k.
    void ReflectColumn(MatrixDouble& target, std::size_t column, std::size_t k) const {
        double sum = 0.0;
        for (std::size_t i = k; i < m; ++i) sum += a[i][k] * target[i][column];
        sum /= a[k][k];
        for (std::size_t i = k; i < m; ++i) target[i][column] -= sum * a[i][k];
    }

    void Bidiagonalise() {
        for (std::size_t k = 0; k < n; ++k) {
            double norm = 0.0;
            for (std::size_t i = k; i < m; ++i) norm = std::hypot(norm, a[i][k]);
            if (norm != 0.0) {
                const double scale = a[k][k] < 0.0 ? -norm : norm;
                for (std::size_t i = k; i < m; ++i) a[i][k] /= scale;
                a[k][k] += 1.0;
                diagonal[k] = -scale;
                for (std::size_t j = k + 1; j < n; ++j) ReflectColumn(a, j, k);
            }
            if (k + 1 >= n) break;

            norm = 0.0;
            for (std::size_t j = k + 1; j < n; ++j) norm = std::hypot(norm, a[k][j]);
            if (norm == 0.0) continue;
            const double scale = a[k][k + 1] < 0.0 ? -norm : norm;
            for (std::size_t j = k + 1; j < n; ++j) a[k][j] /= scale;
            a[k][k + 1] += 1.0;
            beside[k] = -scale;
            for (std::size_t i = k + 1; i < m; ++i) {
                double sum = 0.0;
                for (std::size_t j = k + 1; j < n; ++j) sum += a[k][j] * a[i][j];
                sum /= a[k][k + 1];
                for (std::size_t j = k + 1; j < n; ++j) a[i][j] -= sum * a[k][j];
            }
        }
    }

    /// The left reflections applied to the first n columns of the identity, last one first.
    void GenerateU() {
        u = MatrixDouble(static_cast<unsigned int>(m), static_cast<unsigned int>(n), 0.0);
        u.SetDiag(std::vector<double>(n, 1.0));
        for (std::size_t k = n; k-- > 0;)
            if (a[k][k] != 0.0)
                for (std::size_t j = k; j < n; ++j) ReflectColumn(u, j, k);
    }

    void GenerateV() {
        v = MatrixDouble(static_cast<unsigned int>(n), static_cast<unsigned int>(n), 0.0);
        v.SetDiag(std::vector<double>(n, 1.0));
        if (n < 2) return;
        for (std::size_t k = n - 1; k-- > 0;) {
            if (a[k][k + 1] == 0.0) continue;
            for (std::size_t column = k + 1; column < n; ++column) {
                double sum = 0.0;
                for (std::size_t j = k + 1; j < n; ++j) sum += a[k][j] * v[j][column];
                sum /= a[k][k + 1];
                for (std::size_t j = k + 1; j < n; ++j) v[j][column] -= sum * a[k][j];
            }
        }
    }

    /// Frees the last of the first `count` diagonal elements from its neighbour: it then is a singular value.
    void Isolate(std::size_t count) {
        for (int step = 0; count > 1; ++step) {
            const std::size_t last = count - 1;
            if (step == MaxNumSteps) beside[last - 1] = 0.0;
            // The block that ends here starts behind the last negligible element beside the diagonal.
            std::size_t first = last;
            while (first > 0 && !IsSmall(beside[first - 1], diagonal[first - 1], diagonal[first])) --first;
            if (first > 0) beside[first - 1] = 0.0;
            if (first == last) return;

            std::size_t zero = count;
            for (std::size_t k = last + 1; k-- > first;)
                if (IsSmall(diagonal[k], k < last ? beside[k] : 0.0, k > first ? beside[k - 1] : 0.0)) {
                    zero = k;
                    break;
                }
            if (zero == last) {
                diagonal[last] = 0.0;
                ChaseUp(first, last);
            } else if (zero < last) {
                diagonal[zero] = 0.0;
                ChaseRight(zero, last);
            } else {
                QrStep(first, last);
            }
        }
    }

    /// The last diagonal element of a block is 0: rotate away what stands above it.
    void ChaseUp(std::size_t first, std::size_t last) {
        double f = std::exchange(beside[last - 1], 0.0);
        for (std::size_t j = last; j-- > first;) {
            double r;
            const Rotation rotation(diagonal[j], f, r);
            diagonal[j] = r;
            if (j > first) {
                f = -rotation.s * beside[j - 1];
                beside[j - 1] *= rotation.c;
            }
            if (wantV) rotation.TurnColumns(v, j, last);
        }
    }

    /// A diagonal element inside a block is 0: rotate away what stands to its right, which splits the block.
    void ChaseRight(std::size_t zero, std::size_t last) {
        double f = std::exchange(beside[zero], 0.0);
        for (std::size_t j = zero + 1; j <= last; ++j) {
            double r;
            const Rotation rotation(diagonal[j], f, r);
            diagonal[j] = r;
            f = -rotation.s * beside[j];
            beside[j] *= rotation.c;
            if (wantU) rotation.TurnColumns(u, j, zero);
        }
    }

    /// The shift: the eigenvalue of the trailing 2 x 2 block of transpose(B) B nearer to its last element, for the
    /// block divided by `scale`.
    double Shift(std::size_t last, double scale) const {
        const double sp = diagonal[last] / scale;
        const double spm1 = diagonal[last - 1] / scale;
        const double epm1 = beside[last - 1] / scale;
        const double b = ((spm1 + sp) * (spm1 - sp) + epm1 * epm1) / 2.0;
        const double c = (sp * epm1) * (sp * epm1);
        if (b == 0.0 && c == 0.0) return 0.0;
        const double root = std::copysign(std::sqrt(b * b + c), b);
        return c / (b + root);
    }

    void QrStep(std::size_t first, std::size_t last) {
        double scale = 0.0;
        for (const double x : {diagonal[last], diagonal[last - 1], beside[last - 1], diagonal[first], beside[first]})
            scale = std::max(scale, std::abs(x));
        const double sp = diagonal[last] / scale;
        const double sk = diagonal[first] / scale;
        double f = (sk + sp) * (sk - sp) + Shift(last, scale);
        double g = sk * (beside[first] / scale);
        for (std::size_t j = first; j < last; ++j) {
            double r;
            const Rotation right(f, g, r);
            if (j > first) beside[j - 1] = r;
            f = diagonal[j];
            right.Turn(f, beside[j]);
            g = right.s * diagonal[j + 1];
            diagonal[j + 1] *= right.c;
            if (wantV) right.TurnColumns(v, j, j + 1);

            const Rotation left(f, g, r);
            diagonal[j] = r;
            f = beside[j];
            left.Turn(f, diagonal[j + 1]);
            if (j + 1 < last) {
                g = left.s * beside[j + 1];
                beside[j + 1] *= left.c;
            }
            if (wantU) left.TurnColumns(u, j, j + 1);
        }
        beside[last - 1] = f;
    }

    void MakeNonNegative() {
        for (std::size_t k = 0; k < n; ++k) {
            if (!(diagonal[k] < 0.0)) continue;
            diagonal[k] = -diagonal[k];
            if (wantV)
                for (std::size_t i = 0; i < n; ++i) v[i][k] = -v[i][k];
        }
    }

    void Sort() {
        for (std::size_t k = 0; k + 1 < n; ++k) {
            const auto from = diagonal.begin() + static_cast<std::ptrdiff_t>(k);
            const auto largest = static_cast<std::size_t>(std::max_element(from, diagonal.end()) - diagonal.begin());
            if (largest == k) continue;
            std::swap(diagonal[k], diagonal[largest]);
            if (wantU)
                for (std::size_t i = 0; i < m; ++i) std::swap(u[i][k], u[i][largest]);
            if (wantV)
                for (std::size_t i = 0; i < n; ++i) std::swap(v[i][k], v[i][largest]);
        }
    }

    MatrixDouble a;
    std::size_t m, n;
    std::vector<double> diagonal;
    std::vector<double> beside;  // beside[k] stands right of diagonal[k]
    bool wantU, wantV;
};

}  // namespace

SVD::SVD(MatrixDouble const& a, bool wantU, bool wantV) : numRows(a.GetNumRows()), numColumns(a.GetNumColumns()) {
    if (numRows >= numColumns) {
        GolubKahan tall(a, wantU, wantV);
        u = std::move(tall.u);
        v = std::move(tall.v);
        s = std::move(tall.SingularValues());
    } else {
        GolubKahan tall(Transpose(a), wantV, wantU);
        u = std::move(tall.v);
        v = std::move(tall.u);
        s = std::move(tall.SingularValues());
    }
}

MatrixDouble SVD::GetS() const {
    const auto count = static_cast<unsigned int>(s.size());
    MatrixDouble result(count, count, 0.0);
    result.SetDiag(s);
    return result;
}

double SVD::GetHilbertSchmidtNorm() const {
    double sum = 0.0;
    for (const double value : s) sum += value * value;
    return std::sqrt(sum);
}

int SVD::Rank() const {
    const double threshold = std::max(numRows, numColumns) * GetNorm2() * SmallElement;
    return static_cast<int>(std::count_if(s.begin(), s.end(), [=](double value) { return value > threshold; }));
}

void DecompositionSVD(MatrixDouble const& a, MatrixDouble& u, MatrixDouble& s, MatrixDouble& v) {
    const SVD svd(a, true, true);
    u = svd.GetU();
    s = svd.GetS();
    v = svd.GetV();
}

int Rank(MatrixDouble const& m) {
    return SVD(m, false, false).Rank();
}

int Rank(MatrixFloat const& m) {
    MatrixDouble d;
    FloatToDouble(m, d);
    return Rank(d);
}

}  // namespace orvandsp
