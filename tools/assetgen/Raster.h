// Pictures in memory and the few drawing operations the generator needs:
// anti-aliased shapes by signed distance, composited in premultiplied float
// colour, written out as PNG or JPEG with stb_image_write.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace assetgen {

struct Color
{
    float r = 0.0f, g = 0.0f, b = 0.0f, a = 1.0f; // 0..1, not premultiplied

    Color() = default;
    Color(float red, float green, float blue, float alpha = 1.0f) : r(red), g(green), b(blue), a(alpha) {}
    static Color Bytes(int red, int green, int blue, int alpha = 255)
    {
        return Color(red / 255.0f, green / 255.0f, blue / 255.0f, alpha / 255.0f);
    }
    Color Scaled(float f) const { return Color(r * f, g * f, b * f, a); }
    Color WithAlpha(float alpha) const { return Color(r, g, b, alpha); }
};

Color Mix(const Color& x, const Color& y, float t);

// An RGBA float canvas with premultiplied storage. Shapes are given by a
// signed distance in pixels (negative inside); coverage comes from the
// distance, so edges are smooth at any scale.
class Canvas
{
public:
    Canvas(int width, int height);

    int Width() const { return m_width; }
    int Height() const { return m_height; }

    // Composites `color(x, y)` over the canvas wherever `distance(x, y)` < 0.5,
    // inside the box [x0, x1) x [y0, y1) (clipped to the canvas).
    using DistanceFn = std::function<float(float, float)>;
    using ColorFn = std::function<Color(float, float)>;
    void Fill(float x0, float y0, float x1, float y1, const DistanceFn& distance, const ColorFn& color);

    void Ellipse(float cx, float cy, float rx, float ry, const Color& color);
    void EllipseShaded(float cx, float cy, float rx, float ry, const ColorFn& color);
    // A stroke from (x0, y0) to (x1, y1) whose half width runs from r0 to r1.
    void Capsule(float x0, float y0, float x1, float y1, float r0, float r1, const Color& color);
    void CapsuleShaded(float x0, float y0, float x1, float y1, float r0, float r1, const ColorFn& color);
    // A closed polygon given by its corners, x and y interleaved.
    void Polygon(const std::vector<float>& points, const ColorFn& color);

    // Straight (non-premultiplied) read-back of one pixel.
    Color At(int x, int y) const;
    void Set(int x, int y, const Color& color);

    // 8-bit RGBA in which fully transparent pixels become (255, 255, 255, 0),
    // the colour-key white of the keyed pictures.
    std::vector<uint8_t> KeyedRgba() const;
    // 8-bit RGB, composited over `background`.
    std::vector<uint8_t> Rgb(const Color& background) const;

private:
    int m_width;
    int m_height;
    std::vector<float> m_pixels; // premultiplied r, g, b, a
};

float SdSegment(float px, float py, float ax, float ay, float bx, float by, float ra, float rb);
float SdPolygon(const std::vector<float>& points, float px, float py);

uint8_t ToByte(float v);

bool WritePng(const std::string& path, int width, int height, int channels, const std::vector<uint8_t>& pixels);
bool WriteJpeg(const std::string& path, int width, int height, const std::vector<uint8_t>& rgb, int quality = 90);

} // namespace assetgen
