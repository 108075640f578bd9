#pragma once

#include "Command.h"
#include "InputChoice.h"
#include "PeopleCamera.h"

#include <string>

/// `grouptracker calibrate`: estimates the camera from the people's boxes, says on standard output
/// what it found, and writes it as a calibration file.
class CalibrateCommand : public Command {
 public:
  CLI::App* declare(CLI::App& program) override;
  int run() override;

 private:
  InputChoice m_choice;
  std::string m_outputFile;
  double m_bodyHeight = usualBodyHeight;  ///< metres
};
