// SPDX-License-Identifier: Apache-2.0
// lumora convert: a picture or a raw frame in, its colours in another form out.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "lumora/pipeline/converter.h"
#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/images/colours.h"
#include "tools/lumora/options/common_options.h"
#include "tools/lumora/options/numbers.h"
#include "tools/lumora/picture/losses.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/picture/picture_file.h"
#include "tools/lumora/picture/raw_frame.h"
#include "tools/lumora/support/files.h"
#include "tools/lumora/support/places.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {
namespace {

struct ConvertOptions {
  std::string in, out, to, size, format;
  Device device = Device::Auto;
  Appetite appetite{kBytesForWhole};
};

Failure Misused(const std::string& what) {
  return {ExitCode::Usage, what};
}

/// What a file name says about its content.
std::string Ending(const std::string& path) {
  const std::string ending = std::filesystem::path(path).extension().string();
  return ending.empty() ? ending : ending.substr(1);
}

Size ParseSize(const std::string& text) {
  const size_t cross = std::min(text.find('x'), text.size());
  const std::optional<int> width = WholeNumber(text.substr(0, cross));
  const std::optional<int> height =
      cross < text.size() ? WholeNumber(text.substr(cross + 1)) : std::nullopt;
  if (!width || !height) throw Misused("--size: expected WIDTHxHEIGHT, like 640x480");
  if (*width < kSmallestSide || *height < kSmallestSide) {
    throw Misused("--size: at least 32 x 32 pixels are needed");
  }
  if (static_cast<int64_t>(*width) * *height > kMostPixels) {
    throw Misused("--size: more than 200 million pixels");
  }
  return {*width, *height};
}

/// The frame to convert, with the memory behind it.
class Source {
 public:
  explicit Source(const ConvertOptions& options) {
    const std::string raw = options.format.empty() ? Ending(options.in) : options.format;
    if (const std::optional<PixelFormat> format = FormatNamed(raw)) {
      ReadRaw(options, *format);
    } else {
      ReadPicture(options);
    }
  }

  const ConstFrameView& view() const { return view_; }
  Size size() const { return {view_.width, view_.height}; }

 private:
  void ReadRaw(const ConvertOptions& options, PixelFormat format) {
    if (options.size.empty()) throw Misused("raw frames do not tell their size: give --size");
    const Size size = ParseSize(options.size);
    WholeInput input(options.in);
    options.appetite.Check(size, input.name());
    const size_t expected = RawFrameBytes(size);
    const uint64_t length = input.Length().value_or(expected);
    if (length == expected) bytes_ = input.Rest(expected);
    if (bytes_.size() != expected) {
      const uint64_t held = length == expected ? bytes_.size() : length;
      throw Failure(ExitCode::Unreadable, options.in + ": holds " + std::to_string(held) +
                                              " bytes, but a frame of " + options.size + " has " +
                                              std::to_string(expected));
    }
    view_ = RawFrameView(static_cast<const uint8_t*>(bytes_.data()), format, size);
  }

  void ReadPicture(const ConvertOptions& options) {
    if (!options.size.empty())
      throw Misused("--size belongs to raw frames; a picture tells its own");
    const PictureFile file = tools::ReadPicture(options.in, options.appetite);
    const Picture& picture = *file.loaded.picture;
    Notes notes = file.loaded.notes;
    for (const std::string& loss : LossesOf(file.content, picture, false)) notes.push_back(loss);
    for (const std::string& note : notes) Complain(options.in + ": " + note);
    planes_ = picture.Frame();
    view_ = planes_.View();
    // The planes were made even; the frame has the picture's own size.
    view_.width = picture.size().width;
    view_.height = picture.size().height;
  }

  Bytes bytes_;
  Frame420 planes_;
  ConstFrameView view_;
};

/// One of the images that the colour converter makes, three channels.
Image ImageOf(const Source& source, bool hsi, Device device) {
  Status status;
  const std::unique_ptr<Converter> converter = Converter::Create(device, &status);
  ThrowUnlessMade(status);
  Image image(source.size(), 3);
  const ImageView wanted = {image.Row(0), image.width(), image.height(), 3,
                            static_cast<std::ptrdiff_t>(image.stride())};
  const ImageView unwanted = {};
  ThrowUnlessOk(
      converter->Convert(source.view(), hsi ? unwanted : wanted, hsi ? wanted : unwanted));
  return image;
}

Bytes FrameIn(PixelFormat format, const Source& source, Device device) {
  Bytes bytes(RawFrameBytes(source.size()));
  const FrameView out = RawFrameView(bytes.data(), format, source.size());
  // Without an effect the pipeline copies, from any format to any other.
  ThrowUnlessOk(Retoucher(device).pipeline().Process({source.view(), out, {}, Look{}}));
  return bytes;
}

ExitCode Convert(const ConvertOptions& options) {
  const std::string ending = Ending(options.out);
  const bool as_picture = ending == "png";
  const std::optional<PixelFormat> frame_format = FormatNamed(options.to);
  if (as_picture && frame_format) {
    throw Misused(options.out + ": a PNG holds rgb or hsi, not " + options.to);
  }
  if (ending == "jpg" || ending == "jpeg") {
    throw Misused(options.out + ": write .png or raw bytes; a JPEG would alter the channels");
  }
  if (options.out == kStandardStream && isatty(STDOUT_FILENO) != 0) {
    throw Misused("raw bytes cannot be shown on a terminal; redirect them");
  }
  CheckPlacesDiffer({options.in}, {options.out});
  CheckWritable(options.out);
  const Source source(options);
  if (frame_format) {
    WriteWhole(options.out, FrameIn(*frame_format, source, options.device));
    return ExitCode::Done;
  }
  Image image = ImageOf(source, options.to == "hsi", options.device);
  if (as_picture) {
    WriteWhole(options.out, EncodePng(WithRedAndBlueSwapped(std::move(image))));
  } else {
    WriteWhole(options.out, image.bytes());
  }
  return ExitCode::Done;
}

}  // namespace

Action OfferConvert(Options options) {
  auto chosen = std::make_shared<ConvertOptions>();
  options.Text("IN", Need::Required, &chosen->in,
               "JPEG or PNG, or one raw frame (.nv21, .nv12, .i420, .yuv, or any name with\n"
               "--format); - is standard input");
  options.Text("-o,--output", Need::Required, &chosen->out,
               ".png: an image of the three channels; any other name, and - for standard\n"
               "output: raw bytes, three a pixel or the planes of a frame");
  options.Choice("--to", Need::Required, &chosen->to, {"rgb", "hsi", "nv21", "nv12", "i420"},
                 "rgb; hsi (hue, saturation and intensity, 0 to 255 each); nv21, nv12, i420");
  options.Text("--size", Need::Optional, &chosen->size, "WIDTHxHEIGHT of a raw frame in pixels");
  options.Choice("--format", Need::Optional, &chosen->format, {"nv21", "nv12", "i420"},
                 "IN is a raw frame: nv21, nv12, i420");
  AddDevice(options, &chosen->device);
  AddForce(options, &chosen->appetite.force);
  options.Explain(
      "Raw frames are full-range BT.601, their planes one after another without padding.");
  return [chosen] { return Convert(*chosen); };
}

}  // namespace lumora::tools
