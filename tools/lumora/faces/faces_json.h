// SPDX-License-Identifier: Apache-2.0
// Faces that a user hands in as a JSON file.
#ifndef LUMORA_TOOLS_FACES_FACES_JSON_H_
#define LUMORA_TOOLS_FACES_FACES_JSON_H_

#include <string>
#include <vector>

#include "lumora/pipeline/face.h"

#include "tools/lumora/images/image.h"

namespace lumora::tools {

/// The format, for --help.
extern const char kFacesFormat[];

/// The faces of a JSON text for a picture of `picture` pixels. Throws Failure (Unreadable) with a
/// sentence that starts with `name` and says which value is wrong and what is expected there.
/// A face outside the picture is wrong too, unless `left_out` is there: then all faces that the
/// pipeline leaves out are left out here and counted. `doubts`, where it is given, receives
/// sentences about faces that are taken as they are but were probably meant otherwise.
std::vector<Face> ParseFaces(const std::string& text, const std::string& name, Size picture,
                             int* left_out = nullptr, std::vector<std::string>* doubts = nullptr);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_FACES_FACES_JSON_H_
