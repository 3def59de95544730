#include "Sounds.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "Effects.h"
#include "Music.h"
#include "ProcessPool.h"
#include "Synth.h"

namespace assetgen {

const SpeechLine kSpeechLines[19] = {
    {"1.mp3", "The grass is soft here. A good place for a walk."},
    {"2.mp3", "From up on this hill I can see the whole coast."},
    {"3.mp3", "Look at those birds, circling high above the clouds."},
    {"4.mp3", "What a quiet day. Only the wind and the sea."},
    {"5.mp3", "These trees must be very old."},
    {"6.mp3", "I wonder who built those towers."},
    {"7.mp3", "The sky goes on forever out here."},
    {"8.mp3", "Brr, the water is cold! Better swim back to the shore."},
    {"9.mp3", "I think it is going to rain again."},
    {"10.mp3", "Flowers everywhere. It smells like summer."},
    {"11.mp3", "Hello? Is anybody out there?"},
    {"12.mp3", "The mountains look beautiful from here."},
    {"13.mp3", "I could stay here all day."},
    {"14.mp3", "I wonder where this coast ends."},
    {"15.mp3", "My feet are tired from all this walking."},
    {"16.mp3", "There is sand in my shoes again."},
    {"17.mp3", "Let me climb that mountain and look around."},
    {"ostanki_pogibshey.mp3", "These are the remains of a lost city. Only the towers are left."},
    {"kak_zabratsa_na_neboskreb.mp3", "How could anyone climb this skyscraper? There is no door anywhere."},
};

namespace {

Command Encode(const std::filesystem::path& wav, const std::filesystem::path& mp3)
{
    // Constant 64 kbit/s mono at 22050 Hz; no replay-gain scan. The LAME tag
    // that lame writes holds the encoder delay, which lets gapless decoders
    // loop the music cleanly, and no date.
    return {"lame", "--quiet", "--noreplaygain", "-m", "m", "-b", "64", "--resample", "22.05",
            wav.string(), mp3.string()};
}

} // namespace

bool WriteSounds(const std::filesystem::path& root, const std::filesystem::path& scratch)
{
    std::error_code error;
    std::filesystem::create_directories(scratch, error);
    if (error) {
        std::fprintf(stderr, "karvo-assetgen: could not create %s\n", scratch.string().c_str());
        return false;
    }
    const std::filesystem::path music = root / "music";
    const std::filesystem::path speech = root / "speech" / "mp3";
    std::vector<ProcessJob> jobs;
    bool ok = true;

    // Speech first: espeak-ng and lame run while the effects are computed.
    for (const SpeechLine& line : kSpeechLines) {
        const std::filesystem::path wav = scratch / (std::string("speech_") + line.file + ".wav");
        jobs.push_back({line.file,
                        {{"espeak-ng", "-v", "en-us+m3", "-s", "150", "-p", "45", "-w", wav.string(), line.text},
                         Encode(wav, speech / line.file)}});
    }

    struct Effect { const char* file; Samples (*make)(); };
    const Effect effects[] = {
        {"diving_short.mp3", MakeDiving},
        {"shagi_trava_short.mp3", MakeFootsteps},
        {"swim_short.mp3", MakeSwimming},
        {"breathe_short.mp3", MakeBreathing},
        {"kashel_short.mp3", MakeCough},
        {"poperhnulsya.mp3", MakeChoking},
        {"smeh_short1.mp3", [] { return MakeLaugh(1); }},
        {"smeh_short2.mp3", [] { return MakeLaugh(2); }},
        {"jump_small2.mp3", MakeJump},
        {"1.mp3", MakeMusic},
    };
    for (const Effect& effect : effects) {
        const std::filesystem::path wav = scratch / (std::string("music_") + effect.file + ".wav");
        if (!WriteWav(wav.string(), effect.make())) {
            std::fprintf(stderr, "karvo-assetgen: could not write %s\n", wav.string().c_str());
            ok = false;
            continue;
        }
        jobs.push_back({effect.file, {Encode(wav, music / effect.file)}});
    }
    // The music is the longest encode: start it first.
    std::rotate(jobs.rbegin(), jobs.rbegin() + 1, jobs.rend());

    const int parallel = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 2u, 4u));
    ok &= RunJobs(jobs, parallel);
    std::filesystem::remove_all(scratch, error);
    return ok;
}

} // namespace assetgen
