#include "PictureWriter.h"

void PictureWriter::write(const ReportedStep& step) {
  if (step.groups.inputFrame) {
    m_video.add(m_painter.paint(step), step.groups.reportedFrame);
  }
}
