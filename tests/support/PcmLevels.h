// Levels of raw 16-bit stereo PCM, as SDL's disk audio driver writes it: the
// audio tests measure what reached the output rather than what was asked for.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

struct PcmTrack {
  std::vector<std::int16_t> samples;  // interleaved left, right
  int rate = 22050;

  std::size_t Frames() const { return samples.size() / 2; }
  double Seconds() const { return static_cast<double>(Frames()) / rate; }

  // Root mean square of both channels over [from, to) seconds, 0..32768.
  double Rms(double from, double to) const {
    std::size_t first = FrameAt(from), last = FrameAt(to);
    if (last <= first) return 0.0;
    double sum = 0.0;
    for (std::size_t i = first * 2; i < last * 2; ++i) sum += double(samples[i]) * samples[i];
    return std::sqrt(sum / double((last - first) * 2));
  }

  // Seconds of output in [from, to) whose 50 ms windows are louder than `threshold`.
  double LoudSeconds(double threshold, double from, double to) const {
    double loud = 0.0;
    for (double t = from; t + 0.05 <= to; t += 0.05)
      if (Rms(t, t + 0.05) > threshold) loud += 0.05;
    return loud;
  }

  std::size_t FrameAt(double seconds) const {
    if (seconds <= 0.0) return 0;
    std::size_t frame = static_cast<std::size_t>(seconds * rate);
    return frame < Frames() ? frame : Frames();
  }
};

// The whole file; an empty track when it cannot be read.
inline PcmTrack ReadPcm(const std::string& path, int rate) {
  PcmTrack track;
  track.rate = rate;
  std::ifstream in(path, std::ios::binary);
  if (!in) return track;
  std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  track.samples.resize(bytes.size() / 4 * 2);
  for (std::size_t i = 0; i < track.samples.size(); ++i)
    track.samples[i] = static_cast<std::int16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                                 (static_cast<unsigned char>(bytes[2 * i + 1]) << 8));
  return track;
}
