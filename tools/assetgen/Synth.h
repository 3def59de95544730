// Small building blocks for synthesised sound: a mono buffer of float
// samples, filters, a glottal voice source, and a 16-bit WAV writer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Noise.h"

namespace assetgen {

constexpr int kSampleRate = 22050;

using Samples = std::vector<float>;

// RBJ biquad filters; one instance filters one stream.
class Biquad
{
public:
    static Biquad LowPass(float frequency, float q);
    static Biquad HighPass(float frequency, float q);
    static Biquad BandPass(float frequency, float q); // 0 dB at the centre

    float Process(float x);
    // Moves the centre of a band-pass filter, keeping its state.
    void RetuneBandPass(float frequency, float q);

private:
    float b0 = 1, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
    float x1 = 0, x2 = 0, y1 = 0, y2 = 0;
};

// A voiced sound source: glottal pulses at a given pitch, shaped by the
// radiation at the lips (a first difference). Call Next once per sample.
class GlottalSource
{
public:
    float Next(float pitchHz);

private:
    float m_phase = 0.0f;
    float m_last = 0.0f;
};

// Three parallel formant resonators: the colour of a vowel.
class Formants
{
public:
    Formants(float f1, float f2, float f3);
    float Process(float x);

private:
    Biquad m_band[3];
};

// Adds `part` into `mix` from sample `at` on (growing `mix` if needed).
void MixInto(Samples& mix, const Samples& part, size_t at, float gain = 1.0f);
// Scales so that the loudest sample has magnitude `peak`.
void Normalize(Samples& samples, float peak);
// Short fades at both ends so that no clip starts or stops with a click.
void FadeEnds(Samples& samples, float seconds);

bool WriteWav(const std::string& path, const Samples& samples);

} // namespace assetgen
