#pragma once

#include <istream>
#include <string>

namespace grouptracker {

/// Looks through the text of an OpenCV storage file (YAML, XML or JSON) before OpenCV does. Its
/// parsers trust what they read: zero bytes, broken XML or values nested without end can end the
/// program, and lines that belong to no map can keep the parser of YAML from ever coming back. Such
/// a text is an `InputError` at its line; anything else wrong is left to OpenCV.
///
/// Of YAML it takes what OpenCV itself writes: one map, whose values are maps, lists, texts and
/// numbers, below a first line that names the version.
///
///     %YAML:1.0
///     ---
///     # focal length in pixels
///     camera_matrix: !!opencv-matrix
///        rows: 3
///        cols: 3
///        dt: d
///        data: [ 800., 0., 320.,
///            0., 800., 240., 0., 0., 1. ]
void refuseUnsoundStorage(std::istream& in, const std::string& name);

}  // namespace grouptracker
