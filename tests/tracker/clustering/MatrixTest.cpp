#include "tests/tracker/clustering/Matrices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace {

const double* elements(const Matrix& matrix) {
  return matrix.row(0);
}

TEST(Matrix, CopiesShareTheirElementsUntilOneIsWritten) {
  const Matrix original = matrixOf({{1, 2}, {3, 4}});
  Matrix assigned(1, 1);
  assigned = original;
  Matrix copy = original;
  const Matrix& self = copy;
  copy = self;
  EXPECT_EQ(elements(original), elements(copy));
  EXPECT_EQ(elements(original), elements(assigned));

  copy(1, 0) = 9;
  EXPECT_EQ(valuesOf(copy), (std::vector<Values>{{1, 2}, {9, 4}}));
  assigned.Null();
  EXPECT_EQ(valuesOf(assigned), (std::vector<Values>{{0, 0}, {0, 0}}));
  EXPECT_EQ(valuesOf(original), (std::vector<Values>{{1, 2}, {3, 4}}));
}

TEST(Matrix, EveryWritingOperationLeavesCopiesAlone) {
  const Matrix kept = matrixOf({{1, 2}, {3, 4}});
  Matrix a = kept;
  (a = kept) += kept;
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{2, 4}, {6, 8}}));
  (a = kept) -= kept;
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{0, 0}, {0, 0}}));
  (a = kept) *= 0.5;
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{0.5, 1}, {1.5, 2}}));
  (a = kept) *= kept;
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{7, 10}, {15, 22}}));
  (a = kept) &= kept;
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{1, 2, 1, 2}, {3, 4, 3, 4}}));
  (a = kept).SetSize(1, 3);
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{1, 2, 0}}));
  (a = kept).realloc(1, 2);
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{1, 2}}));
  (a = kept).clone();
  a.clone();
  EXPECT_NE(elements(a), elements(kept));
  EXPECT_EQ(valuesOf(a), valuesOf(kept));
  EXPECT_EQ(valuesOf(kept), (std::vector<Values>{{1, 2}, {3, 4}}));
}

TEST(Matrix, WorksOnItselfAsItsOwnOperand) {
  Matrix a = matrixOf({{1, 2}, {3, 4}});
  a &= a;
  a -= a;
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{0, 0, 0, 0}, {0, 0, 0, 0}}));
  a = matrixOf({{1, 2}, {3, 4}});
  a *= a;
  a *= a(0, 0);
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{49, 70}, {105, 154}}));
}

TEST(Matrix, ProductsTransposesAndColumns) {
  Matrix a = matrixOf({{1, 2, 3}, {4, 5, 6}});
  EXPECT_EQ(valuesOf(~a), (std::vector<Values>{{1, 4}, {2, 5}, {3, 6}}));
  EXPECT_EQ(valuesOf(a * ~a), (std::vector<Values>{{14, 32}, {32, 77}}));
  EXPECT_EQ(valuesOf(a.Column(1)), (std::vector<Values>{{2}, {5}}));
  EXPECT_EQ(valuesOf(a - a), (std::vector<Values>{{0, 0, 0}, {0, 0, 0}}));
  // Summed from 0.0, so that the negative zero of the only term does not come through.
  EXPECT_FALSE(std::signbit(std::as_const(a = matrixOf({{-1}}) * matrixOf({{0}}))(0, 0)));
}

TEST(Matrix, SetSizeClearsWhatItAddsAndEmptyMatricesAreFine) {
  Matrix a = matrixOf({{1, 2}, {3, 4}});
  a.SetSize(3, 4);
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{1, 2, 0, 0}, {3, 4, 0, 0}, {0, 0, 0, 0}}));
  a.SetSize(2, 0);
  a.SetSize(2, 2);
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{0, 0}, {0, 0}}));

  Matrix none(0, 3);
  none.Null();
  none -= Matrix(0, 3);
  none &= Matrix(0, 1);
  EXPECT_EQ(none.cols(), 4U);
  EXPECT_EQ(valuesOf(Matrix(2, 0) * Matrix(0, 2)), (std::vector<Values>{{0, 0}, {0, 0}}));
}

TEST(Matrix, MisuseNamesTheOperationAndChangesNothing) {
  Matrix a = matrixOf({{1, 2}, {3, 4}, {5, 6}});
  const char* const outside = "matrixT::operator(): Index out of range!";
  EXPECT_EQ(messageOf([&] { a(3, 0) = 0; }), outside);
  EXPECT_EQ(messageOf([&] { a(0, 2) = 0; }), outside);
  EXPECT_EQ(messageOf([&] { std::as_const(a)(0, 2); }), outside);
  EXPECT_EQ(messageOf([&] { a -= Matrix(3, 1); }),
            "matrixT::operator-= : Inconsistent matrix sizes in subtraction!");
  EXPECT_EQ(messageOf([&] { a += ~a; }),
            "matrixT::operator+= : Inconsistent matrix sizes in addition!");
  EXPECT_EQ(messageOf([&] { a* a; }),
            "matrixT::operator*= : Inconsistent matrix sizes in multiplication!");
  EXPECT_EQ(messageOf([&] { a &= Matrix(2, 2); }),
            "matrixT::operator&= : Inconsistent matrix sizes in concatination!");
  EXPECT_EQ(valuesOf(a), (std::vector<Values>{{1, 2}, {3, 4}, {5, 6}}));
}

}  // namespace
