// The effect pass pixel by pixel, straight from its formulas: what the real one must give.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "src/render/VizEffectParams.h"

namespace tdkviz::test {

struct ModelFrame {
    int width = 0, height = 0, bytesPerPixel = 0;
    std::vector<uint8_t> bytes;

    uint8_t At(int x, int y, int byte) const {
        return bytes[(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) *
                         static_cast<size_t>(bytesPerPixel) +
                     static_cast<size_t>(byte)];
    }
};

class EffectModel {
public:
    EffectModel(const ModelFrame& source, const VizEffectParams& params, uint32_t mask, uint32_t frame)
        : source_(source), width_(source.width), height_(source.height), color_(params.FadeColor) {
        const auto active = [mask](bool on, uint32_t bit, int32_t value) { return on && (mask & bit) ? value : 0; };
        fade_ = active(params.Fade, 1, params.FadeTime);
        rotate_ = active(params.Rotate, 2, params.RotateSpeed);
        zoomX_ = active(params.Zoom, 4, params.ZoomX);
        zoomY_ = active(params.Zoom, 4, params.ZoomY);
        slideX_ = active(params.Slide, 8, params.SlideX);
        slideY_ = active(params.Slide, 8, params.SlideY);
        blur_ = active(params.Blur, 16, params.BlurAmount);
        jitterX_ = (int64_t{frame} * 49) & 255;
        jitterY_ = (int64_t{frame} * 68) & 255;
        off_ = !params.Blur && !params.Zoom && !params.Fade && !params.Slide && !params.Rotate;
        clamp_ = params.AutoEdge ? ClampsByItself() : params.ClampEdge.Load();
    }

    // Nothing if the pass must refuse.
    std::optional<std::vector<uint8_t>> Run() const {
        const bool words = source_.bytesPerPixel == 4;
        const bool still = !zoomX_ && !zoomY_ && !slideX_ && !slideY_ && !rotate_ && !fade_ && blur_ < 2;
        if (off_ || (words && still)) return std::nullopt;
        std::vector<uint8_t> result;
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) Pixel(x, y, result);
        }
        return result;
    }

private:
    static int64_t Wrap(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }
    static int64_t Times(int64_t a, int64_t b) { return Wrap(Wrap(a) * Wrap(b)); }

    bool ClampsByItself() const {
        const int64_t zx = Times(zoomX_, 256), zy = Times(zoomY_, 256), r = Times(rotate_, 256);
        if (zx < 1 || zy < 1) return false;
        const int64_t aspect = width_ >= height_ ? (10 * width_) / height_ : (10 * height_) / width_;
        const int64_t lean = Times(aspect, r), limit = Times(22, std::min(zx, zy));
        return lean <= limit && Wrap(-lean) <= limit;
    }

    void Pixel(int x, int y, std::vector<uint8_t>& out) const {
        const int64_t zx = Times(zoomX_, 256), zy = Times(zoomY_, 256), r = Times(rotate_, 256);
        const int64_t v = (height_ >> 1) - y, u = (width_ >> 1) - x;
        const int64_t rowX = Times(v, r) >> 8, rowY = Times(v, zy) >> 8;
        const int64_t offsetX = Wrap((Times(u, zx) >> 8) + jitterX_ + rowX + Times(slideX_, 256));
        const int64_t offsetY = Wrap((Times(-u, r) >> 8) + jitterY_ + rowY + Times(slideY_, 256));
        int64_t sx = x + (offsetX >> 8), sy = y + (offsetY >> 8);
        if (clamp_) {
            sx = std::clamp<int64_t>(sx, 1, width_ - 2);
            sy = std::clamp<int64_t>(sy, 1, height_ - 2);
        }
        const bool inside = sx >= 1 && sx <= width_ - 2 && sy >= 1 && sy <= height_ - 2;
        for (int byte = 0; byte < source_.bytesPerPixel; ++byte) {
            // A word's lowest byte is its first; the byte path counts the colour's bytes from the top.
            const int shift = source_.bytesPerPixel == 4 ? 8 * byte : 24 - 8 * byte;
            const int64_t k = (color_ >> shift) & 255;
            if (!inside) {
                out.push_back(static_cast<uint8_t>(k));
                continue;
            }
            const int64_t b = Blur(static_cast<int>(sx), static_cast<int>(sy), byte);
            out.push_back(
                static_cast<uint8_t>(fade_ == 0 ? b : Wrap(k * fade_ + b * (256 - int64_t{fade_}) + 128) >> 8));
        }
    }

    int64_t Blur(int x, int y, int byte) const {
        std::array<int64_t, 9> p;  // NW N NE, W C E, SW S SE
        for (int i = 0; i < 9; ++i) p[static_cast<size_t>(i)] = source_.At(x + i % 3 - 1, y + i / 3 - 1, byte);
        return source_.bytesPerPixel == 4 ? BlurOfWord(p, byte) : BlurOfByte(p) & 255;
    }

    int64_t BlurOfWord(const std::array<int64_t, 9>& p, int byte) const {
        const int64_t c = p[4];
        const auto cross = [&p](int n) { return (p[1] >> n) + (p[3] >> n) + (p[5] >> n) + (p[7] >> n); };
        const auto corners = [&p](int n) { return (p[0] >> n) + (p[2] >> n) + (p[6] >> n) + (p[8] >> n); };
        const auto average = [&](size_t a, size_t b) { return byte == 3 ? 0 : ((p[a] + c + p[b] + 3) * 21845) >> 16; };
        switch (blur_) {
            case 0:
            case 1:
                return c;
            case 2:
                return (c >> 1) + (c >> 2) + (c >> 3) + (c & 2) + (c & 1) + cross(5);
            case 3:
                return (c >> 1) + (c >> 2) + (c & 1) + cross(4);
            case 4:
                return (c >> 1) + (c & 1) + cross(3);
            case 5:
                return average(0, 8);
            case 6:
                return average(2, 6);
            case 7:
                return average(1, 7);
            case 8:
                return average(3, 5);
            case 9:
                return (c >> 1) + (c & 1) + cross(4) + corners(4);
            default:
                return cross(3) + corners(3);
        }
    }

    int64_t BlurOfByte(const std::array<int64_t, 9>& p) const {
        const auto& [nw, n, ne, w, c, e, sw, s, se] = p;
        switch (blur_) {
            case 0:
                return c;
            case 1:
                return (12 * c + n + s + e + w + 15) >> 4;
            case 2:
                return (4 * c + n + s + e + w + 7) >> 3;
            case 3:
                return (8 * nw + c + n + s + e + w + ne + sw + se + 15) >> 4;
            case 4:
                return ((n + s + e + w + nw + 4) * 13107) >> 16;
            case 5:
                return (n + s + e + w + 3) >> 2;
            case 6:
                return ((nw + c + se + 2) * 21845) >> 16;
            case 7:
                return ((ne + c + sw + 2) * 21845) >> 16;
            case 8:
                return ((w + c + e + 2) * 21845) >> 16;
            case 9:
                return ((n + c + s + 2) * 21845) >> 16;
            default:
                return ((c + n + s + e + w + nw + ne + sw + se + 8) * 7281) >> 16;
        }
    }

    const ModelFrame& source_;
    const int64_t width_, height_;
    const uint32_t color_;
    int32_t fade_, rotate_, zoomX_, zoomY_, slideX_, slideY_, blur_;
    int64_t jitterX_, jitterY_;
    bool off_, clamp_;
};

}  // namespace tdkviz::test
