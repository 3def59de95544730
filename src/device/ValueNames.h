// Names of the device layer's numeric values, as the settings dialog shows
// them in its lists. Free functions over fixed tables; every value has an
// answer, a value outside a table gives that table's fall-back text. The
// texts are string literals: the caller keeps the pointer as long as it likes.
#pragma once

#include <cstdint>

#include "device/VertexProcessingType.h"
#include "platform/d3d9/d3d9.h"

// "D3DDEVTYPE_HAL", "D3DDEVTYPE_REF", "D3DDEVTYPE_SW"; else "Unknown D3DDEVTYPE".
const char* DeviceTypeName(D3DDEVTYPE type);
// "D3DMULTISAMPLE_NONE", "D3DMULTISAMPLE_NONMASKABLE", "D3DMULTISAMPLE_n_SAMPLES"
// for n of 2..16; else "Unknown D3DMULTISAMPLE_TYPE".
const char* MultiSampleTypeName(D3DMULTISAMPLE_TYPE type);
// The enumerator's own name; else "Unknown VERTEXPROCESSING_TYPE".
const char* VertexProcessingName(VERTEXPROCESSING_TYPE type);
// By the published flag values 0, 1, 2, 4, 8 and 0x80000000 (not a count);
// else "Unknown Present-Interval".
const char* PresentIntervalName(std::uint32_t interval);
// The D3DFMT_ constant's name, without "D3DFMT_" unless withPrefix; a format
// outside the table gives "Unknown format" either way.
const char* FormatName(D3DFORMAT format, bool withPrefix);
