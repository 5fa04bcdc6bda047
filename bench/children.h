// SPDX-License-Identifier: Apache-2.0
// Work that needs a process of its own: the program starts itself with --child=<name>.
#ifndef LUMORA_BENCH_CHILDREN_H_
#define LUMORA_BENCH_CHILDREN_H_

#include <string>
#include <vector>

namespace lumora::bench {

/// Does the child's work and prints its numbers. Returns the exit code.
int RunChild(const std::string& name);

/// Starts a child with these variables ("NAME=value") on top of the environment and returns what
/// it printed.
std::vector<double> StartChild(const std::string& name, const std::vector<std::string>& variables);

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_CHILDREN_H_
