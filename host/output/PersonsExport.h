#pragma once

#include "host/base/OutputFile.h"
#include "host/run/StepSink.h"

#include <string>

namespace grouptracker {

/// Writes where everybody was, alone or in a group, one line per frame and person:
///
///     frame,time,person,x,y,left,top,width,height,group
///     930,62,3,7.25,1.5,512,160,31,75,4
///
/// `frame` is the input's own number, `time` its seconds, x and y are metres on the ground, the box
/// is in pixels. What is not known is empty, and so is the group of somebody who is alone.
class PersonsExport : public StepSink {
 public:
  explicit PersonsExport(const std::string& path);

  void write(const RunStep& step) override;

 private:
  OutputFile m_file;
};

}  // namespace grouptracker
