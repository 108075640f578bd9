#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace math {

/// Misuse of a matrix: sizes that do not fit together, or an index outside.
class matrix_error : public std::logic_error {
 public:
  explicit matrix_error(const std::string& message) : std::logic_error(message) {}
};

// What the errors say whose causes others than the operation itself can see coming.
inline constexpr const char* additionError =
    "matrixT::operator+= : Inconsistent matrix sizes in addition!";
inline constexpr const char* subtractionError =
    "matrixT::operator-= : Inconsistent matrix sizes in subtraction!";

/// A small dense matrix with value semantics. Copies share one representation, so that copying,
/// passing and returning cost a counter; the first write to a shared one copies the elements.
///
/// Indices are 0-based, row before column; a column vector is an n x 1 matrix, and 0 x n is valid.
/// New elements are uninitialised unless an operation says otherwise. Misuse throws `matrix_error`
/// and leaves the matrix as it was. The counter is a plain integer: a matrix and all its copies
/// belong to one thread.
template <typename T>
class matrix {
 public:
  /// The elements that matrices share, one heap array per row.
  struct base_mat {
    T** val = nullptr;            ///< `rowCapacity` pointers to rows of `colCapacity` elements
    std::size_t rows = 0;         ///< logical size
    std::size_t cols = 0;         ///< logical size
    std::size_t rowCapacity = 0;  ///< allocated size
    std::size_t colCapacity = 0;  ///< allocated size
    int refCount = 1;             ///< matrices that share these elements

    /// Copies the elements of `source`, an array of row pointers; without one they stay
    /// uninitialised.
    base_mat(std::size_t rowCount, std::size_t colCount, const T* const* source = nullptr);
    base_mat(const base_mat&) = delete;
    base_mat& operator=(const base_mat&) = delete;
    ~base_mat();

   private:
    base_mat() = default;
  };

  matrix() : matrix(0, 0) {}
  matrix(std::size_t rowCount, std::size_t colCount) : m(new base_mat(rowCount, colCount)) {}
  /// A column vector.
  explicit matrix(std::size_t rowCount) : matrix(rowCount, 1) {}
  matrix(const matrix& other) : m(other.m) { ++m->refCount; }
  ~matrix() { release(); }
  matrix& operator=(const matrix& other);

  std::size_t rows() const { return m->rows; }
  std::size_t cols() const { return m->cols; }

  /// The element for writing: a shared matrix gets elements of its own, even if nothing is written.
  T& operator()(std::size_t r, std::size_t c);
  const T& operator()(std::size_t r, std::size_t c) const;

  /// A whole row for loops that have checked their limits: `cols()` elements, no check of `r`.
  /// The pointer to write through holds until the matrix is next copied or resized.
  T* row(std::size_t r);
  const T* row(std::size_t r) const { return m->val[r]; }

  /// Leaves the shared elements and goes on with a private copy of them.
  void clone();
  /// Sets every element to 0.
  void Null();
  /// Changes the size; the block that both sizes have in common keeps its elements.
  void realloc(std::size_t rowCount, std::size_t colCount);
  /// Changes the size as `realloc` does and sets the added rows and columns to 0.
  void SetSize(std::size_t rowCount, std::size_t colCount);
  /// Column `c` as a column vector; `c` is not checked.
  matrix Column(std::size_t c);

  matrix& operator+=(const matrix& other);
  matrix& operator-=(const matrix& other);
  /// The matrix product; each element is summed from 0 in the order of the inner index.
  matrix& operator*=(const matrix& other);
  matrix& operator*=(const T& factor);
  /// Appends the columns of `other`.
  matrix& operator&=(const matrix& other);

 private:
  void detach() {
    if (m->refCount > 1) {
      clone();
    }
  }
  void release() {
    if (--m->refCount == 0) {
      destroy(m);
    }
  }
  // Out of line: inlined twice into one scope, GCC takes the release of a sharing matrix for a use
  // after the delete.
  static void destroy(base_mat* unused);
  /// Takes over a new representation; made first, it may be computed from the old one.
  void replace(base_mat* made) {
    release();
    m = made;
  }  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): it does not follow the count of owners
  [[noreturn]] static void throwOutside();
  /// Sets every element to `operation` of itself and its counterpart.
  template <typename Operation>
  void combine(const matrix& other, Operation operation, const char* message);

  base_mat* m;
};

template <typename T>
inline T& matrix<T>::operator()(std::size_t r, std::size_t c) {
  if (r >= m->rows || c >= m->cols) {
    throwOutside();
  }
  detach();
  return m->val[r][c];
}

template <typename T>
inline const T& matrix<T>::operator()(std::size_t r, std::size_t c) const {
  if (r >= m->rows || c >= m->cols) {
    throwOutside();
  }
  return m->val[r][c];
}

template <typename T>
inline T* matrix<T>::row(std::size_t r) {
  detach();
  return m->val[r];
}

template <typename T>
matrix<T> operator-(matrix<T> a, const matrix<T>& b) {
  a -= b;
  return a;
}

template <typename T>
matrix<T> operator*(matrix<T> a, const matrix<T>& b) {
  a *= b;
  return a;
}

/// The transpose.
template <typename T>
matrix<T> operator~(const matrix<T>& a);

// The only instance, made in matrix.cpp.
extern template class matrix<double>;
extern template matrix<double> operator~(const matrix<double>& a);

}  // namespace math
