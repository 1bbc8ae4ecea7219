// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <atomic>

// Private to the Windows side: what its wave-in and wave-out devices have in common.

namespace plumetta {

inline int codeOf(MMRESULT result) { return static_cast<int>(result); }

// The device sets the flag from a thread of its own, and what it did before must be seen after.
inline bool isDone(const WAVEHDR& header) {
  const DWORD flags = *static_cast<const volatile DWORD*>(&header.dwFlags);
  std::atomic_thread_fence(std::memory_order_acquire);
  return (flags & WHDR_DONE) != 0;
}

inline WAVEFORMATEX plainPcm(int channels, int sampleRate, int bitsPerSample) {
  WAVEFORMATEX pcm{};
  pcm.wFormatTag = WAVE_FORMAT_PCM;
  pcm.nChannels = static_cast<WORD>(channels);
  pcm.nSamplesPerSec = static_cast<DWORD>(sampleRate);
  pcm.wBitsPerSample = static_cast<WORD>(bitsPerSample);
  pcm.nBlockAlign = static_cast<WORD>(channels * bitsPerSample / 8);
  pcm.nAvgBytesPerSec = pcm.nBlockAlign * pcm.nSamplesPerSec;
  return pcm;
}

}  // namespace plumetta
