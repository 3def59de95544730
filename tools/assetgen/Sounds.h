// All 29 sound files: the nine effects and the music, synthesised here, and
// the 19 speech clips, spoken by espeak-ng; all encoded to mp3 by lame at
// 22050 Hz mono.
#pragma once

#include <filesystem>

namespace assetgen {

struct SpeechLine
{
    const char* file; // under speech/mp3/
    const char* text;
};

// The lines of the 19 clips in file order: 1.mp3 to 17.mp3, then the two
// remarks made at the towers. Clip 8 plays only in the water; 1, 2, 5, 10,
// 15, 16 and 17 only on land; the rest in both.
extern const SpeechLine kSpeechLines[19];

// Writes music/ and speech/mp3/ under `root`, using `scratch` for the
// intermediate WAV files (created, then removed).
bool WriteSounds(const std::filesystem::path& root, const std::filesystem::path& scratch);

} // namespace assetgen
