// SPDX-License-Identifier: Apache-2.0
// What the set-up of an engine prints, line by line.
#ifndef LUMORA_TESTS_ENGINE_SETUP_TRANSCRIPT_H_
#define LUMORA_TESTS_ENGINE_SETUP_TRANSCRIPT_H_

#include <string>
#include <vector>

#include "lumora/lumora.h"
#include "support/log_capture.h"

namespace lumora::test {

using Lines = std::vector<LogLine>;

/// Whether the driver of the current context gives and takes program binaries.
bool DriverHasBinaries();

/// Which programs a set-up loads, in order.
struct ProgramLoad {
  const GLProgram* program;
  const char* cache_file;  ///< null: never cached
  bool announces_use;
};

/// The loads of each path, of an engine that is set up.
std::vector<ProgramLoad> PreviewLoads(const android::GPUBeautyFace& engine);
std::vector<ProgramLoad> ColourConvertLoads(const android::GPUBeautyFace& engine);
std::vector<ProgramLoad> CaptureLoads(const android::GPUBeautyFace& engine);

/// The lines of loading programs from an empty cache directory (whose files they have written by
/// now) or from one that holds them. Needs the engine's context.
Lines ColdLoads(const std::vector<ProgramLoad>& loads, const std::string& cache_directory);
Lines WarmLoads(const std::vector<ProgramLoad>& loads);

/// The lines of making `count` buffered images, after WithoutNumbers.
Lines ImageLines(int count);
/// The lines of deleting programs.
Lines DeletionLines(const std::vector<unsigned>& programs);

/// Addresses, names and times of image lines cut out: they differ from run to run.
Lines WithoutNumbers(Lines lines);

Lines operator+(Lines a, const Lines& b);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_ENGINE_SETUP_TRANSCRIPT_H_
