// Writes the scene that the process is timed on as a scene file: steady_scene PEOPLE FRAMES.

#include "benchmarks/SteadyScene.h"

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "steady_scene PEOPLE FRAMES > scene.jsonl\n";
    return 2;
  }
  SteadyScene scene({std::atoi(argv[1]), SteadyScene::Grouping::mixed});
  for (int frame = std::atoi(argv[2]); frame > 0; --frame) {
    std::cout << scene.nextAsLine();
  }
  return 0;
}
