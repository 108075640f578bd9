#include "tracker/clustering/matrix.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace math {

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
void matrix<T>::destroy(base_mat* unused) {
  delete unused;
}

template <typename T>
matrix<T>& matrix<T>::operator=(const matrix& other) {
  matrix shared(other);
  std::swap(m, shared.m);
  return *this;
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
  combine(other, std::plus<T>(), additionError);
  return *this;
}

template <typename T>
matrix<T>& matrix<T>::operator-=(const matrix& other) {
  combine(other, std::minus<T>(), subtractionError);
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
void matrix<T>::throwOutside() {
  throw matrix_error("matrixT::operator(): Index out of range!");
}

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

template class matrix<double>;
template matrix<double> operator~(const matrix<double>& a);

}  // namespace math
