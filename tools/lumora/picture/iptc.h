// SPDX-License-Identifier: Apache-2.0
// IPTC records in the image resources that files keep them in.
#ifndef LUMORA_TOOLS_PICTURE_IPTC_H_
#define LUMORA_TOOLS_PICTURE_IPTC_H_

#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// The records among image resources. The other resources (previews among them) are no metadata.
Bytes IptcOf(const Bytes& resources);

/// An image resource of records.
Bytes ResourceOf(const Bytes& iptc);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_IPTC_H_
