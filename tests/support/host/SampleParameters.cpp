#include "tests/support/host/SampleParameters.h"

#include <fstream>

namespace grouptracker {

std::string sampleParameters(std::map<std::string, std::string> changes, char lineEnd) {
  // What the tests count on, whatever the sample is tuned to.
  changes.insert({{"coherenceThreshold:", "4"},
                  {"temporalWinSize:", "2"},
                  {"temporalWinForRemoval:", "8"},
                  {"maxDistGroupCreation:", "2"},
                  {"imagesFolder:", "images/"}});
  std::ifstream sample(GROUPTRACKER_SAMPLE_PARAMETERS);
  std::string text;
  for (std::string label, value; sample >> label >> value;) {
    const auto change = changes.find(label);
    text += label;
    text += " ";
    text += change == changes.end() ? value : change->second;
    text += lineEnd;
  }
  return text;
}

}  // namespace grouptracker
