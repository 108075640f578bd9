#pragma once

#include <kel/BoundingBox3D.h>
#include <kel/kelAbstractData.h>
#include <kel/kelDataLinkedPhysicalObject.h>
#include <kel/kelExport.h>

#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <list>
#include <string>

/// Somebody or something that acts in the scene: a person whom the upstream tracker follows, or a
/// group that the group tracker reports.
class KEL_EXPORT kelDataActor : public kelAbstractData {
 public:
  kelDataActor() = default;
  kelDataActor(const kelDataActor&) = default;
  kelDataActor& operator=(const kelDataActor&) = default;
  ~kelDataActor() override;

  /// The actor's id.
  unsigned int getIdent() const { return m_ident; }
  void setIdent(unsigned int ident) { m_ident = ident; }
  /// The type as free text.
  const std::string& getType() const { return m_type; }
  void setType(const std::string& type) { m_type = type; }
  /// The position in the scene, metres.
  const cv::Point3f& getCurrentPosition() const { return m_position; }
  void setCurrentPosition(const cv::Point3f& position) { m_position = position; }
  /// The box in the image, pixels.
  const cv::Rect& getBoundingBox2D() const { return m_box2D; }
  void setBoundingBox2D(const cv::Rect& box) { m_box2D = box; }
  /// The box in the scene, metres.
  const BoundingBox3D& getBoundingBox3D() const { return m_box3D; }
  void setBoundingBox3D(const BoundingBox3D& box) { m_box3D = box; }

  /// Appends a mobile to the actor's list.
  void addLinkedPhysicalObject(const QSharedPointer<kelDataLinkedPhysicalObject>& object);
  /// Takes a mobile off the actor's list, where it stands first; nothing where it does not stand.
  void removeLinkedPhysicalObject(const QSharedPointer<kelDataLinkedPhysicalObject>& object);
  /// The actor's mobiles; of a tracked person from the oldest to the current one.
  const std::list<QSharedPointer<kelDataLinkedPhysicalObject>>& getLinkedPhysicalObjectList()
      const {
    return m_objects;
  }

 private:
  unsigned int m_ident = 0;
  std::string m_type = "UNKNOWN";
  cv::Point3f m_position;
  cv::Rect m_box2D;
  BoundingBox3D m_box3D;
  std::list<QSharedPointer<kelDataLinkedPhysicalObject>> m_objects;
};
