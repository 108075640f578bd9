// Groups beside a tracker of persons, in a program of one's own: reads lines "frame id x y"
// (metres) from standard input, in the order of frames, and prints who belongs together as soon as
// it is decided.
//
//     embed RATE < tracks.txt     RATE: frames a second

#include <cstdint>
#include <cstdlib>
#include <grouptracker/Tracker.h>
#include <iostream>
#include <stdexcept>
#include <vector>

namespace {

struct Frame {
  std::int64_t number = 0;
  std::vector<grouptracker::SeenPerson> people;
};

void print(const grouptracker::TrackerStep& step) {
  for (const grouptracker::TrackerGroup& group : step.groups) {
    std::cout << "frame " << *step.frame << ": group " << group.id << " of";
    for (const std::uint32_t member : group.members) {
      std::cout << ' ' << member;
    }
    std::cout << ", confidence " << group.confidence << '\n';
  }
}

void run(std::istream& in, double rate) {
  grouptracker::TrackerSettings settings;
  settings.rate = rate;
  grouptracker::Tracker tracker(settings);

  Frame frame;
  const auto handOver = [&] {
    print(tracker.update(frame.people, static_cast<double>(frame.number) / rate, frame.number));
    frame.people.clear();
  };
  Frame line;
  grouptracker::SeenPerson person;
  person.position.emplace();
  while (in >> line.number >> person.id >> (*person.position)[0] >> (*person.position)[1]) {
    if (!frame.people.empty() && line.number != frame.number) {
      handOver();
    }
    frame.number = line.number;
    frame.people.push_back(person);
  }
  handOver();
  for (const grouptracker::TrackerStep& step : tracker.finish()) {
    print(step);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(std::cin, argc > 1 ? std::atof(argv[1]) : 25.0);
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
