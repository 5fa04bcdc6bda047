// SPDX-License-Identifier: Apache-2.0
// Parts of the command that are loaded when they are needed. They lie in a folder of their own
// beside the libraries, which is found from where the command lies.
#ifndef LUMORA_TOOLS_SUPPORT_MODULE_H_
#define LUMORA_TOOLS_SUPPORT_MODULE_H_

#include <memory>
#include <string>

namespace lumora::tools {

struct Module {
  const char* name;      ///< of its file, without the ending
  const char* function;  ///< that it shows to the command
  const char* purpose;   ///< what the command cannot do without it, as in "cannot draw"
  const char* remedy;    ///< what helps when it cannot be loaded
};

/// Where the module is; where it would be if it is missing.
std::string ModulePlace(const Module& module);

/// The module's function; the module stays loaded. Throws Failure (Failed) with the reason and the
/// remedy when there is none, and std::bad_alloc when there is no memory for it.
void* ModuleFunction(const Module& module);

/// Throws Failure (Failed): the module is not of this version of the command.
[[noreturn]] void RejectVersionOf(const Module& module);

/// What the module's function made, which is none where the module is of another version. Throws
/// Failure (Failed) then.
template <typename Made>
std::unique_ptr<Made> MadeBy(const Module& module, Made* made) {
  if (made == nullptr) RejectVersionOf(module);
  return std::unique_ptr<Made>(made);
}

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_MODULE_H_
