// SPDX-License-Identifier: Apache-2.0
// Parts of the command that are loaded when they are needed. They lie in a folder of their own
// beside the libraries, which is found from where the command lies.
#ifndef LUMORA_TOOLS_SUPPORT_MODULE_H_
#define LUMORA_TOOLS_SUPPORT_MODULE_H_

#include <string>

namespace lumora::tools {

/// Where the module is; where it would be if it is missing.
std::string ModulePlace(const std::string& name);

/// A function of the module, which stays loaded. Throws Failure (Failed) with the reason when there
/// is none, and std::bad_alloc when there is no memory for it.
void* ModuleFunction(const std::string& name, const char* function);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_MODULE_H_
