#include "Effects.h"

#include <algorithm>
#include <cmath>

namespace assetgen {
namespace {

constexpr float kTwoPi = 6.28318531f;

size_t At(float seconds) { return static_cast<size_t>(seconds * kSampleRate); }

float White(Random& rng) { return static_cast<float>(rng.Unit() * 2.0 - 1.0); }

// Attack-decay envelope: rises in `attack` seconds, then falls exponentially
// with time constant `decay`.
float AttackDecay(float t, float attack, float decay)
{
    if (t < 0.0f)
        return 0.0f;
    if (t < attack)
        return t / attack;
    return std::exp(-(t - attack) / decay);
}

// One footstep: a crunch of grass stems (crackle through a high band) on a
// soft low thump of the heel.
Samples Step(Random& rng)
{
    Samples out(At(0.32f));
    Biquad crunch = Biquad::BandPass(3400.0f, 0.8f);
    Biquad body = Biquad::LowPass(180.0f, 0.7f);
    Biquad rustle = Biquad::BandPass(1600.0f, 1.2f);
    for (size_t i = 0; i < out.size(); ++i) {
        const float t = static_cast<float>(i) / kSampleRate;
        const float crackle = rng.Unit() < 0.06 ? White(rng) * 3.0f : 0.0f;
        const float n = White(rng);
        out[i] = crunch.Process(n + crackle) * AttackDecay(t, 0.012f, 0.07f) * 1.6f +
                 rustle.Process(n) * AttackDecay(t - 0.04f, 0.05f, 0.09f) * 0.6f +
                 body.Process(n) * AttackDecay(t, 0.004f, 0.03f) * 2.5f;
    }
    return out;
}

// A vowel-like burst: voiced buzz and breath through formants.
Samples Voiced(Random& rng, float seconds, float pitchStart, float pitchEnd, float f1, float f2, float f3,
               float breath, float attack, float decay)
{
    Samples out(At(seconds));
    GlottalSource source;
    Formants vowel(f1, f2, f3);
    for (size_t i = 0; i < out.size(); ++i) {
        const float t = static_cast<float>(i) / kSampleRate;
        const float pitch = Lerp(pitchStart, pitchEnd, t / seconds) * (1.0f + 0.01f * std::sin(kTwoPi * 5.5f * t));
        const float x = source.Next(pitch) * (1.0f - breath) + White(rng) * breath * 2.0f;
        out[i] = vowel.Process(x) * AttackDecay(t, attack, decay);
    }
    return out;
}

} // namespace

Samples MakeFootsteps()
{
    Random rng(0x57E9);
    Samples mix(At(0.95f), 0.0f);
    MixInto(mix, Step(rng), At(0.02f), 1.0f);
    MixInto(mix, Step(rng), At(0.50f), 0.85f);
    Normalize(mix, 0.5f);
    FadeEnds(mix, 0.005f);
    return mix;
}

Samples MakeSwimming()
{
    Random rng(0x5319);
    Samples mix(At(2.2f), 0.0f);
    for (int stroke = 0; stroke < 2; ++stroke) {
        Samples s(At(1.0f));
        Biquad splash = Biquad::BandPass(900.0f, 0.7f);
        Biquad hiss = Biquad::HighPass(3000.0f, 0.7f);
        for (size_t i = 0; i < s.size(); ++i) {
            const float t = static_cast<float>(i) / kSampleRate;
            // The hand enters, pulls (a swell of churned water), and leaves.
            splash.RetuneBandPass(700.0f + 900.0f * std::exp(-t * 4.0f), 0.7f);
            const float churn = 0.6f + 0.4f * std::sin(kTwoPi * (9.0f + 3.0f * stroke) * t + White(rng) * 0.3f);
            const float n = White(rng);
            s[i] = splash.Process(n) * AttackDecay(t, 0.12f, 0.28f) * churn * 1.4f +
                   hiss.Process(n) * AttackDecay(t, 0.02f, 0.08f) * 0.5f;
        }
        MixInto(mix, s, At(0.05f + stroke * 1.05f), stroke == 0 ? 1.0f : 0.8f);
    }
    Normalize(mix, 0.45f);
    FadeEnds(mix, 0.01f);
    return mix;
}

Samples MakeBreathing()
{
    // It plays whenever the player is above the water, over and over, so it
    // stays soft and slow: a long inhale through the nose, a sigh out.
    Random rng(0xB4EA);
    Samples mix(At(3.6f), 0.0f);
    Biquad in = Biquad::BandPass(1400.0f, 0.9f);
    Biquad inHigh = Biquad::BandPass(3200.0f, 1.5f);
    Biquad out = Biquad::BandPass(750.0f, 0.8f);
    for (size_t i = 0; i < mix.size(); ++i) {
        const float t = static_cast<float>(i) / kSampleRate;
        const float n = White(rng);
        const float inhale = std::pow(std::sin(3.14159265f * std::clamp((t - 0.1f) / 1.2f, 0.0f, 1.0f)), 2.0f);
        const float exhale = std::pow(std::sin(3.14159265f * std::clamp((t - 1.6f) / 1.5f, 0.0f, 1.0f)), 2.0f);
        mix[i] = (in.Process(n) + 0.4f * inHigh.Process(n)) * inhale + out.Process(n) * exhale * 0.8f;
    }
    // Soft, but not buried: at a peak of 0.12 it sat 19 dB under the music.
    Normalize(mix, 0.3f);
    return mix;
}

Samples MakeDiving()
{
    Random rng(0xD17E);
    Samples mix(At(2.6f), 0.0f);
    // A muffled rumble of moving water under everything.
    Biquad rumble = Biquad::LowPass(260.0f, 0.8f);
    for (size_t i = 0; i < mix.size(); ++i)
        mix[i] = rumble.Process(White(rng)) * 0.8f;
    // Bubbles: short sine chirps that rise as they shrink.
    for (int b = 0; b < 46; ++b) {
        const float start = static_cast<float>(rng.Range(0.0, 2.35));
        const float f0 = static_cast<float>(rng.Range(350.0, 1300.0));
        const float length = static_cast<float>(rng.Range(0.03, 0.09));
        const float loud = static_cast<float>(rng.Range(0.2, 0.7));
        Samples bubble(At(length + 0.05f));
        float phase = 0.0f;
        for (size_t i = 0; i < bubble.size(); ++i) {
            const float t = static_cast<float>(i) / kSampleRate;
            phase += kTwoPi * f0 * (1.0f + 2.5f * t) / kSampleRate;
            bubble[i] = std::sin(phase) * AttackDecay(t, 0.003f, length * 0.4f) * loud;
        }
        MixInto(mix, bubble, At(start));
    }
    mix.resize(At(2.6f));
    Normalize(mix, 0.45f);
    FadeEnds(mix, 0.05f);
    return mix;
}

Samples MakeCough()
{
    Random rng(0xC0F);
    Samples mix(At(0.9f), 0.0f);
    MixInto(mix, Voiced(rng, 0.28f, 170, 120, 620, 1200, 2600, 0.75f, 0.006f, 0.07f), At(0.02f), 1.0f);
    MixInto(mix, Voiced(rng, 0.30f, 160, 110, 580, 1100, 2500, 0.8f, 0.006f, 0.09f), At(0.38f), 0.8f);
    Normalize(mix, 0.55f);
    FadeEnds(mix, 0.005f);
    return mix;
}

Samples MakeChoking()
{
    Random rng(0xC40);
    Samples mix(At(2.4f), 0.0f);
    float at = 0.02f;
    for (int i = 0; i < 5; ++i) {
        // A quick cough, then a strained breath in between.
        MixInto(mix, Voiced(rng, 0.2f, 190.0f - 8 * i, 140, 560, 1250, 2700, 0.7f, 0.004f, 0.05f), At(at), 1.0f - 0.1f * i);
        MixInto(mix, Voiced(rng, 0.22f, 300, 320, 400, 2200, 3000, 0.95f, 0.08f, 0.06f), At(at + 0.2f), 0.35f);
        at += static_cast<float>(rng.Range(0.36, 0.46));
    }
    mix.resize(At(2.4f));
    Normalize(mix, 0.55f);
    FadeEnds(mix, 0.02f);
    return mix;
}

Samples MakeLaugh(int which)
{
    Random rng(which == 1 ? 0x1A61 : 0x1A62);
    const int syllables = which == 1 ? 5 : 7;
    const float gap = which == 1 ? 0.2f : 0.15f;
    const float pitch = which == 1 ? 175.0f : 265.0f;
    // "ha" for the first laugh, a higher "he" for the second.
    const float f1 = which == 1 ? 760.0f : 520.0f;
    const float f2 = which == 1 ? 1200.0f : 1850.0f;
    Samples mix(At(syllables * gap + 0.4f), 0.0f);
    for (int i = 0; i < syllables; ++i) {
        const float p = pitch * (1.0f - 0.04f * i);
        const float loud = 1.0f - 0.09f * i;
        MixInto(mix, Voiced(rng, 0.06f, p, p, f1, f2, 2600, 1.0f, 0.01f, 0.03f), At(0.02f + i * gap), 0.5f * loud);
        MixInto(mix, Voiced(rng, 0.16f, p * 1.05f, p * 0.9f, f1, f2, 2600, 0.15f, 0.015f, 0.06f), At(0.06f + i * gap), loud);
    }
    Normalize(mix, 0.5f);
    FadeEnds(mix, 0.01f);
    return mix;
}

Samples MakeJump()
{
    Random rng(0x1B);
    Samples mix(At(0.55f), 0.0f);
    // A short "hup" of effort.
    MixInto(mix, Voiced(rng, 0.14f, 150, 170, 560, 1000, 2400, 0.35f, 0.01f, 0.04f), At(0.01f), 0.8f);
    // The swish of the body going up.
    Samples swish(At(0.4f));
    Biquad band = Biquad::BandPass(500.0f, 1.2f);
    for (size_t i = 0; i < swish.size(); ++i) {
        const float t = static_cast<float>(i) / kSampleRate;
        band.RetuneBandPass(500.0f + 4000.0f * t, 1.2f);
        swish[i] = band.Process(White(rng)) * std::sin(3.14159265f * t / 0.4f);
    }
    MixInto(mix, swish, At(0.08f), 0.9f);
    Normalize(mix, 0.5f);
    FadeEnds(mix, 0.005f);
    return mix;
}

} // namespace assetgen
