// SPDX-License-Identifier: Apache-2.0
// Slims the faces of one NV21 frame in place.
#include <cstdint>
#include <cstdio>
#include <vector>

#include <lumora/pipeline/pipeline.h>

int main() {
  lumora::Status status;
  const auto pipeline = lumora::Pipeline::Create(&status);
  if (!pipeline) return std::fprintf(stderr, "%s\n", status.message.c_str()), 1;

  const int width = 640, height = 480;
  std::vector<uint8_t> luma(width * height, 128), chroma(width * height / 2, 128);  // your frame
  const lumora::FrameView frame{
      lumora::PixelFormat::NV21, width, height, {luma.data(), chroma.data()}, {width, width}};
  const lumora::Face face = lumora::FaceFromEyes({280, 200}, {360, 200});  // from your detector

  lumora::FrameRequest request;
  request.in = lumora::AsConst(frame);
  request.out = frame;  // the same memory: in place
  request.faces = face;
  request.look.slim = 50;
  status = pipeline->Process(request);
  std::printf("%s\n", status.ok() ? "slimmed" : status.message.c_str());
  return status.ok() ? 0 : 1;
}
