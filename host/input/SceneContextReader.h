#pragma once

#include <kel/kelDataContext.h>

#include <QSharedPointer>

#include <istream>
#include <string>

namespace grouptracker {

/// Reads the description of a scene from JSON:
///
///     {"elements": [{"kind": "zone", "shape": "polygon", "vertices": [[x, y, z], ...]}]}
///
/// Unknown keys are passed over. Text that is no such thing is an `InputError`: with the line for
/// broken JSON, with the path of the value (such as "elements[2].kind") for a wrong or missing one.
QSharedPointer<kelDataContext> readSceneContext(std::istream& in, const std::string& name);
/// The same for a file.
QSharedPointer<kelDataContext> readSceneContext(const std::string& path);

}  // namespace grouptracker
