#include "Synth.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace assetgen {
namespace {

constexpr float kTwoPi = 6.28318531f;

void PutLe(std::ofstream& out, uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.put(static_cast<char>((value >> (8 * i)) & 0xFF));
}

} // namespace

Biquad Biquad::LowPass(float frequency, float q)
{
    Biquad f;
    const float w = kTwoPi * frequency / kSampleRate;
    const float alpha = std::sin(w) / (2.0f * q);
    const float cw = std::cos(w);
    const float a0 = 1.0f + alpha;
    f.b0 = (1.0f - cw) * 0.5f / a0;
    f.b1 = (1.0f - cw) / a0;
    f.b2 = f.b0;
    f.a1 = -2.0f * cw / a0;
    f.a2 = (1.0f - alpha) / a0;
    return f;
}

Biquad Biquad::HighPass(float frequency, float q)
{
    Biquad f;
    const float w = kTwoPi * frequency / kSampleRate;
    const float alpha = std::sin(w) / (2.0f * q);
    const float cw = std::cos(w);
    const float a0 = 1.0f + alpha;
    f.b0 = (1.0f + cw) * 0.5f / a0;
    f.b1 = -(1.0f + cw) / a0;
    f.b2 = f.b0;
    f.a1 = -2.0f * cw / a0;
    f.a2 = (1.0f - alpha) / a0;
    return f;
}

Biquad Biquad::BandPass(float frequency, float q)
{
    Biquad f;
    f.RetuneBandPass(frequency, q);
    return f;
}

void Biquad::RetuneBandPass(float frequency, float q)
{
    const float w = kTwoPi * std::min(frequency, kSampleRate * 0.45f) / kSampleRate;
    const float alpha = std::sin(w) / (2.0f * q);
    const float a0 = 1.0f + alpha;
    b0 = alpha / a0;
    b1 = 0.0f;
    b2 = -alpha / a0;
    a1 = -2.0f * std::cos(w) / a0;
    a2 = (1.0f - alpha) / a0;
}

float Biquad::Process(float x)
{
    const float y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
    x2 = x1;
    x1 = x;
    y2 = y1;
    y1 = y;
    return y;
}

float GlottalSource::Next(float pitchHz)
{
    // Rosenberg pulse: a smooth opening, a quicker closing, then closed.
    m_phase += pitchHz / kSampleRate;
    m_phase -= std::floor(m_phase);
    float g = 0.0f;
    if (m_phase < 0.4f)
        g = 0.5f * (1.0f - std::cos(3.14159265f * m_phase / 0.4f));
    else if (m_phase < 0.56f)
        g = std::cos(3.14159265f * (m_phase - 0.4f) / 0.32f);
    const float out = g - m_last;
    m_last = g;
    return out * 8.0f;
}

Formants::Formants(float f1, float f2, float f3)
    : m_band{Biquad::BandPass(f1, 6.0f), Biquad::BandPass(f2, 9.0f), Biquad::BandPass(f3, 12.0f)}
{
}

float Formants::Process(float x)
{
    return m_band[0].Process(x) + 0.6f * m_band[1].Process(x) + 0.3f * m_band[2].Process(x);
}

void MixInto(Samples& mix, const Samples& part, size_t at, float gain)
{
    if (mix.size() < at + part.size())
        mix.resize(at + part.size(), 0.0f);
    for (size_t i = 0; i < part.size(); ++i)
        mix[at + i] += part[i] * gain;
}

void Normalize(Samples& samples, float peak)
{
    float loudest = 0.0f;
    for (float s : samples)
        loudest = std::max(loudest, std::fabs(s));
    if (loudest <= 0.0f)
        return;
    for (float& s : samples)
        s *= peak / loudest;
}

void FadeEnds(Samples& samples, float seconds)
{
    const size_t n = std::min(samples.size() / 2, static_cast<size_t>(seconds * kSampleRate));
    for (size_t i = 0; i < n; ++i) {
        const float g = static_cast<float>(i) / n;
        samples[i] *= g;
        samples[samples.size() - 1 - i] *= g;
    }
}

bool WriteWav(const std::string& path, const Samples& samples)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    const uint32_t dataBytes = static_cast<uint32_t>(samples.size() * 2);
    out.write("RIFF", 4);
    PutLe(out, 36 + dataBytes, 4);
    out.write("WAVEfmt ", 8);
    PutLe(out, 16, 4);
    PutLe(out, 1, 2); // PCM
    PutLe(out, 1, 2); // mono
    PutLe(out, kSampleRate, 4);
    PutLe(out, kSampleRate * 2, 4);
    PutLe(out, 2, 2);
    PutLe(out, 16, 2);
    out.write("data", 4);
    PutLe(out, dataBytes, 4);
    for (float s : samples) {
        const long v = std::lround(std::clamp(s, -1.0f, 1.0f) * 32767.0f);
        PutLe(out, static_cast<uint32_t>(static_cast<int16_t>(v)) & 0xFFFF, 2);
    }
    return static_cast<bool>(out);
}

} // namespace assetgen
