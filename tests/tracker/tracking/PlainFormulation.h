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
/// The remembered mobiles by id, found among those of all frames so far.
std::map<int, QSharedPointer<MetaLPO>> remembered(GroupTracker& tracker, unsigned int currentFrame);
/// What the mobile dump says of a frame.
std::string dump(GroupTracker& tracker, unsigned int currentFrame);
/// The groups as `printGroups` prints them, without the events.
std::string groupLines(const GroupTracker& tracker);
/// Lets mobiles join groups: everybody asks anew in every pass.
void updateGroups(GroupTracker& tracker, unsigned int processedFrame);

}  // namespace PlainFormulation
