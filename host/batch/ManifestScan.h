#pragma once

#include <cstddef>
#include <string>

namespace grouptracker {

/// Looks for recordings below a folder, and writes a manifest of them as CSV: folders and files
/// that a reader takes without being told anything, each with the truth and the camera beside it
/// (NAME.truth.jsonl, NAME.groups.txt, and where the folder holds one recording only truth.jsonl,
/// groups.txt and calibration.yml, too). A recording is called by the way to it. Paths are those
/// that the manifest's folder sees, absolute ones where the given folder is; "-" is standard
/// output, as if it lay in the working folder. Returns how many there are. A folder that cannot be
/// read is an `InputError`.
std::size_t writeManifestOf(const std::string& folder, const std::string& manifest);

}  // namespace grouptracker
