#include "host/base/InputError.h"
#include "host/input/ReadAhead.h"
#include "host/input/SceneReader.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

namespace grouptracker {

namespace {

/// Numbers its frames from 1, and fails where it is told to. Counted without a lock what only the
/// reading thread may touch.
class CountingSource : public FrameSource {
 public:
  CountingSource(std::int64_t last, std::int64_t failsAt, std::atomic<std::int64_t>& read)
      : m_last(last), m_failsAt(failsAt), m_readByAll(read) {}
  bool next(InputFrame& frame) override {
    if (m_number == m_last) {
      return false;
    }
    if (++m_number == m_failsAt) {
      throw InputError("scene", static_cast<std::uint64_t>(m_number), "is damaged");
    }
    frame = InputFrame();
    frame.number = m_number;
    frame.actors.append(QSharedPointer<kelDataActor>::create());
    ++m_readByAll;
    return true;
  }

 private:
  std::int64_t m_last;
  std::int64_t m_failsAt;
  std::int64_t m_number = 0;
  std::atomic<std::int64_t>& m_readByAll;
};

class ReadsAhead : public testing::Test {
 protected:
  std::unique_ptr<ReadAhead> ahead(std::int64_t last, std::int64_t failsAt = 0) {
    return std::make_unique<ReadAhead>(std::make_unique<CountingSource>(last, failsAt, m_read));
  }

  std::atomic<std::int64_t> m_read = 0;
  InputFrame m_frame;
};

constexpr std::int64_t many = 50 * ReadAhead::capacity;
constexpr std::int64_t without = -1;

TEST_F(ReadsAhead, HandsOutAllFramesInOrderAndThenNone) {
  const auto frames = ahead(many);
  for (std::int64_t number = 1; number <= many; ++number) {
    ASSERT_TRUE(frames->next(m_frame));
    ASSERT_EQ(m_frame.number, number);
    ASSERT_EQ(m_frame.actors.size(), 1);
  }
  EXPECT_FALSE(frames->next(m_frame));
  EXPECT_FALSE(frames->next(m_frame));
}

TEST_F(ReadsAhead, FailsBehindTheFramesThatWereGood) {
  const auto frames = ahead(many, 20);
  for (std::int64_t number = 1; number < 20; ++number) {
    ASSERT_TRUE(frames->next(m_frame));
    ASSERT_EQ(m_frame.number, number);
  }
  EXPECT_THROW(frames->next(m_frame), InputError);
  EXPECT_FALSE(frames->next(m_frame));
}

TEST_F(ReadsAhead, ReadsNoFurtherThanThereIsRoom) {
  const auto frames = ahead(many);
  ASSERT_TRUE(frames->next(m_frame));
  constexpr std::int64_t most = 2 * ReadAhead::capacity + 1;  // one is in the reader's hand
  for (std::int64_t before = without; m_read != before;
       std::this_thread::sleep_for(std::chrono::milliseconds(20))) {
    before = m_read;
  }
  EXPECT_LE(m_read, most);
}

TEST_F(ReadsAhead, EndsWhileItWaitsForSomebodyToTakeMore) {
  ahead(many);
  const auto started = ahead(many);
  EXPECT_TRUE(started->next(m_frame));
}

/// Two people with lists that get one mobile each frame and lose theirs from the seventh on.
std::string sceneOf(int frames) {
  std::string text;
  for (int frame = 0; frame < frames; ++frame) {
    std::string mobiles;
    std::string actors;
    for (int person = 0; person < 2; ++person) {
      const std::string comma = person > 0 ? ", " : "";
      std::string list;
      for (int seen = std::max(frame - 6, 0); seen <= frame; ++seen) {
        list += (list.empty() ? "" : ", ") + std::to_string(2 * seen + person);
      }
      mobiles += comma + R"({"id": )" + std::to_string(2 * frame + person) +
                 R"(, "type": "PERSON", "box2d": [0, 0, 1, 1], "box3d": [0, 0, 0, 0, 0, 0], )" +
                 R"("position": [0, 0, 0]})";
      actors += comma + R"({"id": )" + std::to_string(person) + R"(, "mobiles": [)" + list + "]}";
    }
    text += R"({"mobiles": [)" + mobiles + R"(], "actors": [)" + actors + "]}\n";
  }
  return text;
}

std::string listsOf(FrameSource& frames) {
  std::string lists;
  for (InputFrame frame; frames.next(frame);) {
    for (const auto& actor : frame.actors) {
      lists += "|";
      for (const auto& mobile : actor->getLinkedPhysicalObjectList()) {
        lists += std::to_string(mobile->getIdent()) + " ";
      }
    }
    lists += "\n";
  }
  return lists;
}

TEST(ReadsAScene, MakesActorsThatAreOnlyPlannedAndLeavesOthers) {
  const std::string scene = sceneOf(static_cast<int>(many));
  std::istringstream plain(scene);
  SceneReader reader(plain, "scene", "", nullptr);
  const std::string lists = listsOf(reader);
  EXPECT_EQ(lists.substr(0, lists.find('\n', 10)), "|0 |1 \n|0 2 |1 3 ");
  for (const bool plans : {false, true}) {
    std::istringstream in(scene);
    auto source = std::make_unique<SceneReader>(in, "scene", "", nullptr);
    if (plans) {
      source->planActors();
    }
    ReadAhead ahead(std::move(source));
    EXPECT_EQ(listsOf(ahead), lists) << plans;
  }
}

}  // namespace

}  // namespace grouptracker
