#include "tracker/tracking/MetaLPOLink.h"

#include "tracker/tracking/MetaLPO.h"

MetaLPOLink::MetaLPOLink(const QSharedPointer<MetaLPO>& father, const QSharedPointer<MetaLPO>& son,
                         double reliability)
    : m_father(father),
      m_fatherId(father ? father->getIdent() : noId),
      m_son(son),
      m_reliability(reliability) {}
