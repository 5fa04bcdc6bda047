// SPDX-License-Identifier: Apache-2.0
// Options that several commands have, told in the same words.
#ifndef LUMORA_TOOLS_OPTIONS_COMMON_OPTIONS_H_
#define LUMORA_TOOLS_OPTIONS_COMMON_OPTIONS_H_

#include <string>

#include "lumora/pipeline/device.h"
#include "tools/lumora/options/options.h"

namespace lumora::tools {

/// IN and --output of commands that make a picture of a picture.
void AddPictures(Options& options, std::string* in, std::string* out);

/// --compare.
void AddCompare(Options& options, std::string* compare);

/// --device: what computes the pictures.
void AddDevice(Options& options, Device* device);

/// --force.
void AddForce(Options& options, bool* force);

/// --json of commands that write files.
void AddReport(Options& options, bool* json);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_OPTIONS_COMMON_OPTIONS_H_
