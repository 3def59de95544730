// D3DX 9 as this program uses it: vector, matrix and plane math, and the two
// texture loaders.
#pragma once

#include "platform/d3dx9/d3dx9math.h"
#include "platform/d3dx9/d3dx9tex.h"
