// SPDX-License-Identifier: Apache-2.0
// The export macros of libLumoraPipeline.
#ifndef LUMORA_PIPELINE_EXPORT_H_
#define LUMORA_PIPELINE_EXPORT_H_

#define LUMORA_PIPELINE_API __attribute__((visibility("default")))

// For members of exported classes that only the library itself uses.
#define LUMORA_PIPELINE_LOCAL __attribute__((visibility("hidden")))

#endif  // LUMORA_PIPELINE_EXPORT_H_
