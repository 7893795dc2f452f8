#include "ui/win32/picture_file.hpp"

#include <windows.h>
// after windows.h, which it builds on
#include <wincodec.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/win32/wide.hpp"
#include "ui/win32/resample.hpp"
#include "ui/win32/unique_com.hpp"

namespace ui::win32 {
namespace {

constexpr UINT kLargestSide = 8192;  // pixels; more is no skin
constexpr UINT kRowsAtOnce = 16;

// The first frame of the file in pixels of 32 bits.
UniqueCom<IWICBitmapSource> Open(const std::string& path) {
  const auto factory = Made<IWICImagingFactory>([](auto** made) {
    return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                            reinterpret_cast<void**>(made));
  });
  if (!factory) return nullptr;
  const auto decoder = Made<IWICBitmapDecoder>([&](auto** made) {
    return factory->CreateDecoderFromFilename(platform::SystemPath(path).c_str(), nullptr, GENERIC_READ,
                                              WICDecodeMetadataCacheOnDemand, made);
  });
  if (!decoder) return nullptr;
  const auto frame = Made<IWICBitmapFrameDecode>([&](auto** made) { return decoder->GetFrame(0, made); });
  if (!frame) return nullptr;
  auto converter =
      Made<IWICFormatConverter>([&](auto** made) { return factory->CreateFormatConverter(made); });
  if (!converter ||
      FAILED(converter->Initialize(frame.get(), GUID_WICPixelFormat32bppBGR, WICBitmapDitherTypeNone, nullptr,
                                   0, WICBitmapPaletteTypeCustom))) {
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

// A bitmap whose rows, from the top, stand at `pixels`.
UniqueBitmap MakeBitmap(PixelSize size, std::uint32_t*& pixels) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = size.width;
  info.bmiHeader.biHeight = -size.height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  UniqueBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  pixels = static_cast<std::uint32_t*>(bits);
  return bitmap;
}

}  // namespace

UniqueBitmap ReadPicture(const std::string& path, int width, int height) {
  const auto source = Open(path);
  UINT fromWidth = 0, fromHeight = 0;
  if (!source || FAILED(source->GetSize(&fromWidth, &fromHeight)) || fromWidth == 0 || fromHeight == 0 ||
      fromWidth > kLargestSide || fromHeight > kLargestSide) {
    return {};
  }
  const PixelSize from{static_cast<int>(fromWidth), static_cast<int>(fromHeight)}, to{width, height};
  std::uint32_t* pixels = nullptr;
  UniqueBitmap bitmap = MakeBitmap(to, pixels);
  Rows rows(*source, from);
  if (!bitmap || !Resample(
                     from, [&rows] { return rows.Next(); }, to, pixels))
    return {};
  return bitmap;
}

}  // namespace ui::win32
