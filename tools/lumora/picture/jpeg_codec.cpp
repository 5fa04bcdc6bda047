// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/jpeg_codec.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace lumora::tools {
namespace {

void OnError(j_common_ptr info) {
  auto* handler = reinterpret_cast<JpegErrorHandler*>(info->err);
  info->err->format_message(info, handler->message);
  std::longjmp(handler->escape, 1);
}

void OnWarning(j_common_ptr info, int level) {
  if (level >= 0) return;
  ++info->err->num_warnings;
  // libjpeg fills in gray for what is missing; a damaged picture is an error here.
  const int code = info->err->msg_code;
  if (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER) OnError(info);
}

/// Whether a quantisation step is 0: no encoder makes one, and those that are given it divide by
/// it.
bool HasStepOfZero(const jpeg_decompress_struct& info) {
  return std::any_of(
      std::begin(info.quant_tbl_ptrs), std::end(info.quant_tbl_ptrs), [](const JQUANT_TBL* table) {
        return table != nullptr &&
               std::count(std::begin(table->quantval), std::end(table->quantval), 0) > 0;
      });
}

}  // namespace

void JpegErrorHandler::Prepare() {
  jpeg_std_error(&base);
  base.error_exit = OnError;
  base.emit_message = OnWarning;
}

JpegDecoder::JpegDecoder() {
  errors_.Prepare();
  info.err = &errors_.base;
  Guard([&] { jpeg_create_decompress(&info); });
}

// Delegates, so that a header that cannot be read still gets to the destructor.
JpegDecoder::JpegDecoder(const Bytes& file) : JpegDecoder() {
  Guard([&] {
    jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&info, TRUE);
  });
  if (HasStepOfZero(info)) throw JpegError("The quantisation table has a step of 0");
}

JpegEncoder::JpegEncoder() {
  errors_.Prepare();
  info.err = &errors_.base;
  Guard([&] {
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &buffer_, &size_);
  });
}

JpegEncoder::~JpegEncoder() {
  jpeg_destroy_compress(&info);
  std::free(buffer_);
}

void JpegEncoder::CopySettings(JpegDecoder& from) {
  Guard([&] {
    jpeg_copy_critical_parameters(&from.info, &info);
    info.optimize_coding = TRUE;
    if (from.info.progressive_mode) jpeg_simple_progression(&info);
  });
}

}  // namespace lumora::tools
