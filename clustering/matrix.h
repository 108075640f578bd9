#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>

namespace math {

/// Misuse of a matrix: sizes that do not fit together, or an index outside.
class matrix_error : public std::logic_error {
 public:
  explicit matrix_error(const std::string& message) : std::logic_error(message) {}
};

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
      delete m;
    }
  }
  /// Takes over a new representation; made first, it may be computed from the old one.
  void replace(base_mat* made) {
    release();
    m = made;
  }
  void requireInside(std::size_t r, std::size_t c) const;
  /// Sets every element to `operation` of itself and its counterpart.
  template <typename Operation>
  void combine(const matrix& other, Operation operation, const char* message);

  base_mat* m;
};

// The delegated constructor has completed once rows are allocated, so that the destructor frees the
// first rows when a later one does not fit into memory.
template <typename T>
matrix<T>::base_mat::base_mat(std::size_t rowCount, std::size_t colCount, const T* const* source)
    : base_mat() {
  val = new T*[rowCount]();
  rows = rowCapacity = rowCount;
  cols = colCapacity = colCount;
  for (std::size_t r = 0; r < rows; ++r) {
    val[r] = new T[cols];
    if (source != nullptr) {
      std::copy_n(source[r], cols, val[r]);
    }
  }
}

template <typename T>
matrix<T>::base_mat::~base_mat() {
  for (std::size_t r = 0; r < rowCapacity; ++r) {
    delete[] val[r];
  }
  delete[] val;
}

template <typename T>
matrix<T>& matrix<T>::operator=(const matrix& other) {
  ++other.m->refCount;  // before the release: other may be this matrix
  replace(other.m);
  return *this;
}

template <typename T>
T& matrix<T>::operator()(std::size_t r, std::size_t c) {
  requireInside(r, c);
  detach();
  return m->val[r][c];
}

template <typename T>
const T& matrix<T>::operator()(std::size_t r, std::size_t c) const {
  requireInside(r, c);
  return m->val[r][c];
}

template <typename T>
T* matrix<T>::row(std::size_t r) {
  detach();
  return m->val[r];
}

template <typename T>
void matrix<T>::clone() {
  replace(new base_mat(m->rows, m->cols, m->val));
}

template <typename T>
void matrix<T>::Null() {
  detach();
  for (std::size_t r = 0; r < m->rows; ++r) {
    std::fill_n(m->val[r], m->cols, T(0));
  }
}

template <typename T>
void matrix<T>::realloc(std::size_t rowCount, std::size_t colCount) {
  if (m->rowCapacity == rowCount && m->colCapacity == colCount) {
    m->rows = rowCount;
    m->cols = colCount;
    return;
  }
  auto* const resized = new base_mat(rowCount, colCount);
  for (std::size_t r = 0; r < std::min(m->rows, rowCount); ++r) {
    std::copy_n(m->val[r], std::min(m->cols, colCount), resized->val[r]);
  }
  replace(resized);
}

template <typename T>
void matrix<T>::SetSize(std::size_t rowCount, std::size_t colCount) {
  const std::size_t oldRows = std::min(m->rows, rowCount);
  const std::size_t oldCols = std::min(m->cols, colCount);
  realloc(rowCount, colCount);
  for (std::size_t r = 0; r < rowCount; ++r) {
    const std::size_t kept = r < oldRows ? oldCols : 0;
    std::fill_n(m->val[r] + kept, colCount - kept, T(0));
  }
}

template <typename T>
matrix<T> matrix<T>::Column(std::size_t c) {
  detach();
  matrix column(m->rows);
  for (std::size_t r = 0; r < m->rows; ++r) {
    column.m->val[r][0] = m->val[r][c];
  }
  return column;
}

template <typename T>
template <typename Operation>
void matrix<T>::combine(const matrix& other, Operation operation, const char* message) {
  if (m->rows != other.m->rows || m->cols != other.m->cols) {
    throw matrix_error(message);
  }
  detach();
  for (std::size_t r = 0; r < m->rows; ++r) {
    std::transform(m->val[r], m->val[r] + m->cols, other.m->val[r], m->val[r], operation);
  }
}

template <typename T>
matrix<T>& matrix<T>::operator+=(const matrix& other) {
  combine(other, std::plus<T>(), "matrixT::operator+= : Inconsistent matrix sizes in addition!");
  return *this;
}

template <typename T>
matrix<T>& matrix<T>::operator-=(const matrix& other) {
  combine(other, std::minus<T>(),
          "matrixT::operator-= : Inconsistent matrix sizes in subtraction!");
  return *this;
}

template <typename T>
matrix<T>& matrix<T>::operator*=(const matrix& other) {
  if (m->cols != other.m->rows) {
    throw matrix_error("matrixT::operator*= : Inconsistent matrix sizes in multiplication!");
  }
  auto* const product = new base_mat(m->rows, other.m->cols);
  for (std::size_t r = 0; r < product->rows; ++r) {
    for (std::size_t c = 0; c < product->cols; ++c) {
      T sum(0);
      for (std::size_t k = 0; k < m->cols; ++k) {
        sum += m->val[r][k] * other.m->val[k][c];
      }
      product->val[r][c] = sum;
    }
  }
  replace(product);
  return *this;
}

template <typename T>
matrix<T>& matrix<T>::operator*=(const T& factor) {
  const T constant = factor;  // it may be an element of this matrix
  detach();
  for (std::size_t r = 0; r < m->rows; ++r) {
    for (std::size_t c = 0; c < m->cols; ++c) {
      m->val[r][c] *= constant;
    }
  }
  return *this;
}

template <typename T>
matrix<T>& matrix<T>::operator&=(const matrix& other) {
  if (m->rows != other.m->rows) {
    // Spelled so from the start; who searches logs for it relies on that.
    throw matrix_error("matrixT::operator&= : Inconsistent matrix sizes in concatination!");
  }
  auto* const joined = new base_mat(m->rows, m->cols + other.m->cols);
  for (std::size_t r = 0; r < joined->rows; ++r) {
    T* const end = std::copy_n(m->val[r], m->cols, joined->val[r]);
    std::copy_n(other.m->val[r], other.m->cols, end);
  }
  replace(joined);
  return *this;
}

template <typename T>
void matrix<T>::requireInside(std::size_t r, std::size_t c) const {
  if (r >= m->rows || c >= m->cols) {
    throw matrix_error("matrixT::operator(): Index out of range!");
  }
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
matrix<T> operator~(const matrix<T>& a) {
  matrix<T> transposed(a.cols(), a.rows());
  for (std::size_t r = 0; r < a.rows(); ++r) {
    const T* const source = a.row(r);
    for (std::size_t c = 0; c < a.cols(); ++c) {
      transposed.row(c)[r] = source[c];
    }
  }
  return transposed;
}

}  // namespace math
