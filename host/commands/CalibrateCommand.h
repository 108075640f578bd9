#pragma once

#include "host/camera/PeopleCamera.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"

#include <string>

namespace grouptracker {

/// `grouptracker calibrate`: estimates the camera from the people's boxes, says on standard output
/// what it found, and writes it as a calibration file.
class CalibrateCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  InputChoice m_choice;
  std::string m_outputFile;
  double m_bodyHeight = usualBodyHeight;  ///< metres
};

}  // namespace grouptracker
