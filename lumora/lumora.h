// SPDX-License-Identifier: Apache-2.0
// libLumora: GPU face effects for camera frames. This header brings in everything that is exported.
#ifndef LUMORA_LUMORA_H_
#define LUMORA_LUMORA_H_

#include "lumora/convert/gpu_color_converter.h"
#include "lumora/convert/sp2yuvxs.h"
#include "lumora/engine/face_info.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/gl/gl_helpers.h"
#include "lumora/gl/gl_program.h"
#include "lumora/gl/image_files.h"
#include "lumora/gl/segl_image.h"
#include "lumora/platform/graphic_buffer.h"
#include "lumora/platform/settings.h"
#include "lumora/programs/programs.h"

#endif  // LUMORA_LUMORA_H_
