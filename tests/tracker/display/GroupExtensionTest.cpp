#include "tests/support/base/Images.h"
#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/geometry/Util.h"

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

namespace {

namespace fs = std::filesystem;

const cv::Vec3b white(255, 255, 255);
const cv::Vec3b black(0, 0, 0);
const cv::Vec3b mobileGrey(200, 200, 200);

/// An extension with a white image, a folder of its own, and static settings that are put back.
class OutputImages : public testing::Test {
 protected:
  void SetUp() override {
    folder = fs::path(testing::TempDir()) /
             testing::UnitTest::GetInstance()->current_test_info()->name();
    fs::create_directories(folder);
    GroupExtension::outputFolder = GroupExtension::imagesFolder = folder.string() + "/";
    GroupExtension::fileFormat = ".png";
    GroupExtension::firstImage = 1;
    GroupExtension::numDigits = 6;
    GroupExtension::saveOutput = true;
    Util::temporalWinSize = 2;
    extension.setCurrentImage(image);
    extension.setFrameNumber(3);
  }

  void TearDown() override {
    fs::remove_all(folder);
    GroupExtension::outputFolder = GroupExtension::imagesFolder = GroupExtension::fileFormat = "";
    GroupExtension::firstImage = 0;
    GroupExtension::numDigits = 10;
    GroupExtension::saveOutput = false;
    Util::temporalWinSize = 0;
  }

  template <typename Action>
  static std::string printedBy(Action action) {
    Diagnostics::flush();
    testing::internal::CaptureStdout();
    action();
    Diagnostics::flush();
    return testing::internal::GetCapturedStdout();
  }

  std::string savePrinted() {
    return printedBy([this] { extension.saveOutputWithOpenCV(); });
  }

  cv::Vec3b pixel(int x, int y) const { return image->mat().at<cv::Vec3b>(y, x); }
  bool isWhite(const cv::Rect& area) const {
    return cv::countNonZero(image->mat()(area).reshape(1) != 255) == 0;
  }

  fs::path folder;
  QSharedPointer<kelDataImage> image =
      QSharedPointer<kelDataImage>::create(cv::Mat(200, 300, CV_8UC3, cv::Scalar::all(255)));
  GroupExtension extension;
};

TEST_F(OutputImages, AreNamedWithPaddedNumbers) {
  const auto name = [this](int i) { return extension.getOutputImageFileName(i).toStdString(); };
  const std::string prefix = folder.string() + "/";
  GroupExtension::firstImage = 1;
  EXPECT_EQ(name(0), prefix + "000000_output.png");
  EXPECT_EQ(name(10), prefix + "000010_output.png");
  GroupExtension::firstImage = 0;
  EXPECT_EQ(name(100000), prefix + "099999_output.png");
  GroupExtension::numDigits = 2;
  EXPECT_EQ(name(1001), prefix + "1000_output.png");
  EXPECT_EQ(printedBy([this] { extension.getImageFileName(8); }),
            "input image " + prefix + "07.png\n");
}

TEST_F(OutputImages, LearnTheDigitsFromTheFolder) {
  const auto init = [this] { extension.init(); };
  // Nothing but the folder's own short entries: no digits, never a negative number of them.
  EXPECT_EQ(printedBy(init), "Images of 0 caracters\n");
  std::ofstream(folder / "img00012.png").put('x');
  EXPECT_EQ(printedBy(init), "Images of 8 caracters\n");
  EXPECT_EQ(GroupExtension::numDigits, 8);

  GroupExtension::imagesFolder = folder.string() + "/none";
  EXPECT_EQ(printedBy(init), "Error opening " + folder.string() + "/none\n");
  EXPECT_EQ(GroupExtension::numDigits, 8);
}

TEST_F(OutputImages, CarryAStampWithRoomForItsDigits) {
  const std::pair<int, int> rows[] = {{9, 20},   {10, 30},  {99, 30},
                                      {100, 50}, {999, 50}, {1000, 65}};
  for (const auto& [frame, offset] : rows) {
    image->mat().setTo(cv::Scalar::all(255));
    cv::Mat expected = image->mat().clone();
    cv::putText(expected, std::to_string(frame), {300 - offset, 20}, cv::FONT_HERSHEY_SIMPLEX, 0.5,
                {160, 59, 210}, 2);
    extension.setFrameNumber(frame + 2);
    EXPECT_EQ(savePrinted(), "");
    EXPECT_EQ(cv::norm(image->mat(), expected), 0.0) << frame;
    const cv::Mat saved = imageOf(extension.getOutputImageFileName(frame).toStdString());
    ASSERT_FALSE(saved.empty()) << frame;
    EXPECT_EQ(cv::norm(saved, expected), 0.0) << frame;
  }
}

TEST_F(OutputImages, LabelMobilesBelowWhileThereIsRoom) {
  extension.addInclBbox({100, 60, 20, 20}, 3);  // not drawn
  extension.addBbox({200, 100, 20, 84}, 1);     // last row 183, so the label stands on row 199
  extension.addBbox({10, 100, 20, 85}, 2);      // there is no row 200
  extension.saveOutputWithOpenCV();

  EXPECT_EQ(pixel(219, 183), mobileGrey);
  EXPECT_TRUE(isWhite({100, 40, 100, 160}));
  EXPECT_FALSE(isWhite({200, 184, 50, 16}));
  EXPECT_TRUE(isWhite({200, 80, 50, 20}));
  EXPECT_TRUE(isWhite({10, 185, 50, 15}));
  EXPECT_FALSE(isWhite({10, 80, 50, 20}));
}

TEST_F(OutputImages, ShowGroupsInExchangedColorsWithAUnion) {
  DisplayGroup group(7, QColor(10, 20, 30), "");
  group.addMobile(1, {40, 60, 20, 30});
  group.addMobile(2, {100, 80, 20, 30});
  extension.drawGroups({group});
  extension.saveOutputWithOpenCV();
  const cv::Vec3b groupColor(10, 20, 30);  // of blue, green and red
  EXPECT_EQ(pixel(60, 75), groupColor);
  EXPECT_EQ(pixel(110, 80), groupColor);
  EXPECT_EQ(pixel(120, 70), black);
  EXPECT_EQ(pixel(80, 110), black);
}

TEST_F(OutputImages, HaveNoUnionBeyondAThousandPixels) {
  image->mat() = cv::Mat(60, 1100, CV_8UC3, cv::Scalar::all(255));
  DisplayGroup group(0, Qt::white, "");
  group.addMobile(1, {1000, 40, 30, 10});
  extension.drawGroups({group});
  extension.saveOutputWithOpenCV();
  EXPECT_EQ(pixel(1015, 40), white);

  group.addMobile(2, {990, 40, 50, 10});
  extension.drawGroups({group});
  extension.saveOutputWithOpenCV();
  EXPECT_EQ(pixel(1015, 40), black);
}

TEST_F(OutputImages, AreSavedOrReported) {
  extension.setFrameNumber(1);  // its frame is -1
  EXPECT_EQ(savePrinted(), "");
  extension.setFrameNumber(3);
  extension.setCurrentImage({});
  EXPECT_EQ(savePrinted(), "");
  EXPECT_TRUE(fs::is_empty(folder));

  extension.setCurrentImage(image);
  GroupExtension::fileFormat = ".nonsense";  // the writer throws
  EXPECT_EQ(savePrinted(), "Could not save: " + folder.string() + "/000001_output.nonsense\n");
  GroupExtension::fileFormat = ".png";
  GroupExtension::outputFolder = folder.string() + "/none/";
  EXPECT_EQ(savePrinted(), "Could not save: " + folder.string() + "/none/000001_output.png\n");
}

TEST_F(OutputImages, ForTheScreenLeaveTheHostsPixelsAlone) {
  image->mat().at<cv::Vec3b>(5, 5) = {1, 2, 3};
  extension.addBbox({10, 20, 30, 40}, 1);
  DisplayGroup group(7, QColor(10, 20, 30), "");
  group.addMobile(1, {100, 60, 20, 30});
  extension.drawGroups({group});

  const QImage screen = extension.drawExtension();
  EXPECT_EQ(screen.pixelColor(5, 5), QColor(3, 2, 1));
  EXPECT_EQ(screen.pixelColor(39, 59), QColor(Qt::lightGray));
  EXPECT_EQ(screen.pixelColor(120, 90), QColor(10, 20, 30));
  EXPECT_EQ(pixel(39, 59), white);

  extension.setCurrentImage(QSharedPointer<kelDataImage>::create(cv::Mat(2, 2, CV_32FC3)));
  EXPECT_EQ(printedBy([this] { EXPECT_TRUE(extension.drawExtension().isNull()); }),
            "Image cannot be converted.");
}

}  // namespace
