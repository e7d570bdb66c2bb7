// Real roots of polynomials by this library and by others, for roots_accuracy.py, which knows the
// true ones.
//
// Standard input: a line for each polynomial, its coefficients from the highest power down.
// Standard output: first the names of who answers, then a line for each polynomial with, from each
// of them, the number of roots that they report, and these. Numbers are hexadecimal.

#include "roots_internal.h"

#include <unsupported/Eigen/Polynomials>
#ifdef ZVMATH_HAVE_GSL
#include <gsl/gsl_poly.h>
#endif
#ifdef ZVMATH_HAVE_BOOST_ROOTS
#include <boost/math/tools/quartic_roots.hpp>
#endif

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

namespace
{

using Numbers = std::vector<double>;

Numbers ByUs(const Numbers& c)
{
    Numbers roots(4);
    int count = 0;
    if (c.size() == 3)
        count = ZVMath::zv_SolveQuadratic(roots.data(), c[0], c[1], c[2]);
    else if (c.size() == 4)
        count = ZVMath::zv_SolveCubic(roots.data(), c[0], c[1], c[2], c[3]);
    else
        count = ZVMath::zv_SolveQuartic(roots.data(), c[0], c[1], c[2], c[3], c[4]);
    roots.resize(static_cast<size_t>(count));
    return roots;
}

#ifdef ZVMATH_HAVE_GSL
/// Quartics by its solver for all degrees, from which real roots come as exactly real.
Numbers ByGsl(const Numbers& c)
{
    Numbers roots(3);
    int count = 0;
    if (c.size() == 3) {
        count = gsl_poly_solve_quadratic(c[0], c[1], c[2], &roots[0], &roots[1]);
    } else if (c.size() == 4) {
        count = gsl_poly_solve_cubic(c[1] / c[0], c[2] / c[0], c[3] / c[0], &roots[0], &roots[1],
                                     &roots[2]);
    } else {
        const Numbers ascending(c.rbegin(), c.rend());
        double complex[8];
        gsl_poly_complex_workspace* const space = gsl_poly_complex_workspace_alloc(c.size());
        gsl_poly_complex_solve(ascending.data(), c.size(), space, complex);
        gsl_poly_complex_workspace_free(space);
        roots.clear();
        for (size_t i = 0; i < 8; i += 2)
            if (complex[i + 1] == 0.0)
                roots.push_back(complex[i]);
        return roots;
    }
    roots.resize(static_cast<size_t>(count));
    return roots;
}
#endif

#ifdef ZVMATH_HAVE_BOOST_ROOTS
/// NaN stands for a root that is not there.
Numbers ByBoost(const Numbers& c)
{
    namespace tools = boost::math::tools;
    Numbers roots;
    if (c.size() == 3) {
        const auto pair = tools::quadratic_roots(c[0], c[1], c[2]);
        roots = {pair.first, pair.second};
    } else if (c.size() == 4) {
        const auto three = tools::cubic_roots(c[0], c[1], c[2], c[3]);
        roots.assign(three.begin(), three.end());
    } else {
        const auto four = tools::quartic_roots(c[0], c[1], c[2], c[3], c[4]);
        roots.assign(four.begin(), four.end());
    }
    roots.erase(std::remove_if(roots.begin(), roots.end(), [](double r) { return std::isnan(r); }),
                roots.end());
    return roots;
}
#endif

Numbers ByEigen(const Numbers& c)
{
    const Numbers ascending(c.rbegin(), c.rend());
    const Eigen::PolynomialSolver<double, Eigen::Dynamic> solver(
        Eigen::Map<const Eigen::VectorXd>(ascending.data(), static_cast<Eigen::Index>(c.size())));
    Numbers roots;
    solver.realRoots(roots);  // imaginary part below 1e-12, its own threshold
    return roots;
}

}  // namespace

int main()
{
    const std::vector<std::pair<const char*, std::function<Numbers(const Numbers&)>>> contestants{
        {"zvmath", ByUs},
#ifdef ZVMATH_HAVE_GSL
        {"gsl", ByGsl},
#endif
#ifdef ZVMATH_HAVE_BOOST_ROOTS
        {"boost", ByBoost},
#endif
        {"eigen", ByEigen}};
    for (const auto& [name, solve] : contestants)
        std::printf("%s ", name);
    std::printf("\n");
    char line[256];
    while (std::fgets(line, sizeof line, stdin)) {
        Numbers c(5);
        const int count =
            std::sscanf(line, "%la %la %la %la %la", &c[0], &c[1], &c[2], &c[3], &c[4]);
        if (count < 3) {
            std::fprintf(stderr, "roots_accuracy: not a polynomial: %s", line);
            return 1;
        }
        c.resize(static_cast<size_t>(count));
        for (const auto& [name, solve] : contestants) {
            const Numbers roots = solve(c);
            std::printf("%zu ", roots.size());
            for (const double root : roots)
                std::printf("%a ", root);
        }
        std::printf("\n");
    }
    return 0;
}
