// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "dsp/spectrum.h"
#include "formats/format.h"
#include "platform/file_system.h"

namespace plumetta {

// Spectra in ".fft" files. A failed load leaves the record as it was; neither tells the person.
SaveResult saveSpectrum(FileSystem& files, const std::string& path, const SpectrumRecord& record);
LoadResult loadSpectrum(FileSystem& files, const std::string& path, SpectrumRecord& record);

}  // namespace plumetta
