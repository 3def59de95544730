// music/1.mp3: the background music, composed here. A calm loop of 64
// seconds in D major: soft pad chords, a gentle bass, a bell-like pentatonic
// melody and a little room. Everything wraps around the loop's end, notes
// and reverberation alike, so that the end flows into the start.
#pragma once

#include "Synth.h"

namespace assetgen {

Samples MakeMusic();

} // namespace assetgen
