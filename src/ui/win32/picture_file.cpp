#include "ui/win32/picture_file.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/win32/wide.hpp"
#include "ui/win32/resample.hpp"

namespace ui::win32 {
namespace {

constexpr UINT kLargestSide = 8192;  // pixels; more is no skin
constexpr UINT kRowsAtOnce = 16;

// The first frame of the file in this form of pixel; null when there is none, or one too large.
UniqueCom<IWICBitmapSource> Open(const std::string& path, const WICPixelFormatGUID& format, PixelSize& size) {
  const auto factory = MakeImagingFactory();
  if (!factory) return nullptr;
  const auto decoder = Made<IWICBitmapDecoder>([&](auto** made) {
    return factory->CreateDecoderFromFilename(platform::SystemPath(path).c_str(), nullptr, GENERIC_READ,
                                              WICDecodeMetadataCacheOnDemand, made);
  });
  if (!decoder) return nullptr;
  const auto frame = Made<IWICBitmapFrameDecode>([&](auto** made) { return decoder->GetFrame(0, made); });
  UINT width = 0, height = 0;
  if (!frame || FAILED(frame->GetSize(&width, &height)) || width == 0 || height == 0 ||
      width > kLargestSide || height > kLargestSide) {
    return nullptr;
  }
  size = {static_cast<int>(width), static_cast<int>(height)};
  auto converter =
      Made<IWICFormatConverter>([&](auto** made) { return factory->CreateFormatConverter(made); });
  if (!converter || FAILED(converter->Initialize(frame.get(), format, WICBitmapDitherTypeNone, nullptr, 0,
                                                 WICBitmapPaletteTypeCustom))) {
    return nullptr;
  }
  return converter;
}

// Hands out a picture's rows and reads them some at a time.
class Rows {
 public:
  Rows(IWICBitmapSource& source, PixelSize size)
      : source_(source), size_(size), read_(static_cast<std::size_t>(size.width) * kRowsAtOnce) {}

  const std::uint32_t* Next() {
    const int row = next_ % static_cast<int>(kRowsAtOnce);
    if (row == 0 && !Read()) return nullptr;
    ++next_;
    return read_.data() + static_cast<std::ptrdiff_t>(row) * size_.width;
  }

 private:
  bool Read() {
    const int count = std::min(static_cast<int>(kRowsAtOnce), size_.height - next_);
    const WICRect part{0, next_, size_.width, count};
    const UINT stride = static_cast<UINT>(size_.width) * 4;
    return count > 0 && SUCCEEDED(source_.CopyPixels(&part, stride, stride * static_cast<UINT>(count),
                                                     reinterpret_cast<BYTE*>(read_.data())));
  }

  IWICBitmapSource& source_;
  PixelSize size_;
  std::vector<std::uint32_t> read_;
  int next_ = 0;
};

}  // namespace

UniqueCom<IWICImagingFactory> MakeImagingFactory() {
  return Made<IWICImagingFactory>([](auto** made) {
    return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                            reinterpret_cast<void**>(made));
  });
}

UniqueBitmap ReadPicture(const std::string& path, int width, int height) {
  PixelSize from;
  const auto source = Open(path, GUID_WICPixelFormat32bppBGR, from);
  if (!source) return {};
  std::uint32_t* pixels = nullptr;
  UniqueBitmap bitmap = MakePixels(width, height, pixels);
  Rows rows(*source, from);
  const auto next = [&rows] { return rows.Next(); };
  if (!bitmap || !Resample(from, next, {width, height}, pixels)) return {};
  return bitmap;
}

UniqueIcon ReadIcon(const std::string& path, int size) {
  PixelSize from;
  const auto source = Open(path, GUID_WICPixelFormat32bppBGRA, from);
  const auto factory = MakeImagingFactory();
  if (!source || !factory) return {};
  const auto scaler = Made<IWICBitmapScaler>([&](auto** made) { return factory->CreateBitmapScaler(made); });
  const auto side = static_cast<UINT>(size);
  std::uint32_t* pixels = nullptr;
  const UniqueBitmap colours = MakePixels(size, size, pixels);
  const UniqueBitmap mask(CreateBitmap(size, size, 1, 1, nullptr));  // the colours' transparency decides
  if (!scaler || !colours ||
      FAILED(scaler->Initialize(source.get(), side, side, WICBitmapInterpolationModeFant)) ||
      FAILED(scaler->CopyPixels(nullptr, side * 4, side * side * 4, reinterpret_cast<BYTE*>(pixels)))) {
    return {};
  }
  ICONINFO icon{TRUE, 0, 0, mask.get(), colours.get()};
  return UniqueIcon(CreateIconIndirect(&icon));
}

}  // namespace ui::win32
