#pragma once

#include "host/run/ParameterFile.h"
#include "tracker/parameters/ParameterTable.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>

#include <cstdio>
#include <mutex>
#include <vector>

namespace grouptracker {

/// What all processes of a program share, kept for one of them: the parameters, the number of the
/// next group, the camera and where lines are printed. A process that only works while these are
/// in use knows nothing of others. The palette stays common, as nothing but pictures shows it.
class OwnStatics {
 public:
  /// `values` are those that the process will read from its file.
  explicit OwnStatics(const std::vector<ParameterEntry>& values);
  OwnStatics(const OwnStatics&) = delete;
  OwnStatics& operator=(const OwnStatics&) = delete;
  ~OwnStatics();

  /// Puts them in the place of others' as long as it lives; others wait meanwhile. What is printed
  /// goes to `printed`, which may be null.
  class Use {
   public:
    Use(OwnStatics& statics, std::FILE* printed);
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use();

   private:
    std::unique_lock<std::mutex> m_lock;
  };

 private:
  void keep();
  void put() const;

  static std::mutex s_mutex;
  static OwnStatics* s_inPlace;  ///< whose are there now; null for nobody's

  std::vector<ParameterValue> m_parameters;  ///< in the order of the table
  int m_nextGroup = 0;
  QSharedPointer<kelAbstractDataCalibration> m_calibration;
};

}  // namespace grouptracker
