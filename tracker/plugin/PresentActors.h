#pragma once

#include <kel/kelDataActor.h>

#include <QList>
#include <QSharedPointer>

#include <string>

/// The actors of a frame without what a host left empty: null actors, null mobiles, mobiles without
/// an object. An actor whose current mobile is empty is left out as a whole, since an earlier one
/// must not be taken for it. Where nothing is empty, as it should be, the list is the host's own.
class PresentActors {
 public:
  using Actors = QList<QSharedPointer<kelDataActor>>;

  explicit PresentActors(const Actors& actors);

  const Actors& list() const { return m_actors; }
  /// What was left out, such as "2 actors and 1 mobile"; empty when nothing was.
  std::string missing() const;

 private:
  void add(const QSharedPointer<kelDataActor>& actor);

  Actors m_actors;
  int m_missingActors = 0;
  int m_missingMobiles = 0;  ///< of the actors that stay
};
