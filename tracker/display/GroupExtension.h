#pragma once

#include "tracker/display/DisplayGroup.h"

#include <kel/kelDataImage.h>

#include <QImage>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <opencv2/core/types.hpp>

#include <list>
#include <string>
#include <vector>

class QPainter;

/// Draws the groups of a frame on its image and saves it: every mobile's box with its ident, the
/// boxes of each group in the group's colour with a box around them, and the frame number.
///
/// Boxes are in image pixels, y down. The image is shared with the host and drawn in place. The
/// images of a sequence are numbered by file name: zero-padded numbers of `numDigits` digits
/// between a folder and `fileFormat`. An unreadable folder and an image that cannot be saved are
/// reported in the diagnostics, and the program goes on.
class GroupExtension {
 public:
  static std::string imagesFolder;  ///< folder of the input images, with its final "/"
  static std::string fileFormat;    ///< end of the image names, such as ".png"
  static int firstImage;            ///< number in the name of the first image
  static bool saveOutput;           ///< whether output images are saved
  static std::string outputFolder;  ///< where they go, with the final "/"
  static bool extDisplayOn;         ///< whether groups are shown on screen
  static bool openCVOutput;         ///< whether saved images are drawn by OpenCV
  static int numDigits;             ///< digits of a number in an image name

  GroupExtension() = default;
  /// A copy starts empty: boxes, groups and image belong to the frame of the one that is copied.
  GroupExtension(const GroupExtension& other);
  GroupExtension& operator=(const GroupExtension&) = delete;
  virtual ~GroupExtension() = default;

  /// Learns `numDigits` from the first name in `imagesFolder` that contains `fileFormat`.
  void init();

  /// Name of the input image of frame `i`; the first frame is 1.
  QString getImageFileName(int i) const;
  /// Name of the output image of frame `i`.
  QString getOutputImageFileName(int i) const;

  /// The frame that has just been taken in; what is drawn lies `Util::temporalWinSize` frames back.
  void setFrameNumber(int number) { m_frameNumber = number; }
  /// The image to draw on; null when there is none yet.
  void setCurrentImage(const QSharedPointer<kelDataImage>& image) { m_currentImage = image; }
  /// Number of clusters that the clustering mode found.
  void setClusterCount(int count) { m_clusterCount = count; }
  /// Image points of the cluster centres: column, row, column, row, ...
  void setCenters(std::vector<int> pixels);
  /// Image points at which motion changed suddenly: column, row, column, row, ...
  void setSuddenPoints(std::vector<int> pixels);

  /// Forgets the boxes of the mobiles.
  void resetBboxes();
  /// Forgets the groups.
  void resetGroups();
  /// Adds the box of a mobile.
  void addBbox(const cv::Rect& r, unsigned int ident);
  /// Adds the box of a mobile that another one includes; shown on screen only.
  void addInclBbox(const cv::Rect& r, unsigned int ident);
  /// Replaces the groups to draw.
  void drawGroups(std::list<DisplayGroup> groups);

  /// Draws on the current image and saves it, when `saveOutput` is set and there is an image.
  void saveOutputWithOpenCV();
  /// The file of the image that could not be saved just now, and why; empty when nothing failed.
  const QStringList& saveProblem() const { return m_saveProblem; }

  /// The current image with boxes, groups and cluster centres, for the screen; a null image when
  /// neither display nor saving is on or the image cannot be converted. Texts need a
  /// QGuiApplication and are left out without one.
  QImage drawExtension() const;
  /// The pixels as a Qt image; a null image, and a line in the diagnostics, when they are not 8-bit
  /// of one or three channels.
  static QImage toQt(const QSharedPointer<kelDataImage>& image);

 private:
  /// The box of one mobile, right and bottom inclusive.
  struct Bbox {
    int left;
    int top;
    int right;
    int bottom;
    int ident;
  };

  static Bbox toBbox(const cv::Rect& r, unsigned int ident);
  static std::string outputImageName(int i);
  int drawnFrame() const;

  void drawFrameStamp(cv::Mat& pixels) const;
  void drawMobiles(cv::Mat& pixels) const;
  static void drawGroup(cv::Mat& pixels, const DisplayGroup& group);

  static void paintMobiles(QPainter& painter, const std::list<Bbox>& boxes, Qt::PenStyle style);
  void paintGroups(QPainter& painter) const;
  void paintMarks(QPainter& painter) const;

  int m_frameNumber = 0;
  QStringList m_saveProblem;
  std::list<Bbox> m_bboxes;
  std::list<Bbox> m_inclBboxes;
  std::list<DisplayGroup> m_displayGroups;
  int m_clusterCount = 0;
  std::vector<int> m_centers;
  std::vector<int> m_suddenPoints;
  QSharedPointer<kelDataImage> m_currentImage;  ///< shared with the host; null before the first
};
