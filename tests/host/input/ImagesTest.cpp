#include "host/input/InputImages.h"
#include "host/input/SceneReader.h"
#include "host/pictures/Film.h"
#include "tests/support/base/Images.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace grouptracker {

namespace {

constexpr int grey = 40;  // of the first image; each further one is as much brighter

cv::Mat image(cv::Size size, int number) {
  return {size, CV_8UC3, cv::Scalar::all(grey * (number + 1))};
}

/// A scene without people whose frames name these images; none where the name is empty.
std::string sceneOf(const std::vector<std::string>& images) {
  std::string text;
  for (const std::string& file : images) {
    text += file.empty() ? "{" : "{\"image\": \"" + file + "\", ";
    text += "\"mobiles\": [], \"actors\": []}\n";
  }
  return text;
}

TEST(VideoImages, GiveEachFrameItsOwnPictureOfTheVideo) {
  const TempFolder folder;
  const std::string file = folder.path() / "film.avi";
  Film film(file, 10.0);
  for (int number = 0; number < 3; ++number) {
    film.add(image({64, 48}, number));
  }
  film.finish();
  std::istringstream scene(sceneOf({"", "", "", ""}));
  VideoImages video(std::make_unique<SceneReader>(scene, "scene", "", nullptr), file);
  std::vector<QSharedPointer<kelDataImage>> seen;
  for (InputFrame frame; seen.size() < 3 && video.next(frame);) {
    seen.push_back(frame.image);
  }
  for (int number = 0; number < 3; ++number) {
    const cv::Mat& pixels = seen[static_cast<std::size_t>(number)]->mat();
    EXPECT_EQ(pixels.size(), cv::Size(64, 48));
    EXPECT_NEAR(cv::mean(pixels)[0], grey * (number + 1), 5);
  }
  InputFrame fourth;
  EXPECT_EQ(errorOf([&] { video.next(fourth); }),
            "scene:4: " + file + " has only 3 frames, none for frame 4");
  const std::string text = folder.write("film.txt", "no film\n");
  EXPECT_EQ(errorOf([&] { VideoImages(nullptr, text); }),
            text + ": neither a folder of images nor a readable video");
}

TEST(ImageLoader, RefusesImagesOfChangingSize) {
  const TempFolder folder;
  writeImage(folder.path() / "a.png", image({32, 24}, 0));
  writeImage(folder.path() / "b.png", image({24, 32}, 1));
  std::istringstream text(sceneOf({"a.png", "a.png", "b.png"}));
  SceneReader scene(text, "scene", folder.path(), nullptr);
  ImageLoader loader;
  InputFrame frame;
  for (int number = 1; number <= 2; ++number) {
    ASSERT_TRUE(scene.next(frame));
    loader.load(frame);
    EXPECT_EQ(frame.image->mat().size(), cv::Size(32, 24));
  }
  ASSERT_TRUE(scene.next(frame));
  EXPECT_EQ(errorOf([&] { loader.load(frame); }), "scene:3: the image " +
                                                      (folder.path() / "b.png").string() +
                                                      " has 24x32 pixels, the first has 32x24");
}

TEST(ImagesWithin, RefuseWhatLiesOutsideOfTheFolder) {
  const TempFolder folder;
  const auto scenes = folder.path() / "scenes";
  std::filesystem::create_directories(scenes / "images");
  folder.write("secret.png", "");
  std::filesystem::create_symlink("../../secret.png", scenes / "images" / "link.png");
  const auto error = [&](const std::string& image) {
    return errorOf([&] {
      std::istringstream text(sceneOf({image}));
      ImagesWithin frames(std::make_unique<SceneReader>(text, "scene", scenes, nullptr), scenes);
      InputFrame frame;
      EXPECT_TRUE(frames.next(frame));
    });
  };
  for (const std::string image : {"a.png", "images/../b.png", "images/..png"}) {
    EXPECT_EQ(error(image), "no error") << image;
  }
  for (const std::string image : {"../secret.png", "images/link.png", "/etc/passwd",
                                  "../scenes-of-others/a.png", "images/../../secret.png"}) {
    EXPECT_THAT(error(image), testing::EndsWith(" lies outside the input's folder; "
                                                "--allow-outside-images lets it be read"))
        << image;
  }
}

// A small file may unfold to more than the memory holds, and a pipe be waited for without end.
TEST(Image, IsRefusedBeforeItIsDecodedWhenItIsTooLargeOrNoFile) {
  const TempFolder folder;
  const std::string file = folder.path() / "i.png";
  writeImage(file, image({64, 48}, 0));
  limitPixels(64 * 48 - 1);
  EXPECT_EQ(errorOf([&] {
              readImage(file, {"s.jsonl", 3});
            }),
            "s.jsonl:3: the image " + file + " has 64x48 pixels, more than --max-pixels 3071");
  limitPixels(usualMostPixels);
  EXPECT_EQ(readImage(file, {"s.jsonl", 3}).cols, 64);
  const std::string pipe = folder.path() / "pipe.png";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& name : {pipe, std::string("/dev/zero")}) {
    EXPECT_EQ(errorOf([&] {
                readImage(name, {"s.jsonl", 3});
              }),
              "s.jsonl:3: the image " + name + " is missing or not readable");
  }
}

}  // namespace

}  // namespace grouptracker
