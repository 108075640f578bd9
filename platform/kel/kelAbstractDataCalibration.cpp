#include <kel/kelAbstractDataCalibration.h>

kelAbstractDataCalibration::~kelAbstractDataCalibration() = default;
