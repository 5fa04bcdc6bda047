// SPDX-License-Identifier: Apache-2.0
// Clips that are not Y4M: how to recognise them, and what to type instead.
#ifndef LUMORA_TOOLS_VIDEO_CONTAINERS_H_
#define LUMORA_TOOLS_VIDEO_CONTAINERS_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// How many bytes from its start tell a container.
inline constexpr size_t kContainerStart = 512;

/// What kind of file begins like that, as "an AVI file"; nothing when the kind is unknown.
std::optional<std::string> ContainerOf(const Bytes& start);

/// Whether a file of that name is expected to be one of the containers.
bool IsContainerName(const std::string& path);

/// Whether the file at that path is a container: by its content, or by its name where it cannot be
/// looked at. Standard input is not looked at.
bool IsContainer(const std::string& path);

/// Thrown for a clip that is in a container.
class ContainerFailure : public Failure {
 public:
  ContainerFailure(const std::string& name, const std::string& container)
      : Failure(ExitCode::Unreadable, name + ": not a Y4M clip but " + container) {}
};

/// A line for a shell that does what `program` video <in> -o <out> <options> would, with ffmpeg
/// before it where the input is in a container, and behind it where the output's name says so. The
/// sound of the input goes into the output.
std::string FfmpegLine(const std::string& program, const std::string& in, bool in_is_container,
                       const std::string& out, const std::vector<std::string>& options);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_VIDEO_CONTAINERS_H_
