#include "Music.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace assetgen {
namespace {

constexpr float kTwoPi = 6.28318531f;
constexpr float kChordSeconds = 4.0f; // one chord per bar of four beats at 60 bpm
constexpr int kChords = 16;

struct Chord
{
    int bass;                 // MIDI note
    std::vector<int> voicing; // MIDI notes of the pad
};

// D  Bm  G  A | D  Bm  Em  A | G  F#m  Em  D | G  Bm  Em  Asus: the last
// chord leans back into the first one.
const Chord kProgression[kChords] = {
    {38, {50, 57, 61, 66}}, {47, {47, 54, 57, 62}}, {43, {55, 59, 62, 66}}, {45, {57, 61, 64, 69}},
    {38, {50, 57, 61, 66}}, {47, {47, 54, 57, 62}}, {40, {52, 55, 59, 62}}, {45, {57, 61, 64, 67}},
    {43, {55, 59, 62, 66}}, {42, {54, 57, 61, 64}}, {40, {52, 55, 59, 62}}, {38, {50, 54, 57, 61}},
    {43, {55, 59, 62, 66, 69}}, {47, {47, 54, 57, 62}}, {40, {52, 55, 59, 62}}, {45, {57, 62, 64, 69}},
};

// D major pentatonic, A4 to B5.
constexpr std::array<int, 7> kScale = {69, 71, 74, 76, 78, 81, 83};

float Frequency(int midi) { return 440.0f * std::pow(2.0f, (midi - 69) / 12.0f); }

// A table sine: the pads call it tens of millions of times.
class SineTable
{
public:
    SineTable()
    {
        for (int i = 0; i <= kSize; ++i)
            m_table[i] = std::sin(kTwoPi * i / kSize);
    }
    float operator()(double cycles) const
    {
        const double f = (cycles - std::floor(cycles)) * kSize;
        const int i = static_cast<int>(f);
        const float frac = static_cast<float>(f - i);
        return m_table[i] + (m_table[i + 1] - m_table[i]) * frac;
    }

private:
    static constexpr int kSize = 4096;
    std::array<float, kSize + 1> m_table;
};

const SineTable& Sine()
{
    static const SineTable table;
    return table;
}

// Adds a note into the looped buffer; samples past the end wrap to the start.
template <typename Voice>
void AddWrapped(Samples& loop, float start, float seconds, const Voice& voice)
{
    const size_t n = loop.size();
    const size_t first = static_cast<size_t>(start * kSampleRate);
    const size_t count = static_cast<size_t>(seconds * kSampleRate);
    for (size_t i = 0; i < count; ++i)
        loop[(first + i) % n] += voice(static_cast<float>(i) / kSampleRate);
}

void AddPadNote(Samples& loop, float start, int midi)
{
    const float f = Frequency(midi);
    const float hold = kChordSeconds;
    AddWrapped(loop, start, hold + 5.0f, [f, hold](float t) {
        const float attack = t < 1.5f ? std::pow(std::sin(1.5707963f * t / 1.5f), 2.0f) : 1.0f;
        const float release = t < hold ? 1.0f : std::exp(-(t - hold) / 1.4f);
        const SineTable& s = Sine();
        float v = 0.0f;
        for (const float detune : {0.9988f, 1.0012f}) {
            const double cycles = static_cast<double>(f) * detune * t;
            v += s(cycles) + 0.22f * s(2.0 * cycles) + 0.08f * s(3.0 * cycles);
        }
        return 0.05f * v * attack * release;
    });
}

void AddBassNote(Samples& loop, float start, int midi, float loud)
{
    const float f = Frequency(midi);
    AddWrapped(loop, start, 4.5f, [f, loud](float t) {
        const float env = std::min(1.0f, t / 0.04f) * std::exp(-t / 1.6f);
        const SineTable& s = Sine();
        const double cycles = static_cast<double>(f) * t;
        return loud * env * (s(cycles) + 0.3f * s(2.0 * cycles));
    });
}

void AddBellNote(Samples& loop, float start, int midi, float loud)
{
    const float f = Frequency(midi);
    AddWrapped(loop, start, 3.5f, [f, loud](float t) {
        const float attack = std::min(1.0f, t / 0.008f);
        const SineTable& s = Sine();
        const double cycles = static_cast<double>(f) * t;
        const float v = s(cycles) * std::exp(-t / 1.1f) + 0.35f * s(2.0 * cycles) * std::exp(-t / 0.5f) +
                        0.12f * s(3.0 * cycles) * std::exp(-t / 0.3f) + 0.05f * s(4.2 * cycles) * std::exp(-t / 0.2f);
        return loud * attack * v;
    });
}

// The melody: a few notes per bar, walking the scale in small steps and
// landing on a chord tone at the start of a bar. Two bars in four are sparse.
void AddMelody(Samples& loop)
{
    Random rng(0x3E10D);
    int degree = 2;
    // Rhythms in beats: where notes start within a bar.
    const std::vector<std::vector<float>> rhythms = {{0, 2}, {0, 1.5f, 2, 3}, {0, 1, 2}, {0, 3}, {0, 2, 2.5f}, {1, 2, 3}};
    for (int bar = 0; bar < kChords; ++bar) {
        const bool quiet = bar % 4 == 0 || bar == kChords - 1;
        const auto& rhythm = quiet ? rhythms[bar % 2 == 0 ? 0 : 3] : rhythms[rng.Below(static_cast<int>(rhythms.size()))];
        for (size_t k = 0; k < rhythm.size(); ++k) {
            if (k == 0) {
                // Move to the nearest scale note that belongs to the chord.
                for (int step = 0; step < 4; ++step) {
                    bool inChord = false;
                    for (int note : kProgression[bar].voicing)
                        inChord |= (note % 12) == (kScale[degree] % 12);
                    if (inChord)
                        break;
                    degree = std::clamp(degree + (rng.Below(2) ? 1 : -1), 0, static_cast<int>(kScale.size()) - 1);
                }
            } else {
                const int move = rng.Below(5) - 2; // -2 .. 2
                degree = std::clamp(degree + move, 0, static_cast<int>(kScale.size()) - 1);
            }
            const float loud = (k == 0 ? 0.11f : 0.08f) * (quiet ? 0.8f : 1.0f);
            AddBellNote(loop, bar * kChordSeconds + rhythm[k], kScale[degree], loud);
        }
    }
}

// A small Schroeder room, run twice round the loop so that the tail of the
// end is already sounding at the start.
void AddRoom(Samples& loop, float wet)
{
    struct Comb { std::vector<float> line; size_t pos = 0; float store = 0; };
    struct AllPass { std::vector<float> line; size_t pos = 0; };
    std::vector<Comb> combs;
    for (size_t d : {1117u, 1189u, 1277u, 1361u})
        combs.push_back({std::vector<float>(d, 0.0f)});
    std::vector<AllPass> passes;
    for (size_t d : {223u, 557u})
        passes.push_back({std::vector<float>(d, 0.0f)});

    const Samples dry = loop;
    for (int lap = 0; lap < 2; ++lap) {
        for (size_t i = 0; i < dry.size(); ++i) {
            float sum = 0.0f;
            for (Comb& c : combs) {
                const float out = c.line[c.pos];
                c.store = out * 0.75f + c.store * 0.25f; // damping
                c.line[c.pos] = dry[i] + c.store * 0.82f;
                c.pos = (c.pos + 1) % c.line.size();
                sum += out;
            }
            float y = sum * 0.25f;
            for (AllPass& a : passes) {
                const float buffered = a.line[a.pos];
                a.line[a.pos] = y + buffered * 0.5f;
                y = buffered - y * 0.5f;
                a.pos = (a.pos + 1) % a.line.size();
            }
            if (lap == 1)
                loop[i] = dry[i] + wet * y;
        }
    }
}

} // namespace

Samples MakeMusic()
{
    Samples loop(static_cast<size_t>(kChords * kChordSeconds * kSampleRate), 0.0f);
    for (int bar = 0; bar < kChords; ++bar) {
        const float start = bar * kChordSeconds;
        for (int note : kProgression[bar].voicing)
            AddPadNote(loop, start, note);
        AddBassNote(loop, start, kProgression[bar].bass, 0.16f);
        AddBassNote(loop, start + 2.0f, kProgression[bar].bass, 0.09f);
    }
    AddMelody(loop);
    AddRoom(loop, 0.35f);
    Normalize(loop, 0.55f);
    return loop;
}

} // namespace assetgen
