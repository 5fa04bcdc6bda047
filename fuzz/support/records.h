// SPDX-License-Identifier: Apache-2.0
// Face records out of fuzz inputs.
#ifndef LUMORA_FUZZ_SUPPORT_RECORDS_H_
#define LUMORA_FUZZ_SUPPORT_RECORDS_H_

#include <vector>

#include "fuzz/support/input.h"
#include "lumora/engine/face_info.h"

namespace lumora::fuzz {

/// A record that whitening and slimming can work with, for a frame of that size.
FACE_INFO_t CleanRecord(int width, int height);

/// A clean or an empty record in which some numbers, or all, stand for something else: extremes,
/// small numbers or any.
FACE_INFO_t TakeRecord(Input& input, int width, int height);
/// None to `most` of them.
std::vector<FACE_INFO_t> TakeRecords(Input& input, int most, int width, int height);

/// How many of those records a call is told about: all of them, or a number below zero.
int TakeCount(Input& input, const std::vector<FACE_INFO_t>& records);

}  // namespace lumora::fuzz

#endif  // LUMORA_FUZZ_SUPPORT_RECORDS_H_
