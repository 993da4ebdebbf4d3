#include "player/render/Snapshot.h"

#include <png.h>
#include <tdkplatform.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::vector<png_byte> ToRgbBytes(const std::vector<DWORD>& pixels) {
    std::vector<png_byte> bytes;
    bytes.reserve(pixels.size() * 3);
    for (const DWORD pixel : pixels)
        for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<png_byte>(pixel >> shift));
    return bytes;
}

}  // namespace

Picture ReadWindow(HWND window) {
    Picture picture;
    ReadWindow(window, picture);
    return picture;
}

void ReadWindow(HWND window, Picture& picture) {
    RECT client = {};
    if (!GetClientRect(window, &client)) client = {};
    picture.Pixels.resize(static_cast<size_t>(client.right) * static_cast<size_t>(client.bottom));
    const auto capacity = static_cast<int>(picture.Pixels.size());
    if (!TdkpReadWindow(window, picture.Pixels.data(), capacity, &picture.Width, &picture.Height)) picture = {};
    picture.Pixels.resize(static_cast<size_t>(picture.Width) * static_cast<size_t>(picture.Height));
}

void WritePng(const Picture& picture, const std::string& path) {
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "wbe"));
    if (!file) throw PlayerError(ExitCode::kCannotWrite, path + ": " + std::strerror(errno));
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.Width);
    image.height = static_cast<png_uint_32>(picture.Height);
    image.format = PNG_FORMAT_RGB;
    const std::vector<png_byte> bytes = ToRgbBytes(picture.Pixels);
    const bool isWritten = png_image_write_to_stdio(&image, file.get(), 0, bytes.data(), 0, nullptr) != 0;
    if (!isWritten || std::fflush(file.get()) != 0)
        throw PlayerError(ExitCode::kCannotWrite, path + ": can't be written: " + image.message);
}

}  // namespace tdkplay
