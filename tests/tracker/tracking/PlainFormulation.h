#pragma once

#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/MetaLPO.h"

#include <QSharedPointer>

#include <map>
#include <string>

/// What the tracker works out by indexes, kept sums and pointers, worked out the long way: every
/// member, every link and every look-up anew. Slow and meant to be obviously right.
namespace PlainFormulation {

/// The coherence of a group with a mobile and its future, on a copy of all members.
double coherence(const Group& group, const QSharedPointer<MetaLPO>& mobile);
/// The spreads of speed and direction of a group.
std::pair<double, double> spreads(const Group& group);
/// The best sons that the links of the last frames give, of the nodes that any link qualifies.
std::map<const MetaLPO*, const MetaLPO*> bestSons(GroupTracker& tracker, unsigned int currentFrame);
/// The lines that tell of splits.
std::string splitLines(const GroupTracker& tracker);

}  // namespace PlainFormulation
