// SPDX-License-Identifier: Apache-2.0
// Opening the backends of the device that is asked for or chosen.
#ifndef LUMORA_PIPELINE_BACKENDS_OPEN_BACKEND_H_
#define LUMORA_PIPELINE_BACKENDS_OPEN_BACKEND_H_

#include <memory>

#include "pipeline/backends/backend.h"
#include "pipeline/backends/device_choice.h"

namespace lumora {

/// A backend of `device`, with so many threads where that device is the CPU, or why there is none.
Status OpenBackend(Device device, int threads, std::unique_ptr<Backend>* backend,
                   DeviceChoice* choice);

/// The same for conversions.
Status OpenConverter(Device device, std::unique_ptr<ConverterBackend>* converter,
                     DeviceChoice* choice);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_OPEN_BACKEND_H_
