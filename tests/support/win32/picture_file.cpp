#include "support/win32/picture_file.hpp"

#include <set>

#include "platform/win32/com_apartment.hpp"
#include "platform/win32/wide.hpp"
#include "ui/win32/gdi.hpp"
#include "ui/win32/picture_file.hpp"

namespace support {
namespace {

using ui::win32::Made;

bool Encode(const WindowPicture& picture, const wchar_t* file) {
  const auto factory = ui::win32::MakeImagingFactory();
  if (!factory) return false;
  const auto stream = Made<IWICStream>([&](auto** made) { return factory->CreateStream(made); });
  const auto encoder = Made<IWICBitmapEncoder>(
      [&](auto** made) { return factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, made); });
  std::vector<std::uint32_t> pixels = picture.pixels;
  const auto width = static_cast<UINT>(picture.width), height = static_cast<UINT>(picture.height);
  const auto source = Made<IWICBitmap>([&](auto** made) {
    return factory->CreateBitmapFromMemory(width, height, GUID_WICPixelFormat32bppBGR, width * 4,
                                           width * height * 4, reinterpret_cast<BYTE*>(pixels.data()), made);
  });
  if (!stream || !encoder || !source || FAILED(stream->InitializeFromFilename(file, GENERIC_WRITE)) ||
      FAILED(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache))) {
    return false;
  }
  const auto frame =
      Made<IWICBitmapFrameEncode>([&](auto** made) { return encoder->CreateNewFrame(made, nullptr); });
  WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
  return frame && SUCCEEDED(frame->Initialize(nullptr)) && SUCCEEDED(frame->SetSize(width, height)) &&
         SUCCEEDED(frame->SetPixelFormat(&format)) && SUCCEEDED(frame->WriteSource(source.get(), nullptr)) &&
         SUCCEEDED(frame->Commit()) && SUCCEEDED(encoder->Commit());
}

}  // namespace

std::size_t WindowPicture::Colours(RECT area) const {
  if (IsRectEmpty(&area)) area = {0, 0, width, height};
  std::set<std::uint32_t> found;
  for (LONG y = area.top; y < area.bottom; ++y) {
    const auto line = pixels.begin() + static_cast<std::ptrdiff_t>(y) * width;
    found.insert(line + area.left, line + area.right);
  }
  return found.size();
}

WindowPicture TakePicture(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  WindowPicture picture{static_cast<int>(client.right), static_cast<int>(client.bottom), {}};
  const HDC source = GetDC(window);
  const ui::win32::UniqueDc memory(CreateCompatibleDC(source));
  std::uint32_t* first = nullptr;
  const ui::win32::UniqueBitmap bitmap = ui::win32::MakePixels(picture.width, picture.height, first);
  const HGDIOBJ before = SelectObject(memory.get(), bitmap.get());
  BitBlt(memory.get(), 0, 0, picture.width, picture.height, source, 0, 0, SRCCOPY);
  GdiFlush();
  picture.pixels.assign(first, first + static_cast<std::ptrdiff_t>(picture.width) * picture.height);
  for (std::uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
  SelectObject(memory.get(), before);
  ReleaseDC(window, source);
  return picture;
}

std::optional<std::wstring> PictureFolder() {
  wchar_t folder[MAX_PATH] = L"";
  const DWORD length = GetEnvironmentVariableW(L"LAUNCHER_PICTURES", folder, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return std::nullopt;
  return folder;
}

bool WritePng(const WindowPicture& picture, const std::wstring& folder, const std::string& name) {
  const platform::ComApartment com;
  return Encode(picture, (folder + L"\\" + platform::Wide(name) + L".png").c_str());
}

}  // namespace support
