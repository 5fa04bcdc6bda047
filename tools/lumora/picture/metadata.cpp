#include "tools/lumora/picture/metadata.h"

#include <exiv2/exiv2.hpp>

#include "tools/lumora/picture/png_chunks.h"

namespace lumora::tools {
namespace {

constexpr char kOrientation[] = "Exif.Image.Orientation";

auto Open(const Bytes& file) {
  Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);  // what matters is returned, not printed
  auto image = Exiv2::ImageFactory::open(file.data(), static_cast<long>(file.size()));
  image->readMetadata();
  return image;
}

/// Corrects what is no longer true of an upright picture of that size.
void Correct(Exiv2::ExifData& exif, Exiv2::XmpData& xmp, cv::Size size) {
  Exiv2::ExifThumb(exif).erase();
  const auto set = [&exif](const char* key, auto value) {
    if (exif.findKey(Exiv2::ExifKey(key)) != exif.end()) exif[key] = value;
  };
  set(kOrientation, uint16_t{1});
  set("Exif.Photo.PixelXDimension", static_cast<uint32_t>(size.width));
  set("Exif.Photo.PixelYDimension", static_cast<uint32_t>(size.height));
  const auto orientation = xmp.findKey(Exiv2::XmpKey("Xmp.tiff.Orientation"));
  if (orientation != xmp.end()) orientation->setValue("1");
}

/// Exiv2 leaves out chunks that it does not understand, and the name of a profile that is new to
/// the file, without which decoders reject it. So the chunks come first, and Exiv2 finds them
/// there.
Bytes WithPngMetadata(const Bytes& from, Exiv2::Image& source, const Bytes& to) {
  if (StartsLikePng(from)) return WithChunksOf(from, to);
  if (!source.iccProfileDefined()) return to;
  const Exiv2::DataBuf& profile = *source.iccProfile();
  return WithProfile(profile.pData_, static_cast<size_t>(profile.size_), to);
}

}  // namespace

int ReadOrientation(const Bytes& file) {
  try {
    const auto image = Open(file);
    const auto found = image->exifData().findKey(Exiv2::ExifKey(kOrientation));
    if (found == image->exifData().end() || found->count() == 0) return 1;
    const auto orientation = found->toLong();
    return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
  } catch (const Exiv2::AnyError&) {
    return 1;  // damaged metadata must not keep anyone from the picture
  }
}

std::string CopyMetadata(const Bytes& from, cv::Size size, Bytes& to) {
  try {
    const auto source = Open(from);
    if (StartsLikePng(to)) to = WithPngMetadata(from, *source, to);
    const auto target = Open(to);
    target->setMetadata(*source);
    if (source->iccProfileDefined() && !target->iccProfileDefined()) {
      Exiv2::DataBuf profile(source->iccProfile()->pData_, source->iccProfile()->size_);
      target->setIccProfile(profile);
    }
    Correct(target->exifData(), target->xmpData(), size);
    target->writeMetadata();
    Exiv2::BasicIo& io = target->io();
    io.open();
    const Exiv2::DataBuf written = io.read(static_cast<long>(io.size()));
    to.assign(written.pData_, written.pData_ + written.size_);
    return {};
  } catch (const Exiv2::AnyError& error) {
    return std::string("metadata could not be kept: ") + error.what();
  }
}

}  // namespace lumora::tools
