#include "Raster.h"

#include <algorithm>
#include <cmath>

#include <stb_image_write.h>

namespace assetgen {

Color Mix(const Color& x, const Color& y, float t)
{
    return Color(x.r + (y.r - x.r) * t, x.g + (y.g - x.g) * t, x.b + (y.b - x.b) * t, x.a + (y.a - x.a) * t);
}

Canvas::Canvas(int width, int height)
    : m_width(width), m_height(height), m_pixels(static_cast<size_t>(width) * height * 4, 0.0f)
{
}

void Canvas::Fill(float x0, float y0, float x1, float y1, const DistanceFn& distance, const ColorFn& color)
{
    const int ix0 = std::max(0, static_cast<int>(std::floor(x0)));
    const int iy0 = std::max(0, static_cast<int>(std::floor(y0)));
    const int ix1 = std::min(m_width, static_cast<int>(std::ceil(x1)));
    const int iy1 = std::min(m_height, static_cast<int>(std::ceil(y1)));
    for (int y = iy0; y < iy1; ++y) {
        for (int x = ix0; x < ix1; ++x) {
            const float px = x + 0.5f;
            const float py = y + 0.5f;
            const float coverage = std::clamp(0.5f - distance(px, py), 0.0f, 1.0f);
            if (coverage <= 0.0f)
                continue;
            const Color c = color(px, py);
            const float a = std::clamp(c.a, 0.0f, 1.0f) * coverage;
            float* p = &m_pixels[(static_cast<size_t>(y) * m_width + x) * 4];
            const float keep = 1.0f - a;
            p[0] = c.r * a + p[0] * keep;
            p[1] = c.g * a + p[1] * keep;
            p[2] = c.b * a + p[2] * keep;
            p[3] = a + p[3] * keep;
        }
    }
}

void Canvas::Ellipse(float cx, float cy, float rx, float ry, const Color& color)
{
    EllipseShaded(cx, cy, rx, ry, [&](float, float) { return color; });
}

void Canvas::EllipseShaded(float cx, float cy, float rx, float ry, const ColorFn& color)
{
    // Distance to an ellipse, approximated by scaling the unit-circle distance
    // by the local gradient: exact enough for edge smoothing.
    Fill(cx - rx - 1, cy - ry - 1, cx + rx + 1, cy + ry + 1,
        [=](float x, float y) {
            const float dx = (x - cx) / rx;
            const float dy = (y - cy) / ry;
            const float k = std::sqrt(dx * dx + dy * dy);
            const float gx = dx / rx;
            const float gy = dy / ry;
            const float g = std::sqrt(gx * gx + gy * gy);
            return g > 0.0f ? (k - 1.0f) * k / g : -std::min(rx, ry);
        },
        color);
}

float SdSegment(float px, float py, float ax, float ay, float bx, float by, float ra, float rb)
{
    const float bax = bx - ax;
    const float bay = by - ay;
    const float pax = px - ax;
    const float pay = py - ay;
    const float len2 = bax * bax + bay * bay;
    const float h = len2 > 0.0f ? std::clamp((pax * bax + pay * bay) / len2, 0.0f, 1.0f) : 0.0f;
    const float dx = pax - bax * h;
    const float dy = pay - bay * h;
    return std::sqrt(dx * dx + dy * dy) - (ra + (rb - ra) * h);
}

void Canvas::Capsule(float x0, float y0, float x1, float y1, float r0, float r1, const Color& color)
{
    CapsuleShaded(x0, y0, x1, y1, r0, r1, [&](float, float) { return color; });
}

void Canvas::CapsuleShaded(float x0, float y0, float x1, float y1, float r0, float r1, const ColorFn& color)
{
    const float r = std::max(r0, r1) + 1.0f;
    Fill(std::min(x0, x1) - r, std::min(y0, y1) - r, std::max(x0, x1) + r, std::max(y0, y1) + r,
        [=](float x, float y) { return SdSegment(x, y, x0, y0, x1, y1, r0, r1); }, color);
}

float SdPolygon(const std::vector<float>& pts, float px, float py)
{
    const size_t n = pts.size() / 2;
    float d = 1e30f;
    bool inside = false;
    for (size_t i = 0, j = n - 1; i < n; j = i++) {
        const float ax = pts[2 * j], ay = pts[2 * j + 1];
        const float bx = pts[2 * i], by = pts[2 * i + 1];
        d = std::min(d, SdSegment(px, py, ax, ay, bx, by, 0.0f, 0.0f));
        if (((by > py) != (ay > py)) && (px < (ax - bx) * (py - by) / (ay - by) + bx))
            inside = !inside;
    }
    return inside ? -d : d;
}

void Canvas::Polygon(const std::vector<float>& points, const ColorFn& color)
{
    float x0 = 1e30f, y0 = 1e30f, x1 = -1e30f, y1 = -1e30f;
    for (size_t i = 0; i + 1 < points.size(); i += 2) {
        x0 = std::min(x0, points[i]);
        x1 = std::max(x1, points[i]);
        y0 = std::min(y0, points[i + 1]);
        y1 = std::max(y1, points[i + 1]);
    }
    Fill(x0 - 1, y0 - 1, x1 + 1, y1 + 1, [&](float x, float y) { return SdPolygon(points, x, y); }, color);
}

Color Canvas::At(int x, int y) const
{
    const float* p = &m_pixels[(static_cast<size_t>(y) * m_width + x) * 4];
    if (p[3] <= 0.0f)
        return Color(0, 0, 0, 0);
    return Color(p[0] / p[3], p[1] / p[3], p[2] / p[3], p[3]);
}

void Canvas::Set(int x, int y, const Color& c)
{
    float* p = &m_pixels[(static_cast<size_t>(y) * m_width + x) * 4];
    p[0] = c.r * c.a;
    p[1] = c.g * c.a;
    p[2] = c.b * c.a;
    p[3] = c.a;
}

uint8_t ToByte(float v)
{
    return static_cast<uint8_t>(std::lround(std::clamp(v, 0.0f, 1.0f) * 255.0f));
}

std::vector<uint8_t> Canvas::KeyedRgba() const
{
    std::vector<uint8_t> out(static_cast<size_t>(m_width) * m_height * 4);
    for (int y = 0; y < m_height; ++y) {
        for (int x = 0; x < m_width; ++x) {
            uint8_t* o = &out[(static_cast<size_t>(y) * m_width + x) * 4];
            const Color c = At(x, y);
            const uint8_t a = ToByte(c.a);
            if (a == 0) {
                o[0] = o[1] = o[2] = 255;
                o[3] = 0;
                continue;
            }
            o[0] = ToByte(c.r);
            o[1] = ToByte(c.g);
            o[2] = ToByte(c.b);
            o[3] = a;
        }
    }
    return out;
}

std::vector<uint8_t> Canvas::Rgb(const Color& background) const
{
    std::vector<uint8_t> out(static_cast<size_t>(m_width) * m_height * 3);
    for (size_t i = 0, n = static_cast<size_t>(m_width) * m_height; i < n; ++i) {
        const float* p = &m_pixels[i * 4];
        const float keep = 1.0f - p[3];
        out[i * 3 + 0] = ToByte(p[0] + background.r * keep);
        out[i * 3 + 1] = ToByte(p[1] + background.g * keep);
        out[i * 3 + 2] = ToByte(p[2] + background.b * keep);
    }
    return out;
}

bool WritePng(const std::string& path, int width, int height, int channels, const std::vector<uint8_t>& pixels)
{
    return stbi_write_png(path.c_str(), width, height, channels, pixels.data(), width * channels) != 0;
}

bool WriteJpeg(const std::string& path, int width, int height, const std::vector<uint8_t>& rgb, int quality)
{
    return stbi_write_jpg(path.c_str(), width, height, 3, rgb.data(), quality) != 0;
}

} // namespace assetgen
