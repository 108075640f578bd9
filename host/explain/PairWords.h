#pragma once

#include "host/grouping/EvidenceModel.h"

#include <string>

namespace grouptracker {

/// What was seen of two persons around a moment, in words, each with how much it speaks for or
/// against their belonging together (log-odds), the strongest first. Lines begin with two blanks.
std::string reasonsFor(const PairFeatures& features, const EvidenceModel& model);

/// What would have to be different, with all else as it was, for the evidence to say the opposite;
/// a sentence for each thing that could do it by itself, and one when nothing could. Lines begin
/// with two blanks.
std::string whatWouldTurn(const PairFeatures& features, const EvidenceModel& model);

}  // namespace grouptracker
