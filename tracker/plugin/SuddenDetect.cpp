#include "tracker/plugin/SuddenDetect.h"

int SuddenDetect::track_length = 0;
double SuddenDetect::min_distance = 0.0;
int SuddenDetect::gridSize = 0;
std::string SuddenDetect::gaussianGrid;
double SuddenDetect::alpha = 0.0;
