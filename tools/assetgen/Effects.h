// The short sound effects, synthesised: each returns mono samples at
// kSampleRate, peaking well below full scale.
#pragma once

#include "Synth.h"

namespace assetgen {

Samples MakeFootsteps();  // music/shagi_trava_short.mp3: two steps in grass
Samples MakeSwimming();   // music/swim_short.mp3: two strokes
Samples MakeBreathing();  // music/breathe_short.mp3: one calm breath, heard all the time
Samples MakeDiving();     // music/diving_short.mp3: bubbles under water
Samples MakeCough();      // music/kashel_short.mp3
Samples MakeChoking();    // music/poperhnulsya.mp3
Samples MakeLaugh(int which); // music/smeh_short1.mp3 (1), smeh_short2.mp3 (2)
Samples MakeJump();       // music/jump_small2.mp3: an effort and a swish

} // namespace assetgen
